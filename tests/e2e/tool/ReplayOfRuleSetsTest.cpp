#include <gmock/gmock.h>

#include "ReplayStepFixture.h"

namespace {

using testing::HasSubstr;

TEST_F(ReplayStep, AgreesWithTheEmulatedEngineItself) {
  const ToolRun run = RunEmulated({L"disable-internet", L"enable-dhcp", L"replay"});
  EXPECT_EQ(run.exitCode, 0u) << run.errors;
  EXPECT_THAT(run.output, HasSubstr("replay\n"
                                    "  emulated: Windows 11 24H2\n"
                                    "  filters: 57, accepted 57\n"
                                    "  weights that the engine chose: 57, equal 57\n"));
  EXPECT_THAT(run.output, HasSubstr("  sublayers: 20, of equal weight 20\n  done\n"));
}

TEST_F(ReplayStep, LeavesTheEngineOfTheRunAsItIs) {
  const ParsedJson step = LastStepOf({L"--engine", L"emulated"}, {L"disable-internet", L"replay", L"list"});
  EXPECT_EQ(step.at("sublayers").at(0).at("filters").size(), 51u);
}

TEST_F(ReplayStep, LaterFiltersWeighAsInTheDumpsVersionOfWindows) {
  std::string dump = kDump;
  dump.replace(dump.find("4711"), 4, "1924145348608");  // 0x1c000000000: Windows 11 before 24H2
  std::ofstream(File(), std::ios::binary) << dump;
  EXPECT_EQ(LastStepOf(Started(), {L"disable-internet", L"replay"})["windows"], "Windows 11 before 24H2");
}

TEST_F(ReplayStep, ExportsWhatStepsHaveAddedToADump) {
  ASSERT_EQ(LastStepOf(Started(), {L"enable-dhcp", L"export", Exported().wstring()})["ok"], true);
  const ParsedJson list = LastStepOf({L"--engine", Exported().wstring()}, {L"list", L"--all"});
  EXPECT_EQ(list.at("log").size(), 0u);
  ASSERT_EQ(FiltersIn(list, kTheirsKey).size(), 1u);
  ExpectTheirs(FiltersIn(list, kTheirsKey)[0]);
  EXPECT_EQ(list["sublayers"].size(), 20u);
}

}  // namespace
