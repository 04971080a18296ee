#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "ToolProcess.h"

namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using Json = nlohmann::json;

ToolRun RunEmulated(std::vector<std::wstring> arguments) {
  arguments.insert(arguments.begin(), {L"--engine", L"emulated"});
  return RunTool(arguments);
}

/// The document's last step.
Json LastStep(std::vector<std::wstring> arguments) {
  arguments.insert(arguments.begin(), L"--json");
  const ToolRun run = RunEmulated(std::move(arguments));
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.errors, "");
  return Json::parse(run.output)["steps"].back();
}

TEST(Explain, EmptyEnginePermitsEverything) {
  const ToolRun run = RunEmulated({L"explain", L"--remote", L"1.1.1.1"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.errors, "");
  EXPECT_EQ(run.output,
            "explain\n"
            "  outbound IPv4, protocol 6 (TCP), local 192.0.2.1:50000, remote 1.1.1.1:443, application "
            "other.exe, interface 999, flags 0x00000000: permit\n"
            "    ALE_AUTH_CONNECT_V4: permit\n"
            "      no filter matches for certain: the engine permits\n"
            "    ALE_FLOW_ESTABLISHED_V4: permit\n"
            "      no filter matches for certain: the engine permits\n"
            "  done\n");
}

TEST(Explain, KillSwitchBlocksWithTheFilterThatDecides) {
  const ToolRun run = RunEmulated({L"disable-internet", L"explain", L"--remote", L"1.1.1.1:80"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_THAT(run.output, AllOf(HasSubstr("remote 1.1.1.1:80, application other.exe, interface 999, flags "
                                          "0x00000000: block\n"
                                          "    ALE_AUTH_CONNECT_V4: block\n"
                                          "      sublayer \"Corvane Kill Switch\" (weight 0): hard block of "
                                          "filter "),
                                HasSubstr("        matches every connection\n")));
}

TEST(Explain, EachRemoteIsExplained) {
  const Json explanations =
      LastStep({L"explain", L"--remote", L"1.1.1.1", L"--remote", L"[fe80::1]:53"})["explanations"];
  ASSERT_EQ(explanations.size(), 2u);
  EXPECT_EQ(explanations[0]["connection"]["remoteAddress"], "1.1.1.1");
  EXPECT_EQ(explanations[0]["connection"]["remotePort"], 443);
  EXPECT_EQ(explanations[1]["connection"]["remoteAddress"], "fe80::1");
  EXPECT_EQ(explanations[1]["connection"]["remotePort"], 53);
  EXPECT_EQ(explanations[1]["connection"]["ipVersion"], 6);
}

TEST(Explain, OptionsMakeTheConnection) {
  const Json connection =
      LastStep({L"explain", L"--inbound", L"--remote", L"10.0.0.1:53", L"--local", L"10.0.0.2:67",
                L"--protocol", L"udp", L"--app", L"\\device\\harddiskvolume1\\a.exe", L"--interface", L"7",
                L"--loopback"})["explanations"][0]["connection"];
  EXPECT_EQ(connection, Json::parse(R"json({
    "text": "inbound IPv4, protocol 17 (UDP), local 10.0.0.2:67, remote 10.0.0.1:53, application \\device\\harddiskvolume1\\a.exe, interface 7, flags 0x00000001",
    "direction": "inbound",
    "ipVersion": 4,
    "protocol": 17,
    "localAddress": "10.0.0.2",
    "localPort": 67,
    "remoteAddress": "10.0.0.1",
    "remotePort": 53,
    "application": "5c006400650076006900630065005c0068006100720064006400690073006b0076006f006c0075006d00650031005c0061002e006500780065000000",
    "interface": "0x7",
    "arrivalInterface": "0x7",
    "nextHopInterface": null,
    "flags": 1
  })json"));
}

TEST(Explain, IcmpIsAnEchoRequestOfTheIpVersion) {
  const std::vector<std::wstring> both{L"explain",  L"--protocol", L"icmp",   L"--remote",
                                       L"10.0.0.1", L"--remote",   L"fe80::1"};
  const Json explanations = LastStep(both)["explanations"];
  EXPECT_THAT(explanations[0]["connection"]["text"].get<std::string>(),
              HasSubstr("protocol 1 (ICMP), local 192.0.2.1:8, remote 10.0.0.1:0"));
  EXPECT_THAT(explanations[1]["connection"]["text"].get<std::string>(),
              HasSubstr("protocol 58 (ICMPv6), local [2001:db8::1]:128, remote [fe80::1]:0"));
}

TEST(Explain, IcmpTypeAndCodeAreOptions) {
  const Json connection = LastStep({L"explain", L"--protocol", L"1", L"--remote", L"10.0.0.1", L"--icmp-type",
                                    L"3", L"--icmp-code", L"13"})["explanations"][0]["connection"];
  EXPECT_EQ(connection["protocol"], 1);
  EXPECT_EQ(connection["localPort"], 3);
  EXPECT_EQ(connection["remotePort"], 13);
  const Json withoutCode = LastStep({L"explain", L"--protocol", L"58", L"--remote", L"fe80::1",
                                     L"--icmp-type", L"135"})["explanations"][0]["connection"];
  EXPECT_EQ(withoutCode["localPort"], 135);
  EXPECT_EQ(withoutCode["remotePort"], 0);
}

TEST(Explain, ProtocolWithoutPortsHasNone) {
  for (const wchar_t* protocol : {L"47", L"50", L"58"}) {
    const Json connection = LastStep(
        {L"explain", L"--protocol", protocol, L"--remote", L"10.0.0.1"})["explanations"][0]["connection"];
    EXPECT_TRUE(connection["localPort"].is_null());
    EXPECT_TRUE(connection["remotePort"].is_null());
  }
}

TEST(Explain, ProtocolWithoutPortsFaresAsTheMapTells) {
  EXPECT_THAT(
      RunEmulated({L"disable-internet", L"explain", L"--protocol", L"47", L"--remote", L"10.0.0.1"}).output,
      HasSubstr("protocol 47, local 192.0.2.1:unset, remote 10.0.0.1:unset, application other.exe, "
                "interface 999, flags 0x00000000: depends on unset-fields: "));
}

struct Contradiction {
  std::vector<std::wstring> options;
  const char* wrong;
};

TEST(Explain, PortsAndIcmpTypesAreOfTheirProtocolsOnly) {
  const Contradiction contradictions[]{
      {{L"--protocol", L"47", L"--remote", L"10.0.0.1:53"}, "Protocol 47 has no ports"},
      {{L"--protocol", L"50", L"--remote", L"::1", L"--local", L"[::1]:53"}, "Protocol 50 has no ports"},
      {{L"--protocol", L"icmp", L"--remote", L"10.0.0.1:53"}, "ICMP has no ports, but a type and a code"},
      {{L"--icmp-type", L"8", L"--remote", L"10.0.0.1"}, "Only ICMP has a type and a code"},
      {{L"--icmp-code", L"0", L"--protocol", L"1", L"--remote", L"::1"}, "Only ICMP has a type and a code"},
  };
  for (const auto& [options, wrong] : contradictions) {
    std::vector<std::wstring> arguments{L"explain"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const ToolRun run = RunEmulated(arguments);
    EXPECT_EQ(run.exitCode, 1u);
    EXPECT_THAT(run.errors, StartsWith(std::string("explain failed: ") + wrong + "\nhint: Give "));
  }
}

TEST(Explain, ExemptApplicationIsKnownByItsFile) {
  const std::wstring app = (ProgramFolder() / L"corvane-firewall.exe").native();
  const Json explained =
      LastStep({L"disable-internet", L"--app", app, L"explain", L"--remote", L"1.1.1.1", L"--app", app});
  const Json& connect = explained["explanations"][0]["layers"][0];
  EXPECT_EQ(connect["layer"], "ALE_AUTH_CONNECT_V4");
  ASSERT_EQ(connect["sublayers"].size(), 1u);
  EXPECT_EQ(connect["sublayers"][0]["name"], "Corvane Kill Switch");
  EXPECT_EQ(connect["sublayers"][0]["effect"], "stands");
}

TEST(Explain, UnknownAdapterIsAFailureThatNamesIt) {
  const ToolRun run = RunEmulated({L"explain", L"--remote", L"1.1.1.1", L"--interface", L"no such adapter"});
  EXPECT_EQ(run.exitCode, 1u);
  EXPECT_EQ(run.errors,
            "explain failed: There is no adapter named \"no such adapter\"\n"
            "hint: The step adapters lists them.\n");
}

TEST(Explain, MissingApplicationIsAFailureWithItsCode) {
  const ToolRun run = RunEmulated({L"explain", L"--remote", L"1.1.1.1", L"--app", L"C:\\no such file.exe"});
  EXPECT_EQ(run.exitCode, 1u);
  EXPECT_EQ(run.errors,
            "explain failed: ERROR_FILE_NOT_FOUND (0x00000002): The engine does not know the application "
            "C:\\no such file.exe\n");
}

TEST(Explain, EndsOfTwoIpVersionsAreAFailure) {
  const ToolRun run = RunEmulated({L"explain", L"--remote", L"fe80::1", L"--local", L"10.0.0.1"});
  EXPECT_EQ(run.exitCode, 1u);
  EXPECT_THAT(run.errors, HasSubstr("The two ends of a connection are of one IP version"));
}

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
  const Json map = LastStep({L"disable-internet", L"map"})["map"];
  ASSERT_EQ(map["sections"].size(), 4u);
  const Json& section = map["sections"][0];
  EXPECT_EQ(section["direction"], "outbound");
  EXPECT_EQ(section["ipVersion"], 4);
  ASSERT_EQ(section["fields"].size(), 3u);
  EXPECT_EQ(section["fields"][0]["field"], "flags");
  EXPECT_EQ(section["fields"][1]["field"], "remote port");
  EXPECT_EQ(section["fields"][2]["field"], "remote address");
  EXPECT_EQ(section["fields"][1]["classes"][0]["intervals"],
            Json::parse(R"([["0x0", "0x34"], ["0x36", "0xffff"]])"));
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

/// What the last step, prove, tells of each promise.
std::vector<std::string> StatesAfter(const std::vector<std::wstring>& arguments) {
  std::vector<std::string> states;
  const Json step = LastStep(arguments);
  for (const Json& promise : step["promises"]) {
    states.push_back(promise["name"].get<std::string>() + ": " + promise["state"].get<std::string>());
    EXPECT_EQ(promise["state"] == "holds", promise["counterexample"].is_null());
  }
  return states;
}

TEST(Prove, ChecksThePromisesOfWhatIsOn) {
  EXPECT_THAT(
      StatesAfter({L"disable-internet", L"enable-dhcp", L"prove"}),
      ElementsAre("kill-switch-closes-outbound: holds", "kill-switch-closes-inbound: holds",
                  "kill-switch-no-look-ups: holds", "kill-switch-loopback: holds only under a reading",
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
  const Json promises = LastStep(
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
  EXPECT_THAT(states, Contains("skein-peers: broken"));
  EXPECT_THAT(states, Contains("skein-closed: holds"));
}

TEST(Explain, LeakProtectionLeadsThroughTheTunnel) {
  const std::wstring app = (ProgramFolder() / L"corvane-firewall.exe").native();
  const auto after = [&](const std::vector<std::wstring>& explain) {
    std::vector<std::wstring> arguments{L"--dns-app",
                                        app,
                                        L"--block-app",
                                        L"C:\\bad.exe",
                                        L"enable-leak-protection",
                                        L"--server",
                                        L"198.51.100.7",
                                        L"--luid",
                                        L"7",
                                        L"explain",
                                        L"--remote"};
    arguments.insert(arguments.end(), explain.begin(), explain.end());
    return LastStep(arguments)["explanations"][0];
  };
  const Json outside = after({L"1.1.1.1"});
  EXPECT_EQ(outside["verdict"]["verdict"], "block");
  EXPECT_EQ(outside["layers"][0]["sublayers"][3]["name"], "Corvane Interface Leak Protection");
  EXPECT_EQ(outside["layers"][0]["sublayers"][3]["effect"], "stands");
  EXPECT_EQ(after({L"1.1.1.1", L"--interface", L"7"})["verdict"]["verdict"], "permit");
  EXPECT_EQ(after({L"198.51.100.7"})["verdict"]["verdict"], "permit");
  EXPECT_EQ(after({L"198.51.100.7:53"})["verdict"]["verdict"], "block");

  const Json blocked =
      after({L"2001:db8::1", L"--interface", L"7", L"--app", L"\\device\\harddiskvolume1\\bad.exe"});
  EXPECT_EQ(blocked["verdict"]["verdict"], "block");
  EXPECT_EQ(blocked["layers"][0]["sublayers"][2]["name"], "Corvane Copy of Windows Firewall");
  EXPECT_EQ(blocked["layers"][0]["sublayers"][2]["effect"], "stands");
  EXPECT_EQ(blocked["layers"][0]["sublayers"][3]["effect"], "ignored");
}

TEST(Lint, FindsNothingInAnEmptyEngine) {
  EXPECT_EQ(RunEmulated({L"lint"}).output, "lint\n  no findings\n  done\n");
  EXPECT_EQ(LastStep({L"lint"})["findings"], Json::array());
}

TEST(Lint, NamesTheFilterTheReasonAndWhatWouldBeClearer) {
  const ToolRun run = RunEmulated({L"disable-internet", L"lint"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_THAT(run.output,
              AllOf(HasSubstr("  flags-equality: FLAGS EQUAL UINT32 0x00000001 compares the whole word"),
                    HasSubstr("Clearer: test the bits that matter, with FLAGS_ALL_SET or FLAGS_NONE_SET.\n"
                              "    filter "),
                    HasSubstr(" \"Corvane Kill Switch\"\n")));
  const Json findings = LastStep({L"disable-internet", L"lint"})["findings"];
  ASSERT_FALSE(findings.empty());
  EXPECT_EQ(findings[0]["filter"]["name"], "Corvane Kill Switch");
}

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(Report, IsOneFileThatLoadsNothing) {
  const TemporaryFolder folder;
  const std::filesystem::path path = folder.Path() / L"Übersicht.html";
  const Json step = LastStep({L"disable-internet", L"report", path.native()});
  EXPECT_THAT(step["file"].get<std::string>(), EndsWith("\xc3\x9c"
                                                        "bersicht.html"));
  const std::string page = ReadFile(path);
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

/// The tool in a folder where the emulator passes for the system's own engine.
TEST_P(StepOfTheSystem, ReadsOnlyAndDoesNotHold) {
  const TemporaryFolder folder;
  folder.Copy("corvane-firewall.exe", "corvane-firewall.exe");
  folder.Copy("Corvane.Native.Firewall.dll", "Corvane.Native.Firewall.dll");
  folder.Copy("emulator/fwpuclnt.dll", "fwpuclnt.dll");
  std::vector<std::wstring> arguments = GetParam();
  if (arguments.front() == L"report") {
    arguments.push_back((folder.Path() / L"report.html").native());
  }
  arguments.emplace_back(L"list");
  const ToolRun run = RunTool(arguments, folder.Path());
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.errors, "");
  EXPECT_THAT(run.output, EndsWith("list\n  no provider of this tool\n  no sublayers, no filters\n  done\n"));
}

INSTANTIATE_TEST_SUITE_P(PolicySteps, StepOfTheSystem,
                         testing::Values(std::vector<std::wstring>{L"explain", L"--remote", L"1.1.1.1"},
                                         std::vector<std::wstring>{L"map"},
                                         std::vector<std::wstring>{L"prove"},
                                         std::vector<std::wstring>{L"lint"},
                                         std::vector<std::wstring>{L"report"}));

}  // namespace
