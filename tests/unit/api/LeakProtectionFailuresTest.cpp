#include <WfpPlatform.h>
#include <gmock/gmock.h>

#include <stdexcept>
#include <tuple>

#include "LeakProtectionTest.h"
#include "UnreadableIpV6Texts.h"
#include "emulator/Control.h"
#include "filtering/EngineKeys.h"
#include "support/AppBlock.h"
#include "support/EngineKeys.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class RuleSetFailure : public LeakProtectionTest, public testing::WithParamInterface<CodeExample> {};

TEST_P(RuleSetFailure, OfTheDnsRulesLeavesThemOut) {
  EngineEmulator::FailCall("FwpmGetAppIdFromFileName0", 1, GetParam().code);
  EXPECT_EQ(Enable(), 0U);
  EXPECT_THAT(
      TakeLog(),
      ElementsAre(
          "NATIVE: Enabling leak protection v3",
          "NATIVE: Enabling leak protection. Allowed interface: ", "NATIVE: Allowing interface by LUID 7",
          "NATIVE: DNS leak FirewallException", "NATIVE: LeakProtection - apply firewall.",
          "NATIVE: LeakProtection - transaction commit.", "NATIVE: LeakProtection applying finished."));
  EXPECT_EQ(Registered(), "copy interface");
  EXPECT_EQ(Installed(), "copy 1, interface 20");
  EXPECT_EQ(IsLeakProtectionEnabled(), 0U);
  EXPECT_STREQ(GetErrorText(), "");
}

TEST_P(RuleSetFailure, OfTheCopyLeavesItOut) {
  EngineEmulator::FailCall("FwpmEngineOpen0", 1, GetParam().code);
  EXPECT_EQ(Enable(), 0U);
  EXPECT_THAT(
      TakeLog(),
      ElementsAre(
          "NATIVE: Enabling leak protection v3", "NATIVE: Enabling leak protection. Allowed interface: ",
          "NATIVE: Allowing interface by LUID 7", "NATIVE: LeakProtection dnsLeakSublayer set weight",
          "NATIVE: Win Firewall Copy FirewallException", "NATIVE: LeakProtection - apply firewall.",
          "NATIVE: LeakProtection - transaction commit.", "NATIVE: LeakProtection applying finished."));
  EXPECT_EQ(Registered(), "dns interface");
  EXPECT_EQ(Installed(), "dns 12, interface 20");
  EXPECT_EQ(IsLeakProtectionEnabled(), 0U);
  EXPECT_STREQ(GetErrorText(), "");
}

TEST_P(RuleSetFailure, OfTheDnsRulesIsLoggedTwiceWhenEarlierOnesCannotBeRemoved) {
  LeaveOnly(2);
  ASSERT_EQ(Registered(), "dns");
  EngineEmulator::FailCall("FwpmGetAppIdFromFileName0", 1, 5);
  EngineEmulator::FailCall("FwpmSubLayerDeleteByKey0", 1, GetParam().code);
  EXPECT_EQ(Enable(), 0U);
  EXPECT_THAT(
      TakeLog(),
      ElementsAre(
          "NATIVE: Enabling leak protection v3", "NATIVE: Enabling leak protection. Allowed interface: ",
          "NATIVE: Allowing interface by LUID 7", "NATIVE: DNS leak FirewallException",
          "NATIVE: DNS leak RemoveSublayer FirewallException", "NATIVE: LeakProtection - apply firewall.",
          "NATIVE: LeakProtection - transaction commit.", "NATIVE: LeakProtection applying finished."));
  EXPECT_EQ(Registered(), "dns copy interface");
  EXPECT_EQ(Installed(), "dns 0, copy 1, interface 20");
  EXPECT_STREQ(GetErrorText(), "");
}

TEST_P(RuleSetFailure, OfTheCopyIsLoggedTwiceWhenAnEarlierOneCannotBeRemoved) {
  LeaveOnly(3);
  ASSERT_EQ(Registered(), "copy");
  EngineEmulator::FailCall("FwpmEngineOpen0", 1, 5);
  EngineEmulator::FailCall("FwpmSubLayerDeleteByKey0", 1, GetParam().code);
  EXPECT_EQ(Enable(), 0U);
  EXPECT_THAT(
      TakeLog(),
      ElementsAre(
          "NATIVE: Enabling leak protection v3",
          "NATIVE: Enabling leak protection. Allowed interface: ", "NATIVE: Allowing interface by LUID 7",
          "NATIVE: LeakProtection dnsLeakSublayer set weight", "NATIVE: Win Firewall Copy FirewallException",
          "NATIVE: Win Firewall Copy RemoveSublayer FirewallException",
          "NATIVE: LeakProtection - apply firewall.", "NATIVE: LeakProtection - transaction commit.",
          "NATIVE: LeakProtection applying finished."));
  EXPECT_EQ(Registered(), "dns copy interface");
  EXPECT_EQ(Installed(), "dns 12, copy 0, interface 20");
  EXPECT_STREQ(GetErrorText(), "");
}

/// Adds a sublayer with the key of the interface rules, as another process may do.
void AddForeignInterfaceRules() {
  HANDLE engine = nullptr;
  std::wstring name = L"foreign";
  FWPM_SUBLAYER0 sublayer{};
  sublayer.subLayerKey = kInterfaceLeakKey;
  sublayer.displayData.name = name.data();
  EXPECT_EQ(FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &engine), 0U);
  EXPECT_EQ(FwpmSubLayerAdd0(engine, &sublayer, nullptr), 0U);
  FwpmEngineClose0(engine);
}

TEST_P(RuleSetFailure, OfTheInterfaceRulesIsLoggedTwiceWhenTheirKeyCannotBeRemoved) {
  // The session must be open and the key of the interface rules in use. This only happens if a host gives the
  // DNS rules the same key.
  Initialize(&kProviderKey, L"n", L"d", &kKillSwitchKey, L"n", L"d", &kLocalNetworkKey, L"n", L"d", &kDhcpKey,
             L"n", L"d", &kInterfaceLeakKey, L"n", L"d", &kInterfaceLeakKey, L"n", L"d", &kFirewallCopyKey,
             L"n", L"d", &kSkeinKey, L"n", L"d", L"C:\\dns.exe");
  ASSERT_EQ(EnableDhcp(Log), 0U);
  AddForeignInterfaceRules();
  TakeLog();
  EngineEmulator::FailCall("FwpmSubLayerDeleteByKey0", 1, GetParam().code);
  const UnreadableIpV6Texts unreadable;
  EXPECT_EQ(Enable(), 0U);
  EXPECT_THAT(
      TakeLog(),
      ElementsAre("NATIVE: Enabling leak protection v3",
                  "NATIVE: Enabling leak protection. Allowed interface: ",
                  "NATIVE: Allowing interface by LUID 7", "NATIVE: LeakProtection dnsLeakSublayer set weight",
                  "NATIVE: IFaceLeakProtection FirewallException",
                  "NATIVE: IFaceLeakProtection RemoveSublayer FirewallException",
                  "NATIVE: LeakProtection - apply firewall.", "NATIVE: LeakProtection - transaction commit.",
                  "NATIVE: LeakProtection applying finished."));
  EXPECT_EQ(Registered(), "copy interface");
  EXPECT_STREQ(GetErrorText(), "");
}

INSTANTIATE_TEST_SUITE_P(EachCode, RuleSetFailure, testing::ValuesIn(kCodeExamples));

class LeakProtectionFailures : public LeakProtectionTest {};

TEST_F(LeakProtectionFailures, OfTheLastIdentifierLeavesTheDnsRulesOut) {
  EngineEmulator::FailCall("FwpmGetAppIdFromFileName0", 4, 5);
  EXPECT_EQ(Enable(), 0U);
  EXPECT_EQ(Registered(), "copy interface");
}

TEST_F(LeakProtectionFailures, OfAnAppWithoutAFileLeavesTheDnsRulesOut) {
  Initialize(&kProviderKey, L"n", L"d", &kKillSwitchKey, L"n", L"d", &kLocalNetworkKey, L"n", L"d", &kDhcpKey,
             L"n", L"d", &kDnsLeakKey, L"n", L"d", &kInterfaceLeakKey, L"n", L"d", &kFirewallCopyKey, L"n",
             L"d", &kSkeinKey, L"n", L"d", L"C:\\windows\\no such program.exe");
  EXPECT_EQ(Enable(), 0U);
  EXPECT_EQ(Registered(), "copy interface");
  EXPECT_EQ(Installed(), "copy 1, interface 20");
}

TEST_F(LeakProtectionFailures, OfTheInterfaceRulesLeavesThemOut) {
  const UnreadableIpV6Texts unreadable;
  EXPECT_EQ(Enable(), 0U);
  EXPECT_THAT(
      TakeLog(),
      ElementsAre(
          "NATIVE: Enabling leak protection v3", "NATIVE: Enabling leak protection. Allowed interface: ",
          "NATIVE: Allowing interface by LUID 7", "NATIVE: LeakProtection dnsLeakSublayer set weight",
          "NATIVE: IFaceLeakProtection FirewallException", "NATIVE: LeakProtection - apply firewall.",
          "NATIVE: LeakProtection - transaction commit.", "NATIVE: LeakProtection applying finished."));
  EXPECT_EQ(Registered(), "dns copy");
  EXPECT_EQ(Installed(), "dns 12, copy 1");
  EXPECT_STREQ(GetErrorText(), "");
}

TEST_F(LeakProtectionFailures, OfTheInterfaceRulesInAReplacementSkipTheCommit) {
  TurnOn();
  const UnreadableIpV6Texts unreadable;
  EXPECT_EQ(Enable(), 0U);
  EXPECT_THAT(
      TakeLog(),
      ElementsAre(
          "NATIVE: Enabling leak protection v3",
          "NATIVE: Enabling leak protection. Allowed interface: ", "NATIVE: Allowing interface by LUID 7",
          "NATIVE: LeakProtection already enabled - changing only whitelisted IP.",
          "NATIVE: IFaceLeakProtection FirewallException", "NATIVE: LeakProtection - apply firewall.",
          "NATIVE: LeakProtection - transaction commit.", "NATIVE: LeakProtection applying finished."));
  EXPECT_THAT(TakeCalls(), Not(Contains("FwpmTransactionCommit0")));
  EXPECT_TRUE(TransactionIsOpen());
  EXPECT_EQ(Registered(), "dns copy");
  EXPECT_EQ(Installed(), "dns 12, copy 1");
}

TEST_F(LeakProtectionFailures, OfOneRuleSetDoNotKeepTheNextFromFailing) {
  EngineEmulator::FailCall("FwpmGetAppIdFromFileName0", 1, 5);
  EngineEmulator::FailCall("FwpmEngineOpen0", 1, 5);
  const UnreadableIpV6Texts unreadable;
  EXPECT_EQ(Enable(), 0U);
  EXPECT_THAT(
      TakeLog(),
      ElementsAre(
          "NATIVE: Enabling leak protection v3",
          "NATIVE: Enabling leak protection. Allowed interface: ", "NATIVE: Allowing interface by LUID 7",
          "NATIVE: DNS leak FirewallException", "NATIVE: Win Firewall Copy FirewallException",
          "NATIVE: IFaceLeakProtection FirewallException", "NATIVE: LeakProtection - apply firewall.",
          "NATIVE: LeakProtection - transaction commit.", "NATIVE: LeakProtection applying finished."));
  EXPECT_EQ(Registered(), "");
  EXPECT_EQ(Installed(), "");
}

TEST_F(LeakProtectionFailures, OfABlockInALayerThatTheModelLacksLeaveTheCopyOut) {
  AppBlock discarded(L"C:\\b.exe");
  discarded.filter.layerKey = kConnectV4Discard;
  discarded.Add();
  EXPECT_EQ(Enable(), 0U);
  EXPECT_THAT(TakeLog(), Contains("NATIVE: Win Firewall Copy FirewallException"));
  EXPECT_EQ(Registered(), "dns interface");
}

TEST_F(LeakProtectionFailures, OfTheEnumerationGiveAnEmptyCopy) {
  for (const char* function : {"FwpmFilterCreateEnumHandle0", "FwpmFilterEnum0"}) {
    EngineEmulator::FailCall(function, 1, 5);
    EXPECT_EQ(Enable(), 0U);
    EXPECT_THAT(TakeLog(), SizeIs(7));
    EXPECT_EQ(IsLeakProtectionEnabled(), 1U);
    EXPECT_EQ(Installed(), "dns 12, copy 0, interface 20");
    ASSERT_EQ(DisableLeakProtection(), 0U);
  }
}

/// Its callback throws an exception at one line of the log.
class ThrowingLeakProtectionLog : public LeakProtectionTest {
 protected:
  static std::uint64_t CORVANE_CALL LogAndThrow(const char* line) {
    Log(line);
    if (line == std::string("NATIVE: LeakProtection - apply firewall.")) {
      throw std::length_error("out of something");
    }
    return 0;
  }
};

TEST_F(ThrowingLeakProtectionLog, LetsAnyOtherExceptionEscape) {
  EXPECT_THROW(EnableLeakProtection("198.51.100.7", LogAndThrow, nullptr, 0, 7, nullptr, 0),
               std::length_error);
  EXPECT_EQ(Registered(), "dns copy interface");
  EXPECT_EQ(Installed(), "");
  EXPECT_STREQ(GetErrorText(), "");
}

}  // namespace
