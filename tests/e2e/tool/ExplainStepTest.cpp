#include <gmock/gmock.h>

#include "EmulatedTool.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

TEST(Explain, EmptyEnginePermitsEverything) {
  const ToolRun run = RunEmulated({L"explain", L"--remote", L"1.1.1.1", L"--trace"});
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
            "    asked as a program of a signed-in user; user any; profile not given\n"
            "  done\n");
}

TEST(Explain, KillSwitchBlocksAsOurs) {
  const ToolRun run = RunEmulated({L"disable-internet", L"explain", L"--remote", L"1.1.1.1:80"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_THAT(run.output, AllOf(HasSubstr("remote 1.1.1.1:80, application other.exe, interface 999, flags "
                                          "0x00000000\n"
                                          "    blocked by filter "),
                                HasSubstr(" \"Corvane Kill Switch\" of Corvane Firewall Tool (ours)\n"
                                          "    at ALE_AUTH_CONNECT_V4, which matches every connection\n")));
}

TEST(Explain, TraceNamesTheFilterThatDecides) {
  const ToolRun run = RunEmulated({L"disable-internet", L"explain", L"--remote", L"1.1.1.1:80", L"--trace"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_THAT(run.output, AllOf(HasSubstr("remote 1.1.1.1:80, application other.exe, interface 999, flags "
                                          "0x00000000: block\n"
                                          "    ALE_AUTH_CONNECT_V4: block\n"
                                          "      sublayer \"Corvane Kill Switch\" (weight 8): hard block of "
                                          "filter "),
                                HasSubstr("        matches every connection\n")));
}

TEST(Explain, EachRemoteIsExplained) {
  const ParsedJson explanations =
      LastStep({L"explain", L"--remote", L"1.1.1.1", L"--remote", L"[fe80::1]:53"})["explanations"];
  ASSERT_EQ(explanations.size(), 2u);
  EXPECT_EQ(explanations[0]["connection"]["remoteAddress"], "1.1.1.1");
  EXPECT_EQ(explanations[0]["connection"]["remotePort"], 443);
  EXPECT_EQ(explanations[1]["connection"]["remoteAddress"], "fe80::1");
  EXPECT_EQ(explanations[1]["connection"]["remotePort"], 53);
  EXPECT_EQ(explanations[1]["connection"]["ipVersion"], 6);
}

TEST(Explain, OptionsMakeTheConnection) {
  const ParsedJson connection =
      LastStep({L"explain", L"--inbound", L"--remote", L"10.0.0.1:53", L"--local", L"10.0.0.2:67",
                L"--protocol", L"udp", L"--app", L"\\device\\harddiskvolume1\\a.exe", L"--interface", L"7",
                L"--loopback"})["explanations"][0]["connection"];
  EXPECT_EQ(connection, ParsedJson::parse(R"json({
    "text": "inbound IPv4, protocol 17 (UDP), local 10.0.0.2:67, remote 10.0.0.1:53, application \\device\\harddiskvolume1\\a.exe, interface 7, flags 0x00000001",
    "direction": "inbound",
    "ipVersion": 4,
    "protocol": 17,
    "localAddress": "10.0.0.2",
    "localPort": 67,
    "remoteAddress": "10.0.0.1",
    "remotePort": 53,
    "application": "5c006400650076006900630065005c0068006100720064006400690073006b0076006f006c0075006d00650031005c0061002e006500780065000000",
    "interface": "7",
    "arrivalInterface": "7",
    "nextHopInterface": null,
    "flags": 1
  })json"));
}

TEST(Explain, IcmpIsAnEchoRequestOfTheIpVersion) {
  const std::vector<std::wstring> both{L"explain",  L"--protocol", L"icmp",   L"--remote",
                                       L"10.0.0.1", L"--remote",   L"fe80::1"};
  const ParsedJson explanations = LastStep(both)["explanations"];
  EXPECT_THAT(explanations[0]["connection"]["text"].get<std::string>(),
              HasSubstr("protocol 1 (ICMP), local 192.0.2.1:8, remote 10.0.0.1:0"));
  EXPECT_THAT(explanations[1]["connection"]["text"].get<std::string>(),
              HasSubstr("protocol 58 (ICMPv6), local [2001:db8::1]:128, remote [fe80::1]:0"));
}

TEST(Explain, IcmpTypeAndCodeAreOptions) {
  const ParsedJson connection =
      LastStep({L"explain", L"--protocol", L"1", L"--remote", L"10.0.0.1", L"--icmp-type", L"3",
                L"--icmp-code", L"13"})["explanations"][0]["connection"];
  EXPECT_EQ(connection["protocol"], 1);
  EXPECT_EQ(connection["localPort"], 3);
  EXPECT_EQ(connection["remotePort"], 13);
  const ParsedJson withoutCode = LastStep({L"explain", L"--protocol", L"58", L"--remote", L"fe80::1",
                                           L"--icmp-type", L"135"})["explanations"][0]["connection"];
  EXPECT_EQ(withoutCode["localPort"], 135);
  EXPECT_EQ(withoutCode["remotePort"], 0);
}

TEST(Explain, ProtocolWithoutPortsHasNone) {
  for (const wchar_t* protocol : {L"47", L"50", L"58"}) {
    const ParsedJson connection = LastStep(
        {L"explain", L"--protocol", protocol, L"--remote", L"10.0.0.1"})["explanations"][0]["connection"];
    EXPECT_TRUE(connection["localPort"].is_null());
    EXPECT_TRUE(connection["remotePort"].is_null());
  }
}

TEST(Explain, ProtocolWithoutPortsFaresAsTheMapTells) {
  EXPECT_THAT(RunEmulated({L"disable-internet", L"explain", L"--protocol", L"47", L"--remote", L"10.0.0.1",
                           L"--trace"})
                  .output,
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
  const ParsedJson explained =
      LastStep({L"disable-internet", L"--app", app, L"explain", L"--remote", L"1.1.1.1", L"--app", app});
  const ParsedJson& connect = explained["explanations"][0]["layers"][0];
  EXPECT_EQ(connect["layer"], "ALE_AUTH_CONNECT_V4");
  ASSERT_EQ(connect["sublayers"].size(), 1u);
  EXPECT_EQ(connect["sublayers"][0]["name"], "Corvane Kill Switch");
  EXPECT_EQ(connect["sublayers"][0]["effect"], "stands");
}

TEST(Explain, NamesTheFiltersThatOneFieldKeepsFromPermitting) {
  EXPECT_THAT(RunEmulated({L"disable-internet", L"explain", L"--remote", L"10.0.0.1:53", L"--trace"}).output,
              HasSubstr("\"Corvane Kill Switch\" would permit, but the remote port is 53\n"));
  const ParsedJson sublayer = LastStep({L"disable-internet", L"explain", L"--remote",
                                        L"10.0.0.1:53"})["explanations"][0]["layers"][0]["sublayers"][0];
  std::vector<std::string> fields;
  for (const ParsedJson& miss : sublayer["nearMisses"]) {
    EXPECT_EQ(miss["action"], "permit");
    EXPECT_EQ(miss["filter"]["name"], "Corvane Kill Switch");
    fields.push_back(miss["field"].get<std::string>());
  }
  EXPECT_THAT(fields, ElementsAre("flags", "remote port", "remote address"));
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
  const ParsedJson outside = after({L"1.1.1.1"});
  EXPECT_EQ(outside["verdict"]["verdict"], "block");
  EXPECT_EQ(outside["layers"][0]["sublayers"][3]["name"], "Corvane Interface Leak Protection");
  EXPECT_EQ(outside["layers"][0]["sublayers"][3]["effect"], "stands");
  EXPECT_EQ(after({L"1.1.1.1", L"--interface", L"7"})["verdict"]["verdict"], "permit");
  EXPECT_EQ(after({L"198.51.100.7"})["verdict"]["verdict"], "permit");
  EXPECT_EQ(after({L"198.51.100.7:53"})["verdict"]["verdict"], "block");

  const ParsedJson blocked =
      after({L"2001:db8::1", L"--interface", L"7", L"--app", L"\\device\\harddiskvolume1\\bad.exe"});
  EXPECT_EQ(blocked["verdict"]["verdict"], "block");
  EXPECT_EQ(blocked["layers"][0]["sublayers"][2]["name"], "Corvane Copy of Windows Firewall");
  EXPECT_EQ(blocked["layers"][0]["sublayers"][2]["effect"], "stands");
  EXPECT_EQ(blocked["layers"][0]["sublayers"][3]["effect"], "ignored");
}

}  // namespace
