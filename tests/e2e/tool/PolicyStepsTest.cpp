#include <gmock/gmock.h>

#include <fstream>
#include <iterator>

#include "EmulatedTool.h"

namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

TEST(Map, EmptyEngineHasOneLineForEachSection) {
  const ToolRun run = RunEmulated({L"map"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.output,
            "map\n"
            "  outbound IPv4: permit\n"
            "  outbound IPv6: permit\n"
            "  inbound IPv4: permit\n"
            "  inbound IPv6: permit\n"
            "  done\n");
}

TEST(Map, JsonHasTheClassesAndTheWayToEachVerdict) {
  const ParsedJson map = LastStep({L"disable-internet", L"map"})["map"];
  ASSERT_EQ(map["sections"].size(), 4u);
  const ParsedJson& section = map["sections"][0];
  EXPECT_EQ(section["direction"], "outbound");
  EXPECT_EQ(section["ipVersion"], 4);
  ASSERT_EQ(section["fields"].size(), 3u);
  EXPECT_EQ(section["fields"][0]["field"], "flags");
  EXPECT_EQ(section["fields"][1]["field"], "remote port");
  EXPECT_EQ(section["fields"][2]["field"], "remote address");
  EXPECT_EQ(section["fields"][1]["classes"][0]["intervals"],
            ParsedJson::parse(R"([["0x0", "0x34"], ["0x36", "0xffff"]])"));
  EXPECT_EQ(section["fields"][1]["classes"][0]["text"], "0 to 52, 54 to 65535");
  EXPECT_TRUE(section["root"].contains("node"));
  EXPECT_THAT(map["verdicts"].dump(), HasSubstr(R"("verdict":"block")"));
}

TEST(Map, SkeinBlocksItsRangeOnItsInterfaceButForThePeers) {
  EXPECT_THAT(RunEmulated({L"enable-skein", L"--luid", L"9", L"--peer", L"100.64.0.1", L"map"}).output,
              EndsWith("map\n"
                       "  outbound IPv4: permit\n"
                       "  outbound IPv6: permit\n"
                       "  inbound IPv4:\n"
                       "    interface 9:\n"
                       "      remote address 100.64.0.0, 100.64.0.2 to 100.127.255.255: block\n"
                       "      otherwise: permit\n"
                       "    otherwise: permit\n"
                       "  inbound IPv6: permit\n"
                       "  done\n"));
}

TEST(Prove, PromisesNothingWhenNothingIsOn) {
  const std::vector<std::vector<std::wstring>> runs{
      {L"prove"},
      {L"disable-internet", L"enable-internet", L"prove"},
      {L"enable-dhcp", L"disable-dhcp", L"prove"},
      {L"disable-local-network", L"enable-local-network", L"prove"},
      {L"enable-skein", L"--luid", L"9", L"disable-skein", L"prove"},
      {L"enable-leak-protection", L"--server", L"198.51.100.7", L"--luid", L"7", L"disable-leak-protection",
       L"prove"}};
  for (const auto& arguments : runs) {
    const ToolRun run = RunEmulated(arguments);
    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_THAT(run.output,
                EndsWith("prove\n  no feature is switched on in this run: nothing is promised\n  done\n"));
  }
}

/// The state of each promise, from the last step, prove.
std::vector<std::string> StatesAfter(const std::vector<std::wstring>& arguments) {
  std::vector<std::string> states;
  const ParsedJson step = LastStep(arguments);
  for (const ParsedJson& promise : step["promises"]) {
    states.push_back(promise["name"].get<std::string>() + ": " + promise["state"].get<std::string>());
    EXPECT_EQ(promise["state"] == "holds", promise["counterexample"].is_null());
  }
  return states;
}

TEST(Prove, ChecksThePromisesOfWhatIsOn) {
  EXPECT_THAT(StatesAfter({L"disable-internet", L"enable-dhcp", L"prove"}),
              ElementsAre("kill-switch-closes-outbound: holds", "kill-switch-closes-inbound: holds",
                          "kill-switch-no-look-ups: holds", "kill-switch-loopback: broken",
                          "kill-switch-local-network: holds only under a reading", "dhcp-client: broken"));
}

TEST(Prove, LeakProtectionIsCheckedWithItsArguments) {
  const std::wstring app = (ProgramFolder() / L"corvane-firewall.exe").native();
  EXPECT_THAT(
      StatesAfter({L"--dns-app", app, L"--block-app", L"C:\\bad.exe", L"enable-leak-protection", L"--server",
                   L"198.51.100.7", L"--luid", L"7", L"--allow", L"203.0.113.1", L"prove"}),
      ElementsAre("leak-no-look-ups: holds", "leak-name-application: broken",
                  "leak-closes: holds only under a reading", "leak-tunnel-open: holds",
                  "leak-permitted-addresses: holds", "leak-server: holds", "leak-local-network: holds",
                  "leak-loopback: broken", "leak-blocked-applications: holds"));
}

TEST(Prove, LeakProtectionWithoutItsNameRulesLetsLookUpsOut) {
  const ParsedJson promises = LastStep(
      {L"enable-leak-protection", L"--server", L"198.51.100.7", L"--luid", L"7", L"prove"})["promises"];
  EXPECT_EQ(promises[0]["name"], "leak-no-look-ups");
  EXPECT_EQ(promises[0]["state"], "broken");
  EXPECT_EQ(promises[0]["counterexample"]["connection"]["remotePort"], 53);
}

TEST(Prove, LocalNetworkBlockIsChecked) {
  EXPECT_THAT(StatesAfter({L"disable-local-network", L"prove"}),
              ElementsAre("local-network-closed: holds only under a reading",
                          "local-network-loopback: broken", "local-network-look-ups: holds"));
}

TEST(Prove, SkeinIsCheckedWithItsPeers) {
  EXPECT_THAT(StatesAfter({L"enable-skein", L"--luid", L"9", L"--peer", L"100.64.0.1", L"--peer",
                           L"203.0.113.9", L"prove"}),
              ElementsAre("skein-peers: holds", "skein-closed: holds"));
}

TEST(Prove, KillSwitchKeepsThePeersOfSkeinOut) {
  const std::vector<std::string> states = StatesAfter(
      {L"disable-internet", L"enable-skein", L"--luid", L"9", L"--peer", L"100.64.0.1", L"prove"});
  EXPECT_THAT(states, Contains("skein-peers: holds only under a reading"));
  EXPECT_THAT(states, Contains("skein-closed: holds"));
}

TEST(Lint, FindsNothingInAnEmptyEngine) {
  EXPECT_EQ(RunEmulated({L"lint"}).output, "lint\n  no findings\n  done\n");
  EXPECT_EQ(LastStep({L"lint"})["findings"], ParsedJson::array());
}

TEST(Lint, NamesTheFilterTheReasonAndWhatWouldBeClearer) {
  const ToolRun run = RunEmulated({L"disable-internet", L"lint"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_THAT(run.output,
              AllOf(HasSubstr("lint\n  filters of Corvane Firewall Tool (ours):\n"),
                    HasSubstr("    flags-equality: FLAGS EQUAL IS_LOOPBACK compares the whole word"),
                    HasSubstr("Clearer: test the bits that matter, with FLAGS_ALL_SET or FLAGS_NONE_SET.\n"
                              "      filter "),
                    HasSubstr(" \"Corvane Kill Switch\"\n")));
  const ParsedJson findings = LastStep({L"disable-internet", L"lint"})["findings"];
  ASSERT_FALSE(findings.empty());
  EXPECT_EQ(findings[0]["filter"]["name"], "Corvane Kill Switch");
}

std::string ReadText(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(Report, IsOneFileThatLoadsNothing) {
  const TemporaryFolder folder;
  const std::filesystem::path path = folder.Path() / L"Übersicht.html";
  const ParsedJson step = LastStep({L"disable-internet", L"report", path.native()});
  EXPECT_THAT(step["file"].get<std::string>(), EndsWith("\xc3\x9c"
                                                        "bersicht.html"));
  const std::string page = ReadText(path);
  EXPECT_THAT(page, AllOf(StartsWith("<!doctype html>"), EndsWith("</html>\n"),
                          HasSubstr("default-src 'none'"), HasSubstr(R"("name":"Corvane Kill Switch")")));
  EXPECT_THAT(page, AllOf(Not(HasSubstr("@DATA@")), Not(HasSubstr("@STYLE@")), Not(HasSubstr("@SCRIPT@"))));
  EXPECT_THAT(page, AllOf(Not(HasSubstr("src=\"")), Not(HasSubstr("http://")), Not(HasSubstr("https://")),
                          Not(HasSubstr("@import")), Not(HasSubstr("url("))));
}

TEST(Report, TellsWhereItWasWritten) {
  const TemporaryFolder folder;
  const std::filesystem::path path = folder.Path() / L"report.html";
  const ToolRun run = RunEmulated({L"report", path.native()});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.output, "report\n  written: " + path.string() + "\n  done\n");
}

TEST(Report, FolderThatIsMissingIsAFailure) {
  const TemporaryFolder folder;
  const std::filesystem::path path = folder.Path() / L"missing" / L"report.html";
  const ToolRun run = RunEmulated({L"report", path.native()});
  EXPECT_EQ(run.exitCode, 1u);
  EXPECT_EQ(run.errors, "report failed: Cannot write " + path.string() +
                            "\nhint: The folder must exist and be open to you.\n");
}

TEST(Report, FolderOfThatNameIsAFailure) {
  const TemporaryFolder folder;
  const ToolRun run = RunEmulated({L"report", folder.Path().native()});
  EXPECT_EQ(run.exitCode, 1u);
  EXPECT_THAT(run.errors, StartsWith("report failed: Cannot write " + folder.Path().string() + "\n"));
}

class StepOfTheSystem : public testing::TestWithParam<std::vector<std::wstring>> {};

/// The tool in a folder with the emulator, which it loads as if it were the system's own engine.
TEST_P(StepOfTheSystem, ReadsOnlyAndDoesNotHold) {
  const TemporaryFolder folder;
  folder.Copy("corvane-firewall.exe", "corvane-firewall.exe");
  folder.Copy("Corvane.Native.Firewall.dll", "Corvane.Native.Firewall.dll");
  folder.Copy("emulator/fwpuclnt.dll", "fwpuclnt.dll");
  std::vector<std::wstring> arguments = GetParam();
  if (arguments.front() == L"report") {
    arguments.push_back((folder.Path() / L"report.html").native());
  } else if (arguments.front() == L"export") {
    arguments.push_back((folder.Path() / L"machine.xml").native());
  }
  arguments.emplace_back(L"list");
  const ToolRun run = RunTool(arguments, folder.Path());
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.errors, "");
  EXPECT_THAT(run.output, EndsWith("list\n  no provider of this tool\n  no sublayers, no filters\n  done\n"));
}

INSTANTIATE_TEST_SUITE_P(
    PolicySteps, StepOfTheSystem,
    testing::Values(std::vector<std::wstring>{L"explain", L"--remote", L"1.1.1.1"},
                    std::vector<std::wstring>{L"map"}, std::vector<std::wstring>{L"prove"},
                    std::vector<std::wstring>{L"lint"}, std::vector<std::wstring>{L"report"},
                    std::vector<std::wstring>{L"export"}, std::vector<std::wstring>{L"replay"}));

}  // namespace
