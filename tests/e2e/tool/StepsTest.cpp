#include <gmock/gmock.h>

#include "EmulatedTool.h"

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

std::size_t Count(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) {
    ++count;
  }
  return count;
}

TEST(Steps, RunInTheOrderGivenAsOftenAsGiven) {
  const ToolRun run = RunEmulated({L"status", L"enable-dhcp", L"status", L"disable-internet", L"disable-dhcp",
                                   L"status", L"enable-internet", L"status"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.errors, "");
  EXPECT_EQ(run.output,
            "status\n"
            "  internet: on\n"
            "  dhcp rules: off\n"
            "  leak protection: off\n"
            "  local network: on\n"
            "  done\n"
            "enable-dhcp\n"
            "  NATIVE: enabling dhcp\n"
            "  NATIVE: dhcp enabled successfully.\n"
            "  done\n"
            "status\n"
            "  internet: on\n"
            "  dhcp rules: on\n"
            "  leak protection: off\n"
            "  local network: on\n"
            "  done\n"
            "disable-internet\n"
            "  NATIVE: DisableInternet\n"
            "  NATIVE: create killswitch layer\n"
            "  NATIVE: get interface luids\n"
            "  NATIVE: KillSwitch without adapter filter\n"
            "  NATIVE: Apply firewall.\n"
            "  done\n"
            "disable-dhcp\n"
            "  NATIVE: disabling dhcp\n"
            "  NATIVE: dhcp disabled successfully.\n"
            "  done\n"
            "status\n"
            "  internet: off\n"
            "  dhcp rules: off\n"
            "  leak protection: off\n"
            "  local network: on\n"
            "  done\n"
            "enable-internet\n"
            "  done\n"
            "status\n"
            "  internet: on\n"
            "  dhcp rules: off\n"
            "  leak protection: off\n"
            "  local network: on\n"
            "  done\n");
}

TEST(Steps, ListIsEmptyBeforeAnythingIsInstalled) {
  const ToolRun run = RunEmulated({L"list"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.output, "list\n  no provider of this tool\n  no sublayers, no filters\n  done\n");
}

TEST(Steps, ListIsEmptyAgainButForTheProviderAfterEverythingIsRemoved) {
  const ToolRun run =
      RunEmulated({L"disable-internet", L"enable-dhcp", L"enable-internet", L"disable-dhcp", L"list"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_THAT(run.output,
              EndsWith("list\n"
                       "  provider \"Corvane Firewall Tool\" {b2574836-bff5-4a6e-9bc2-db92f1632330}: Rules "
                       "installed by corvane-firewall\n"
                       "  no sublayers, no filters\n"
                       "  done\n"));
}

TEST(Steps, ListTellsTheSixDhcpFiltersInWords) {
  const ToolRun run = RunEmulated({L"enable-dhcp", L"list"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_THAT(
      WithoutIds(run.output),
      EndsWith(
          "list\n"
          "  provider \"Corvane Firewall Tool\" {b2574836-bff5-4a6e-9bc2-db92f1632330}: Rules installed by "
          "corvane-firewall\n"
          "  sublayer \"Corvane DHCP\" {28c81cd0-d8bf-4ab0-9def-9a7bf71e4641}: Lets address configuration "
          "through; weight 8; filters 6\n"
          "    filter # \"Corvane DHCP\" at ALE_AUTH_CONNECT_V4: PERMIT when IP_PROTOCOL EQUAL UINT8 17 and "
          "IP_LOCAL_PORT EQUAL UINT16 67 "
          "and IP_REMOTE_PORT EQUAL UINT16 68; weight UINT8 14; flags INDEXED\n"
          "    filter # \"Corvane DHCP\" at ALE_FLOW_ESTABLISHED_V4: PERMIT when IP_PROTOCOL EQUAL UINT8 17 "
          "and IP_LOCAL_PORT EQUAL "
          "UINT16 67 and IP_REMOTE_PORT EQUAL UINT16 68; weight UINT8 14\n"
          "    filter # \"Corvane DHCP\" at ALE_AUTH_CONNECT_V6: PERMIT when IP_PROTOCOL EQUAL UINT8 17 and "
          "IP_LOCAL_PORT EQUAL UINT16 "
          "546 "
          "and IP_REMOTE_PORT EQUAL UINT16 547; weight UINT8 14; flags INDEXED\n"
          "    filter # \"Corvane DHCP\" at ALE_AUTH_CONNECT_V6: PERMIT when IP_PROTOCOL EQUAL UINT8 17 and "
          "IP_LOCAL_PORT EQUAL UINT16 "
          "547 "
          "and IP_REMOTE_PORT EQUAL UINT16 546; weight UINT8 14; flags INDEXED\n"
          "    filter # \"Corvane DHCP\" at ALE_FLOW_ESTABLISHED_V6: PERMIT when IP_PROTOCOL EQUAL UINT8 17 "
          "and IP_LOCAL_PORT EQUAL "
          "UINT16 546 and IP_REMOTE_PORT EQUAL UINT16 547; weight UINT8 14\n"
          "    filter # \"Corvane DHCP\" at ALE_FLOW_ESTABLISHED_V6: PERMIT when IP_PROTOCOL EQUAL UINT8 17 "
          "and IP_LOCAL_PORT EQUAL "
          "UINT16 547 and IP_REMOTE_PORT EQUAL UINT16 546; weight UINT8 14\n"
          "  done\n"));
}

TEST(Steps, ListTellsTheKillSwitchWithItsBlocksAndItsOverride) {
  const ToolRun run = RunEmulated({L"disable-internet", L"list"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_THAT(run.output, HasSubstr("Blocks traffic outside the tunnel; weight 8; filters 51\n"));
  EXPECT_EQ(Count(run.output, "\n    filter "), 51u);
  EXPECT_EQ(Count(run.output, ": BLOCK always; weight UINT8 14\n"), 6u);
  EXPECT_EQ(Count(run.output, "; overrides other sublayers\n"), 3u);
  EXPECT_EQ(Count(run.output,
                  "PERMIT when IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 255.255.255.255/255.255.255.255 and "
                  "IP_REMOTE_PORT NOT_EQUAL UINT16 53; weight UINT8 14; overrides other sublayers\n"),
            3u);
}

TEST(Steps, ListHasTheFilterThatExplainNames) {
  const ToolRun run = RunEmulated({L"disable-internet", L"list", L"explain", L"--remote", L"1.1.1.1"});
  const std::string before = "blocked by ";
  const std::size_t at = run.output.find(before);
  ASSERT_NE(at, std::string::npos);
  const std::size_t begin = at + before.size();
  const std::string filter =
      run.output.substr(begin, run.output.find(" of Corvane Firewall Tool", begin) - begin);
  EXPECT_THAT(filter, StartsWith("filter "));
  EXPECT_THAT(run.output,
              HasSubstr("    " + filter + " at ALE_AUTH_CONNECT_V4: BLOCK always; weight UINT8 14\n"));
}

TEST(Steps, ListOfAllHasWhatOthersOwn) {
  const std::vector<std::wstring> options{L"--block-app", L"C:\\bad.exe", L"enable-dhcp", L"list"};
  EXPECT_EQ(Count(RunEmulated(options).output, "\n    filter "), 6u);
  std::vector<std::wstring> all = options;
  all.emplace_back(L"--all");
  const std::string output = WithoutIds(RunEmulated(all).output);
  EXPECT_EQ(Count(output, "\n    filter "), 8u);
  EXPECT_EQ(Count(output, "\n  sublayer "), 19u);
  EXPECT_THAT(output, HasSubstr("  sublayer \"Corvane DHCP\" {28c81cd0-"));
  EXPECT_THAT(output, HasSubstr("    filter # \"Block of another owner\" at ALE_AUTH_CONNECT_V6: BLOCK when "
                                "ALE_APP_ID EQUAL BYTE_BLOB \\device\\harddiskvolume1\\bad.exe; weight "
                                "EMPTY; flags INDEXED; no provider\n"));
}

TEST(Steps, ListGroupsFiltersBySublayer) {
  const ToolRun run = RunEmulated({L"enable-dhcp", L"disable-internet", L"list"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_EQ(Count(run.output, "\n  sublayer "), 2u);
  EXPECT_THAT(run.output, AllOf(HasSubstr("\"Corvane DHCP\""), HasSubstr("\"Corvane Kill Switch\"")));
  EXPECT_EQ(Count(run.output, "\n    filter "), 57u);
}

TEST(Steps, AppStaysConnectedInSixLayers) {
  const ToolRun run = RunEmulated(
      {L"disable-internet", L"--app", (ProgramFolder() / L"corvane-firewall.exe").native(), L"list"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_THAT(run.output, HasSubstr("filters 57\n"));
  EXPECT_EQ(Count(run.output, "PERMIT when ALE_APP_ID EQUAL BYTE_BLOB "), 6u);
}

TEST(Steps, ListHasMoreFiltersThanTheEngineHandsOutAtOnce) {
  std::vector<std::wstring> arguments{L"disable-internet"};
  for (int i = 0; i < 40; ++i) {
    arguments.insert(arguments.end(), {L"--app", (ProgramFolder() / L"corvane-firewall.exe").native()});
  }
  arguments.emplace_back(L"list");
  const ToolRun run = RunEmulated(arguments);
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_THAT(run.output, HasSubstr("filters 291\n"));
}

TEST(Steps, FailureTellsItsCodeAndTextAndEndsTheRun) {
  const ToolRun run =
      RunEmulated({L"disable-internet", L"--app", (ProgramFolder() / L"no such file.exe").native(), L"list"});
  EXPECT_EQ(run.exitCode, 1u);
  EXPECT_EQ(run.errors,
            "disable-internet failed: ERROR_FILE_NOT_FOUND (0x00000002): Failed to retrieve app blob\n");
  EXPECT_THAT(run.output, EndsWith("  NATIVE: create killswitch layer\n"
                                   "  NATIVE: Error applying firewall.\n"
                                   "  2\n"));
}

TEST(Steps, AdaptersAreThoseThatTheLibrarySearches) {
  const ToolRun run =
      RunEmulated({L"disable-internet", L"--interface", L"no adapter is described like this", L"adapters"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_THAT(run.output, HasSubstr("  NATIVE: No adapters found.\n"));
  EXPECT_GT(Count(run.output, "\", LUID "), 0u);
  EXPECT_EQ(Count(run.output, "\", LUID "), Count(run.output, "NATIVE available interface : "));
}

TEST(Steps, LocalNetworksAreBlockedAndFreedAgain) {
  const ToolRun run = RunEmulated({L"disable-local-network", L"status", L"disable-local-network", L"list",
                                   L"enable-local-network", L"status"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_THAT(run.output, StartsWith("disable-local-network\n"
                                     "  NATIVE: Apply firewall.\n"
                                     "  done\n"
                                     "status\n"
                                     "  internet: on\n"
                                     "  dhcp rules: off\n"
                                     "  leak protection: off\n"
                                     "  local network: off\n"
                                     "  done\n"
                                     "disable-local-network\n"
                                     "  done\n"
                                     "list\n"));
  EXPECT_THAT(run.output, HasSubstr("  sublayer \"Corvane Local Network\" "
                                    "{c65ec4fb-2f21-4713-b30f-2e770f8afd47}: ; weight 8; filters 15\n"));
  EXPECT_THAT(run.output,
              HasSubstr("\" at ALE_FLOW_ESTABLISHED_V6: BLOCK when IP_REMOTE_PORT NOT_EQUAL UINT16 53 and "
                        "IP_REMOTE_ADDRESS EQUAL V6_ADDR_MASK fc00::/7; weight UINT8 14\n"));
  EXPECT_THAT(run.output, EndsWith("enable-local-network\n"
                                   "  done\n"
                                   "status\n"
                                   "  internet: on\n"
                                   "  dhcp rules: off\n"
                                   "  leak protection: off\n"
                                   "  local network: on\n"
                                   "  done\n"));
}

TEST(Steps, SkeinLetsPeersInOnTheAdapterOfALuid) {
  const ToolRun run = RunEmulated({L"enable-skein", L"--luid", L"7", L"--peer", L"100.64.0.9", L"--peer",
                                   L"203.0.113.5", L"--interface", L"T\u00fcnnel", L"list"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_THAT(run.output, StartsWith("enable-skein\n"
                                     "  NATIVE: Enabling skein firewall rules\n"
                                     "  NATIVE: Enabling  skein firewall. Allowed interface: T\xc3\xbcnnel\n"
                                     "  NATIVE: Allowing interface by LUID 7\n"
                                     "  NATIVE: Apply skein firewall rules.\n"
                                     "  done\n"));
  EXPECT_THAT(
      WithoutIds(run.output),
      EndsWith("Rules of the Skein network; weight 8; filters 2\n"
               "    filter # \"Corvane Skein\" at ALE_AUTH_RECV_ACCEPT_V4: BLOCK when IP_LOCAL_INTERFACE "
               "EQUAL UINT64 7 and "
               "IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 100.64.0.0/255.192.0.0; weight UINT8 14; overrides "
               "other sublayers\n"
               "    filter # \"Corvane Skein\" at ALE_AUTH_RECV_ACCEPT_V4: PERMIT when IP_LOCAL_INTERFACE "
               "EQUAL UINT64 7 and "
               "IP_REMOTE_ADDRESS EQUAL UINT32 100.64.0.9 and IP_REMOTE_ADDRESS EQUAL UINT32 203.0.113.5; "
               "weight UINT8 15; overrides other sublayers\n"
               "  done\n"));
}

TEST(Steps, SkeinIsReplacedAndRemoved) {
  const ToolRun run = RunEmulated({L"enable-skein", L"--luid", L"7", L"enable-skein", L"--luid", L"8",
                                   L"list", L"disable-skein", L"list"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_EQ(Count(run.output, "filters 1\n"), 1u);
  EXPECT_THAT(run.output, HasSubstr("BLOCK when IP_LOCAL_INTERFACE EQUAL UINT64 8 and "));
  EXPECT_THAT(run.output, EndsWith("  no sublayers, no filters\n  done\n"));
}

TEST(Steps, SkeinWithoutAnAdapterHasNoRules) {
  const ToolRun run =
      RunEmulated({L"enable-skein", L"--interface", L"no adapter is described like this", L"list"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_THAT(run.output, HasSubstr("  NATIVE: Using adapters search by name\n"));
  EXPECT_THAT(run.output, HasSubstr("  NATIVE: skein firewall luids empty.\n"));
  EXPECT_THAT(run.output, HasSubstr("filters 0\n"));
}

}  // namespace
