#include <gmock/gmock.h>

#include <regex>

#include "EmulatedTool.h"
#include "WrongUsage.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

TEST_P(WrongUsage, ExitsWithTwoAndAHintBeforeAnyStepRuns) {
  const ToolRun run = RunTool(GetParam().arguments);
  EXPECT_EQ(run.exitCode, 2u);
  EXPECT_EQ(run.output, "");
  EXPECT_THAT(run.errors, HasSubstr(GetParam().wrong));
  EXPECT_THAT(run.errors, HasSubstr(std::string("\nhint: ") + GetParam().right));
  EXPECT_THAT(run.errors, HasSubstr("corvane-firewall --help"));
}

TEST_P(WrongUsage, IsAJsonDocumentWhereOneIsAskedFor) {
  std::vector<std::wstring> arguments = GetParam().arguments;
  arguments.insert(arguments.begin(), L"--json");
  const ToolRun run = RunTool(arguments);
  EXPECT_EQ(run.exitCode, 2u);
  EXPECT_EQ(run.errors, "");
  const ParsedJson document = DocumentOf(run);
  EXPECT_TRUE(document["engine"].is_null());
  EXPECT_EQ(document["ok"], false);
  EXPECT_EQ(document["steps"], ParsedJson::array());
  EXPECT_THAT(document["error"]["text"].get<std::string>(), HasSubstr(GetParam().wrong));
  EXPECT_THAT(
      document["error"]["hint"].get<std::string>(),
      testing::AllOf(StartsWith(GetParam().right), testing::EndsWith(", see corvane-firewall --help")));
}

const WrongUse kWrongUses[]{
    {{}, "No steps are given", "give at least one of disable-internet, enable-internet, enable-dhcp"},
    {{L"--engine", L"emulated"}, "No steps are given", "give at least one of disable-internet"},
    {{L"--engine", L"emulated", L"status", L"lsit"},
     "There is no step \"lsit\"",
     "the steps are disable-internet"},
    {{L"--engine", L"emulated", L"status", L"disable-internet", L"--port", L"1"},
     "The step disable-internet has no option --port",
     "its options are --app, --interface"},
    {{L"--engine", L"emulated", L"status", L"enable-dhcp", L"--app", L"x"},
     "The step enable-dhcp has no option --app",
     "its options are only the global ones"},
    {{L"--app", L"x", L"--engine", L"emulated", L"status"},
     "There is no option --app before the first step",
     "the options of a step go after its name"},
    {{L"--engine", L"emulated", L"status", L"disable-internet", L"--app"},
     "--app: 1 required PATH missing",
     "options go after the step"},
    {{L"--engine", L"emulated", L"status", L"disable-internet", L"--interface", L""},
     "the value is empty",
     "options go after the step"},
    {{L"--engine", L"emulated", L"enable-leak-protection", L"--luid", L"7"},
     "--server is required",
     "options go after the step"},
    {{L"--engine", L"emulated", L"enable-leak-protection", L"--server", L"vpn.example"},
     "vpn.example is no IPv4 address",
     "options go after the step"},
    {{L"--engine", L"emulated", L"enable-leak-protection", L"--server", L"1.2.3.4", L"--server", L"1.2.3.5"},
     "--server",
     "options go after the step"},
    {{L"--engine", L"emulated", L"enable-leak-protection", L"--server", L"1.2.3.4", L"--luid", L"0x7"},
     "0x7 is no LUID",
     "options go after the step"},
    {{L"--engine", L"emulated", L"enable-leak-protection", L"--server", L"1.2.3.4", L"--luid", L"0"},
     "0 is no LUID",
     "options go after the step"},
    {{L"--engine", L"emulated", L"enable-leak-protection", L"--server", L"1.2.3.4", L"--allow", L"1.2.3"},
     "1.2.3 is no IPv4 address",
     "options go after the step"},
    {{L"--engine", L"emulated", L"status", L"enable-skein", L"--peer", L"10.0.0"},
     "--peer: 10.0.0 is no IPv4 address",
     "options go after the step"},
    {{L"--engine", L"emulated", L"status", L"enable-skein", L"--peer", L"::1"},
     "--peer: ::1 is no IPv4 address",
     "options go after the step"},
    {{L"--engine", L"emulated", L"status", L"enable-skein", L"--luid", L"0"},
     "--luid: 0 is no LUID",
     "options go after the step"},
    {{L"--engine", L"emulated", L"status", L"enable-skein", L"--luid", L"18446744073709551616"},
     "--luid: 18446744073709551616 is no LUID",
     "options go after the step"},
    {{L"--engine", L"emulated", L"status", L"enable-skein", L"--luid", L"7 "},
     "--luid: 7  is no LUID",
     "options go after the step"},
    {{L"--engine", L"emulated", L"status", L"enable-skein", L"--luid", L"7", L"--luid", L"8"},
     "--luid: At Most 1 required but received 2",
     "options go after the step"},
    {{L"--engine", L"emulated", L"explain"}, "--remote is required", "options go after the step"},
    {{L"--engine", L"emulated", L"explain", L"--remote", L"10.0.0.1:"},
     "10.0.0.1: is neither an address nor one with a port up to 65535, such as 10.0.0.1:53 or [fe80::1]:53",
     "options go after the step"},
    {{L"--engine", L"emulated", L"explain", L"--remote", L"10.0.0.1:70000"},
     "10.0.0.1:70000 is neither an address nor one with a port up to 65535",
     "options go after the step"},
    {{L"--engine", L"emulated", L"explain", L"--remote", L"10.0.0.1", L"--protocol", L"256"},
     "256 is none of tcp, udp, icmp and 0 to 255",
     "options go after the step"},
    {{L"--engine", L"emulated", L"explain", L"--remote", L"10.0.0.1", L"--icmp-type", L"256"},
     "--icmp-type: 256 is no number from 0 to 255",
     "options go after the step"},
    {{L"--engine", L"emulated", L"explain", L"--remote", L"::1", L"--app", L"a", L"--app", L"b"},
     "--app: At Most 1 required but received 2",
     "options go after the step"},
    {{L"--engine", L"emulated", L"explain", L"--remote", L"::1", L"--remote-port", L"1"},
     "The step explain has no option --remote-port",
     "its options are --remote, --local, --protocol, --icmp-type, --icmp-code, --app, --interface, "
     "--inbound, --loopback"},
    {{L"--engine", L"emulated", L"watch", L"--for", L"0"},
     "--for: 0 is no number of seconds from 1 to 31536000",
     "options go after the step"},
    {{L"--engine", L"emulated", L"watch", L"--for", L"1.5"},
     "--for: 1.5 is no number of seconds from 1 to 31536000",
     "options go after the step"},
    {{L"--engine", L"machine.xml", L"watch"},
     "The step watch tells of this machine or this run, and a dump is neither",
     "the steps that read a dump are list, explain"},
    {{L"--engine", L"emulated", L"report"}, "file is required", "options go after the step"},
    {{L"--engine", L"emulated", L"report", L"a.html", L"b.html"},
     "There is no step \"b.html\"",
     "the steps are disable-internet"},
    {{L"--engine", L"pretended", L"status"},
     "--engine: pretended is neither system nor emulated, nor a file that ends in .xml",
     "options go after the step"},
    {{L"--engine", L"emulated", L"--start", L"", L"list"},
     "--start: the value is empty",
     "options go after the step"},
    {{L"--engine", L"emulated", L"export", L"machine.txt"},
     "file: machine.txt does not end in .xml, as the name of a dump does",
     "options go after the step"},
    {{L"--engine", L"machine.XML", L"prove"},
     "The step prove tells of this machine or this run, and a dump is neither",
     "the steps that read a dump are list, explain, map, lint, report, export, replay"},
    {{L"--engine", L"machine.xml", L"calibrate"},
     "The step calibrate connects through an engine, and a dump has none",
     "--engine system is this machine's, and --engine emulated simulates it"},
    {{L"--engine", L"emulated", L"calibrate", L"found.txt"},
     "There is no step \"found.txt\"",
     "the steps are disable-internet"},
    {{L"--engine", L"emulated", L"--assume", L"found.txt", L"list"},
     "found.txt does not end in .json, as the name of a calibration does",
     "options go after the step"},
    {{L"--engine", L"machine.xml", L"--block-app", L"C:\\a.exe", L"list"},
     "--block-app is for the emulated engine",
     "it goes with --engine emulated"},
};

INSTANTIATE_TEST_SUITE_P(CommandLine, WrongUsage, testing::ValuesIn(kWrongUses));

TEST(CommandLine, JsonMayBeAskedForAfterTheMistake) {
  for (const std::vector<std::wstring>& arguments :
       {std::vector<std::wstring>{L"--engine", L"emulated", L"lsit", L"--json"},
        std::vector<std::wstring>{L"--engine", L"pretended", L"list", L"--json"},
        std::vector<std::wstring>{L"explain", L"--remote", L"10.0.0", L"list", L"--json"}}) {
    const ToolRun run = RunTool(arguments);
    EXPECT_EQ(run.exitCode, 2u);
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(DocumentOf(run)["ok"], false);
  }
}

TEST(CommandLine, JsonTakesNoValue) {
  const ToolRun run = RunTool({L"--engine", L"emulated", L"--json=false", L"status"});
  EXPECT_EQ(run.exitCode, 2u);
  EXPECT_EQ(run.output, "");
  EXPECT_THAT(run.errors, HasSubstr("json was given a disallowed flag override"));
}

TEST(CommandLine, HelpTellsTheStepsAndExitsWithZero) {
  const ToolRun run = RunTool({L"--help"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.errors, "");
  for (const char* text : {"disable-internet",
                           "--interface TEXT",
                           "enable-internet",
                           "enable-dhcp",
                           "disable-dhcp",
                           "enable-leak-protection",
                           "--server IPV4",
                           "--luid NUMBER",
                           "--allow IPV4",
                           "disable-leak-protection",
                           "disable-local-network",
                           "enable-local-network",
                           "enable-skein",
                           "--peer IPV4",
                           "disable-skein",
                           "status",
                           "adapters",
                           "list",
                           "explain",
                           "--remote ADDRESS[:PORT]",
                           "--icmp-type N",
                           "--icmp-code N",
                           "map",
                           "prove",
                           "lint",
                           "report",
                           "FILE.html",
                           "--engine",
                           "--dns-app",
                           "--block-app",
                           "--json",
                           "--no-hold"}) {
    EXPECT_THAT(run.output, HasSubstr(text));
  }
}

TEST(CommandLine, HelpOfAStepTellsItsOptionsAndRunsNothing) {
  const ToolRun run = RunTool({L"--engine", L"emulated", L"status", L"disable-internet", L"--help"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_THAT(run.output, HasSubstr("--app"));
  EXPECT_THAT(run.output, Not(HasSubstr("internet: on")));
}

TEST(CommandLine, VersionIsOneLine) {
  const ToolRun run = RunTool({L"--version"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_TRUE(std::regex_match(run.output, std::regex("corvane-firewall \\d+\\.\\d+\\.\\d+\n")))
      << run.output;
}

TEST(CommandLine, GlobalOptionsAreUnderstoodAfterAStepToo) {
  const ToolRun run = RunTool({L"list", L"--json", L"list", L"--engine", L"emulated"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_THAT(run.output, StartsWith("{\n  \"engine\": \"emulated\""));
}

TEST(CommandLine, NamesOfFilesArriveWhole) {
  const ToolRun run = RunTool({L"--engine", L"T\u00fcnnel \u65e5\u672c.xml", L"list"});
  EXPECT_EQ(run.exitCode, 2u);
  EXPECT_THAT(run.errors, StartsWith("error: T\xc3\xbcnnel \xe6\x97\xa5\xe6\x9c\xac.xml: no such file\n"));
}

}  // namespace
