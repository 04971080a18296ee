#include <gmock/gmock.h>

#include "EmulatedTool.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

using Arguments = std::vector<std::wstring>;

ToolRun RunWithDnsApp(const Arguments& arguments) {
  Arguments all{L"--dns-app", (ProgramFolder() / L"corvane-firewall.exe").native()};
  all.insert(all.end(), arguments.begin(), arguments.end());
  return RunEmulated(all);
}

TEST(LeakProtectionSteps, GoOnAreReplacedAndGoOff) {
  const ToolRun run = RunWithDnsApp({L"enable-leak-protection", L"--server", L"198.51.100.7", L"--luid", L"7",
                                     L"--allow", L"1.2.3.4", L"status", L"enable-leak-protection",
                                     L"--server", L"198.51.100.7", L"--luid", L"7", L"--allow", L"200.1.2.3",
                                     L"--allow", L"5.6.7.8", L"disable-leak-protection", L"status"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.errors, "");
  EXPECT_EQ(run.output,
            "enable-leak-protection\n"
            "  NATIVE: Enabling leak protection v3\n"
            "  NATIVE: Enabling leak protection. Allowed interface: \n"
            "  NATIVE: Allowing interface by LUID 7\n"
            "  NATIVE: LeakProtection dnsLeakSublayer set weight\n"
            "  NATIVE: LeakProtection - apply firewall.\n"
            "  NATIVE: LeakProtection - transaction commit.\n"
            "  NATIVE: LeakProtection applying finished.\n"
            "  done\n"
            "status\n"
            "  internet: on\n"
            "  dhcp rules: off\n"
            "  leak protection: on\n"
            "  local network: on\n"
            "  done\n"
            "enable-leak-protection\n"
            "  NATIVE: Enabling leak protection v3\n"
            "  NATIVE: Enabling leak protection. Allowed interface: \n"
            "  NATIVE: Allowing interface by LUID 7\n"
            "  NATIVE: LeakProtection already enabled - changing only whitelisted IP.\n"
            "  NATIVE: LeakProtection - apply firewall.\n"
            "  NATIVE: LeakProtection - transaction commit.\n"
            "  NATIVE: LeakProtection applying finished.\n"
            "  done\n"
            "disable-leak-protection\n"
            "  done\n"
            "status\n"
            "  internet: on\n"
            "  dhcp rules: off\n"
            "  leak protection: off\n"
            "  local network: on\n"
            "  done\n");
}

TEST(LeakProtectionSteps, ListTheThreeRuleSetsByWeight) {
  const ToolRun run = RunWithDnsApp({L"enable-leak-protection", L"--server", L"198.51.100.7", L"--luid", L"7",
                                     L"--allow", L"200.1.2.3", L"--allow", L"5.6.7.8", L"list"});
  EXPECT_EQ(run.exitCode, 0u);
  const std::size_t dns = run.output.find(
      "  sublayer \"Corvane DNS Leak Protection\" {b22d6566-f522-4aed-9e2b-1b573ae94781}: Keeps name "
      "look-ups "
      "inside the tunnel; weight 32001; filters 12\n");
  const std::size_t copy = run.output.find(
      "  sublayer \"Corvane Copy of Windows Firewall\" {486c6a8c-8e2d-4aa3-b970-5a854a90db6a}: Repeats the "
      "application blocks of Windows Firewall; weight 15; filters 0\n");
  const std::size_t interfaces = run.output.find(
      "  sublayer \"Corvane Interface Leak Protection\" {9cedb32c-df7c-4391-ba9b-0222838d2370}: Keeps "
      "traffic on "
      "the tunnel's interface; weight 8; filters 21\n");
  ASSERT_NE(interfaces, std::string::npos) << run.output;
  EXPECT_LT(dns, copy);
  EXPECT_LT(copy, interfaces);
  EXPECT_THAT(
      run.output,
      HasSubstr("\" at ALE_AUTH_CONNECT_V4: PERMIT when IP_REMOTE_ADDRESS EQUAL UINT32 200.1.2.3 and "
                "IP_REMOTE_ADDRESS EQUAL UINT32 5.6.7.8; weight UINT8 15; overrides other sublayers\n"));
  EXPECT_THAT(run.output,
              HasSubstr("\" at ALE_AUTH_CONNECT_V4: PERMIT when IP_LOCAL_INTERFACE NOT_EQUAL UINT64 7 and "
                        "IP_REMOTE_ADDRESS EQUAL UINT32 198.51.100.7; weight UINT8 14; overrides other "
                        "sublayers\n"));
}

TEST(LeakProtectionSteps, CopyTheBlocksOfAnotherOwner) {
  const ToolRun run =
      RunWithDnsApp({L"--block-app", L"C:\\bad.exe", L"--block-app", L"C:\\worse.exe", L"list",
                     L"enable-leak-protection", L"--server", L"198.51.100.7", L"--luid", L"7", L"list"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_EQ(run.errors, "");
  EXPECT_THAT(run.output, HasSubstr("list\n  no provider of this tool\n  no sublayers, no filters\n"));
  EXPECT_THAT(WithoutIds(run.output),
              HasSubstr("application blocks of Windows Firewall; weight 15; filters 4\n"
                        "    filter # \"Corvane Copy of Windows Firewall\" at ALE_AUTH_CONNECT_V4: BLOCK "
                        "when ALE_APP_ID EQUAL BYTE_BLOB "
                        "\\device\\harddiskvolume1\\bad.exe; weight UINT8 15; flags INDEXED\n"
                        "    filter # \"Corvane Copy of Windows Firewall\" at ALE_AUTH_CONNECT_V6: BLOCK "
                        "when ALE_APP_ID EQUAL BYTE_BLOB "
                        "\\device\\harddiskvolume1\\bad.exe; weight UINT8 15; flags INDEXED\n"
                        "    filter # \"Corvane Copy of Windows Firewall\" at ALE_AUTH_CONNECT_V4: BLOCK "
                        "when ALE_APP_ID EQUAL BYTE_BLOB "
                        "\\device\\harddiskvolume1\\worse.exe; weight UINT8 15; flags INDEXED\n"
                        "    filter # \"Corvane Copy of Windows Firewall\" at ALE_AUTH_CONNECT_V6: BLOCK "
                        "when ALE_APP_ID EQUAL BYTE_BLOB "
                        "\\device\\harddiskvolume1\\worse.exe; weight UINT8 15; flags INDEXED\n"));
}

TEST(LeakProtectionSteps, HaveTheirNameRulesBesideABlockedApplicationOfTheSameFolder) {
  const ToolRun run =
      RunWithDnsApp({L"--block-app", (ProgramFolder() / L"unwanted.exe").native(), L"enable-leak-protection",
                     L"--server", L"198.51.100.7", L"--luid", L"7", L"status", L"list"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_THAT(run.output, HasSubstr("  leak protection: on\n"));
  EXPECT_THAT(run.output, HasSubstr("Keeps name look-ups inside the tunnel; weight 32001; filters 12\n"));
}

TEST(LeakProtectionSteps, LogTheNamesAndSearchTheAdapters) {
  const ToolRun run = RunWithDnsApp({L"enable-leak-protection", L"--server", L"198.51.100.7", L"--interface",
                                     L"no adapter", L"--interface", L"is described like this"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_THAT(run.output, HasSubstr("  NATIVE: Enabling leak protection. Allowed interface: no adapter,is "
                                    "described like this\n"
                                    "  NATIVE: Using adapters search by name\n"));
  EXPECT_THAT(run.output, HasSubstr("  NATIVE: adapter luids empty.\n"));
}

TEST(LeakProtectionSteps, TakeALuidOfAllBits) {
  const ToolRun run = RunWithDnsApp({L"enable-leak-protection", L"--server", L"255.255.255.254", L"--luid",
                                     L"18446744073709551615", L"list"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_THAT(run.output, HasSubstr("IP_LOCAL_INTERFACE EQUAL UINT64 18446744073709551615"));
  EXPECT_THAT(run.output, HasSubstr("IP_REMOTE_ADDRESS EQUAL UINT32 255.255.255.254"));
}

TEST(LeakProtectionSteps, WithoutAnAppForNameLookUpsStayIncomplete) {
  const ToolRun run = RunTool({L"--engine", L"emulated", L"enable-leak-protection", L"--server",
                               L"198.51.100.7", L"--luid", L"7", L"status"});
  EXPECT_EQ(run.exitCode, 0u);
  EXPECT_THAT(run.output, HasSubstr("  NATIVE: DNS leak FirewallException\n"));
  EXPECT_THAT(run.output, EndsWith("  leak protection: off\n  local network: on\n  done\n"));
  EXPECT_THAT(run.output, Not(HasSubstr("dnsLeakSublayer")));
}

}  // namespace
