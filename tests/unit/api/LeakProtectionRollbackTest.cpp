// Leak protection after a failure that ends the command, and commands that start when only a part of leak
// protection is there.
#include <WfpPlatform.h>
#include <gmock/gmock.h>

#include <tuple>

#include "LeakProtectionTest.h"
#include "emulator/Control.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

struct Fault {
  const char* function;
  std::size_t nth;
};
using FaultAndCode = std::tuple<Fault, CodeExample>;

class FirstEnableFailure : public LeakProtectionTest, public testing::WithParamInterface<FaultAndCode> {};

TEST_P(FirstEnableFailure, RemovesAllAndGivesTheCodeSilently) {
  const auto& [fault, example] = GetParam();
  EngineEmulator::FailCall(fault.function, fault.nth, example.code);
  EXPECT_EQ(Enable(), example.result);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: Enabling leak protection v3",
                                     "NATIVE: Enabling leak protection. Allowed interface: ",
                                     "NATIVE: Allowing interface by LUID 7",
                                     "NATIVE: LeakProtection dnsLeakSublayer set weight",
                                     "NATIVE: LeakProtection - apply firewall."));
  EXPECT_EQ(Registered(), "");
  EXPECT_EQ(Installed(), "");
  EXPECT_FALSE(TransactionIsOpen());
  EXPECT_STREQ(GetErrorText(), "");
}

INSTANTIATE_TEST_SUITE_P(
    EachCall, FirstEnableFailure,
    testing::Combine(testing::Values(Fault{"FwpmEngineOpen0", 2}, Fault{"FwpmSubLayerAdd0", 1},
                                     Fault{"FwpmSubLayerAdd0", 2}, Fault{"FwpmSubLayerAdd0", 3},
                                     Fault{"FwpmFilterAdd0", 1}, Fault{"FwpmFilterAdd0", 13},
                                     Fault{"FwpmFilterAdd0", 33}),
                     testing::ValuesIn(kCodeExamples)));

class LeakReplacementFailure : public LeakProtectionTest, public testing::WithParamInterface<FaultAndCode> {};

TEST_P(LeakReplacementFailure, RemovesAllGivesTheCodeSilentlyAndLeavesTheTransactionOpen) {
  TurnOn();
  const auto& [fault, example] = GetParam();
  EngineEmulator::FailCall(fault.function, fault.nth, example.code);
  EXPECT_EQ(Enable(), example.result);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: Enabling leak protection v3",
                                     "NATIVE: Enabling leak protection. Allowed interface: ",
                                     "NATIVE: Allowing interface by LUID 7",
                                     "NATIVE: LeakProtection already enabled - changing only whitelisted IP.",
                                     "NATIVE: LeakProtection - apply firewall."));
  EXPECT_EQ(Registered(), "");
  EXPECT_EQ(Installed(), "");
  EXPECT_TRUE(TransactionIsOpen());
  EXPECT_THAT(TakeCalls(), Not(Contains("FwpmTransactionAbort0")));
  EXPECT_STREQ(GetErrorText(), "");
}

INSTANTIATE_TEST_SUITE_P(EachCall, LeakReplacementFailure,
                         testing::Combine(testing::Values(Fault{"FwpmSubLayerAdd0", 1},
                                                          Fault{"FwpmFilterAdd0", 1},
                                                          Fault{"FwpmFilterAdd0", 20}),
                                          testing::ValuesIn(kCodeExamples)));

class LeakStepFailure : public LeakProtectionTest, public testing::WithParamInterface<CodeExample> {};

TEST_P(LeakStepFailure, OfBeginRemovesAllWithoutATransaction) {
  TurnOn();
  EngineEmulator::FailCall("FwpmTransactionBegin0", 1, GetParam().code);
  EXPECT_EQ(Enable(), GetParam().result);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: Enabling leak protection v3",
                                     "NATIVE: Enabling leak protection. Allowed interface: ",
                                     "NATIVE: Allowing interface by LUID 7"));
  EXPECT_EQ(Registered(), "");
  EXPECT_EQ(Installed(), "");
  EXPECT_FALSE(TransactionIsOpen());
  EXPECT_STREQ(GetErrorText(), "");
}

TEST_P(LeakStepFailure, OfTheRemovalInAReplacementRemovesAll) {
  TurnOn();
  EngineEmulator::FailCall("FwpmSubLayerDeleteByKey0", 1, GetParam().code);
  EXPECT_EQ(Enable(), GetParam().result);
  EXPECT_THAT(TakeLog(),
              ElementsAre("NATIVE: Enabling leak protection v3",
                          "NATIVE: Enabling leak protection. Allowed interface: ",
                          "NATIVE: Allowing interface by LUID 7",
                          "NATIVE: LeakProtection already enabled - changing only whitelisted IP."));
  EXPECT_THAT(TakeCalls(),
              ElementsAre("FwpmTransactionBegin0",  //
                          "FwpmSubLayerGetByKey0", "FwpmFreeMemory0", "FwpmFilterDeleteById0 x 20",
                          "FwpmSubLayerDeleteByKey0",  //
                          "FwpmSubLayerGetByKey0", "FwpmFreeMemory0", "FwpmFilterDeleteById0 x 20",
                          "FwpmSubLayerDeleteByKey0",  //
                          "FwpmSubLayerGetByKey0", "FwpmFreeMemory0", "FwpmFilterDeleteById0 x 12",
                          "FwpmSubLayerDeleteByKey0", "FwpmFreeMemory0 x 4",  //
                          "FwpmSubLayerGetByKey0", "FwpmFreeMemory0", "FwpmFilterDeleteById0",
                          "FwpmSubLayerDeleteByKey0"));
  EXPECT_EQ(Registered(), "");
  EXPECT_EQ(Installed(), "");
  EXPECT_TRUE(TransactionIsOpen());
}

TEST_P(LeakStepFailure, OfAFilterInDisableIsMendedByTheNextDisable) {
  TurnOn();
  EngineEmulator::FailCall("FwpmFilterDeleteById0", 5, GetParam().code);
  EXPECT_EQ(DisableLeakProtection(), 0U);
  EXPECT_EQ(Registered(), "interface");
  EXPECT_EQ(Installed(), "interface 1");
  EXPECT_EQ(DisableLeakProtection(), 0U);
  EXPECT_EQ(Registered(), "");
  EXPECT_EQ(Installed(), "");
}

TEST_P(LeakStepFailure, OfTheCommitLeavesTheInterfaceRulesThatTheEngineBroughtBack) {
  TurnOn();
  EngineEmulator::FailCall("FwpmTransactionCommit0", 1, GetParam().code);
  EXPECT_EQ(Enable(), GetParam().result);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: Enabling leak protection v3",
                                     "NATIVE: Enabling leak protection. Allowed interface: ",
                                     "NATIVE: Allowing interface by LUID 7",
                                     "NATIVE: LeakProtection already enabled - changing only whitelisted IP.",
                                     "NATIVE: LeakProtection - apply firewall.",
                                     "NATIVE: LeakProtection - transaction commit."));
  // The removal knows the ids of the replacement only, so these earlier filters remain.
  EXPECT_EQ(Registered(), "interface");
  EXPECT_EQ(Installed(), "interface 20");
  EXPECT_FALSE(TransactionIsOpen());
  EXPECT_STREQ(GetErrorText(), "");
}

TEST_P(LeakStepFailure, OfTheApplyIsTheResultWhateverBecomesOfTheRemovals) {
  TurnOn();
  EngineEmulator::FailCall("FwpmFilterAdd0", 5, GetParam().code);
  // The first call is the replacement's own removal; the rollback begins with the second.
  EngineEmulator::FailCall("FwpmSubLayerDeleteByKey0", 2, 1753);
  EngineEmulator::FailCall("FwpmSubLayerDeleteByKey0", 3, 5);
  EXPECT_EQ(Enable(), GetParam().result);
  EXPECT_EQ(Registered(), "dns interface");
  EXPECT_EQ(Installed(), "dns 0, interface 0");
}

TEST_P(LeakStepFailure, OfARemovalInDisableIsPassedOver) {
  for (const auto& [nth, left] : {std::pair{1U, "interface"}, std::pair{2U, "dns"}, std::pair{3U, "copy"}}) {
    TurnOn();
    EngineEmulator::FailCall("FwpmSubLayerDeleteByKey0", nth, GetParam().code);
    EXPECT_EQ(DisableLeakProtection(), 0U);
    EXPECT_EQ(Registered(), left);
    EXPECT_EQ(Installed(), std::string(left) + " 0");
    EXPECT_EQ(IsLeakProtectionEnabled(), 0U);
    EXPECT_STREQ(GetErrorText(), "");
    EXPECT_EQ(DisableLeakProtection(), 0U);
    EXPECT_EQ(Registered(), "");
    EXPECT_EQ(Installed(), "");
  }
}

INSTANTIATE_TEST_SUITE_P(EachCode, LeakStepFailure, testing::ValuesIn(kCodeExamples));

class LeakRollback : public LeakProtectionTest {};

TEST_F(LeakRollback, OfAProviderThatCannotBeAddedGivesCodeOne) {
  EngineEmulator::FailCall("FwpmProviderAdd0", 1, 0x80320010);
  EXPECT_EQ(Enable(), 1U);
  EXPECT_EQ(Registered(), "");
  EXPECT_STREQ(GetErrorText(), "");
}

TEST_F(LeakRollback, KeepsTheErrorTextOfAnEarlierCommand) {
  EngineEmulator::FailCall("FwpmEngineOpen0", 1, 5);
  ASSERT_EQ(EnableDhcp(Log), 5U);
  ASSERT_EQ(DisableDhcp(Log), 0U);
  EngineEmulator::FailCall("FwpmFilterAdd0", 1, 5);
  EXPECT_EQ(Enable(), 5U);
  EXPECT_STREQ(GetErrorText(), "Error opening engine.");
}

TEST_F(LeakRollback, LeavesTheOtherFeaturesAlone) {
  ASSERT_EQ(EnableDhcp(Log), 0U);
  EngineEmulator::FailCall("FwpmFilterAdd0", 30, 5);
  EXPECT_EQ(Enable(), 5U);
  EXPECT_EQ(IsDhcpEnabled(), 1U);
  EXPECT_EQ(FilterTexts().size(), 7U);  // with Windows Firewall's own
}

TEST_F(LeakRollback, DisableAttemptsEveryRemoval) {
  TurnOn();
  for (const std::size_t nth : {1U, 2U, 3U}) {
    EngineEmulator::FailCall("FwpmSubLayerDeleteByKey0", nth, 5);
  }
  EXPECT_EQ(DisableLeakProtection(), 0U);
  EXPECT_EQ(Registered(), "dns copy interface");
  EXPECT_EQ(Installed(), "dns 0, copy 0, interface 0");
}

class PartialLeakProtection : public LeakProtectionTest {};

TEST_F(PartialLeakProtection, CountsAsOff) {
  for (const std::size_t nth : {1U, 2U, 3U}) {
    LeaveOnly(nth);
    EXPECT_EQ(IsLeakProtectionEnabled(), 0U);
    ASSERT_EQ(DisableLeakProtection(), 0U);
  }
}

TEST_F(PartialLeakProtection, WithInterfaceRulesReplacesThemInATransactionThatStaysOpen) {
  TurnOnWithoutCopy();
  EXPECT_EQ(Enable({1}), 0U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: Enabling leak protection v3",
                                     "NATIVE: Enabling leak protection. Allowed interface: ",
                                     "NATIVE: Allowing interface by LUID 7",
                                     "NATIVE: LeakProtection already enabled - changing only whitelisted IP.",
                                     "NATIVE: LeakProtection - apply firewall.",
                                     "NATIVE: LeakProtection - transaction commit.",
                                     "NATIVE: LeakProtection applying finished."));
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmTransactionBegin0", "FwpmSubLayerGetByKey0", "FwpmFreeMemory0",
                                       "FwpmFilterDeleteById0 x 20", "FwpmSubLayerDeleteByKey0",  //
                                       "FwpmSubLayerGetByKey0", "FwpmFreeMemory0",                //
                                       "FwpmSubLayerGetByKey0", "FwpmSubLayerAdd0", "FwpmFilterAdd0 x 21"));
  EXPECT_TRUE(TransactionIsOpen());
  EXPECT_EQ(Registered(), "dns interface");
  EXPECT_EQ(Installed(), "dns 12, interface 21");
}

TEST_F(PartialLeakProtection, WithAnOpenTransactionCannotBeginAnotherAndGoesOff) {
  TurnOnWithoutCopy();
  ASSERT_EQ(Enable(), 0U);
  ASSERT_TRUE(TransactionIsOpen());
  TakeLog();
  EXPECT_EQ(Enable(), 2150760462U);  // FWP_E_TXN_IN_PROGRESS
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: Enabling leak protection v3",
                                     "NATIVE: Enabling leak protection. Allowed interface: ",
                                     "NATIVE: Allowing interface by LUID 7"));
  EXPECT_TRUE(TransactionIsOpen());
  EXPECT_EQ(Registered(), "");
  EXPECT_EQ(Installed(), "");
}

TEST_F(PartialLeakProtection, WithoutInterfaceRulesAddsASecondCopyOfWhatIsStillThere) {
  LeaveOnly(2);
  ASSERT_EQ(Registered(), "dns");
  TakeLog();
  EXPECT_EQ(Enable(), 0U);
  EXPECT_EQ(IsLeakProtectionEnabled(), 1U);
  EXPECT_FALSE(TransactionIsOpen());
  // The sublayer is still in the engine, so neither of the two entries is installed again.
  EXPECT_EQ(Installed(), "dns 0, copy 1, interface 20");
  TakeCalls();
  EXPECT_EQ(DisableLeakProtection(), 0U);
  EXPECT_EQ(Registered(), "");
  EXPECT_EQ(Installed(), "");
}

TEST_F(PartialLeakProtection, IsInstalledInAnOpenTransactionAfterAFailedReplacement) {
  TurnOn();
  EngineEmulator::FailCall("FwpmSubLayerAdd0", 1, 5);
  ASSERT_EQ(Enable(), 5U);
  ASSERT_TRUE(TransactionIsOpen());
  TakeCalls();
  EXPECT_EQ(Enable(), 0U);
  EXPECT_THAT(TakeCalls(), Not(Contains("FwpmTransactionBegin0")));
  EXPECT_TRUE(TransactionIsOpen());
  EXPECT_EQ(IsLeakProtectionEnabled(), 1U);
}

}  // namespace
