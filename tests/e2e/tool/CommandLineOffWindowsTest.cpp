#include <gmock/gmock.h>

#include "ReplayStepFixture.h"
#include "WrongUsage.h"

namespace {

using testing::HasSubstr;

constexpr const char* kStepsHere =
    "the steps that run on this system are list, explain, map, prove, lint, watch, report, export, replay, "
    "calibrate";
constexpr const char* kGiveADump =
    "read a dump with --engine FILE.xml, or let the emulated engine begin with it: --engine emulated --start "
    "FILE.xml. On Windows, netsh wfp show state file=FILE.xml writes one";

const WrongUse kWrongOffWindows[]{
    {{L"list"}, "This system has no filtering engine", kGiveADump},
    {{L"--engine", L"system", L"list"}, "This system has no filtering engine", kGiveADump},
    {{L"--start", L"machine.xml", L"list"}, "This system has no filtering engine", kGiveADump},
    {{L"--engine", L"emulated", L"disable-internet"}, "The step disable-internet needs Windows", kStepsHere},
    {{L"--engine", L"emulated", L"list", L"enable-internet"},
     "The step enable-internet needs Windows",
     kStepsHere},
    {{L"--engine", L"machine.xml", L"list", L"enable-dhcp"},
     "The step enable-dhcp needs Windows",
     kStepsHere},
    {{L"--engine", L"machine.xml", L"status"}, "The step status needs Windows", kStepsHere},
    {{L"adapters"}, "The step adapters needs Windows", kStepsHere},
    {{L"--engine", L"emulated", L"--dns-app", L"C:\\a.exe", L"list"},
     "--dns-app is for steps that need Windows",
     "leave it out on this system"},
};

INSTANTIATE_TEST_SUITE_P(OffWindows, WrongUsage, testing::ValuesIn(kWrongOffWindows));

using ReadOffWindows = ReplayStep;

TEST_F(ReadOffWindows, ProveTellsWhatThePresentFiltersMakeOfPromisesWithoutArguments) {
  const ParsedJson step = LastStepOf(Started(), {L"prove"});
  std::vector<std::string> names;
  for (const ParsedJson& promise : step["promises"]) {
    names.push_back(promise["name"].get<std::string>());
    EXPECT_EQ(promise["holds"], promise["state"] == "holds");
    EXPECT_EQ(promise["holds"], promise["breaks"].empty());
    EXPECT_FALSE(promise["alone"].is_null());
  }
  EXPECT_THAT(names,
              testing::IsSupersetOf({"kill-switch-closes-outbound", "dhcp-client", "local-network-closed"}));
  EXPECT_THAT(step["log"].dump(), HasSubstr("Features can be switched on only on Windows"));
}

TEST_F(ReadOffWindows, AnApplicationIsAskedForByItsId) {
  std::vector<std::wstring> arguments = Started();
  arguments.insert(arguments.end(), {L"explain", L"--remote", L"::1", L"--app", L"C:\\a.exe"});
  const ToolRun run = RunTool(arguments);
  EXPECT_EQ(run.exitCode, 1u);
  EXPECT_THAT(run.errors, HasSubstr("hint: Give --app an id such as \\device\\harddiskvolume1\\a.exe"));
}

TEST_F(ReadOffWindows, AnInterfaceIsAskedForByItsLuid) {
  std::vector<std::wstring> arguments = Started();
  arguments.insert(arguments.end(), {L"explain", L"--remote", L"::1", L"--interface", L"Tunnel"});
  const ToolRun run = RunTool(arguments);
  EXPECT_EQ(run.exitCode, 1u);
  EXPECT_THAT(run.errors, HasSubstr("hint: Give --interface a LUID."));
}

TEST_F(ReadOffWindows, AnApplicationCanBeBlockedInTheEmulatedEngine) {
  const ToolRun run = RunEmulated({L"--block-app", L"C:\\bad.exe", L"explain", L"--remote", L"1.1.1.1",
                                   L"--app", L"\\device\\harddiskvolume1\\bad.exe"});
  EXPECT_EQ(run.exitCode, 0u) << run.errors;
  EXPECT_THAT(run.output,
              HasSubstr("    blocked by filter 4294967297 \"Block of another owner\" of no provider\n"));
}

}  // namespace
