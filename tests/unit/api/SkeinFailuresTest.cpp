#include <WfpPlatform.h>
#include <gmock/gmock.h>

#include <tuple>

#include "ApiTest.h"
#include "emulator/Control.h"
#include "helpers/NetworkInfoException.h"
#include "support/FakePlatform.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint32_t kPeer[]{0x64400009};

std::uint64_t EnableOn(std::uint64_t luid, LogCallback log) {
  return EnableSkeinFirewallRules(log, nullptr, 0, luid, kPeer, 1);
}

struct SkeinFault {
  const char* function;
  std::size_t nth;
  const char* message;
};

class EnableSkeinFailure : public InitializedModuleTest,
                           public testing::WithParamInterface<std::tuple<SkeinFault, CodeExample>> {};

TEST_P(EnableSkeinFailure, LogsAndGivesTheCodeAndLeavesTheRulesForDisable) {
  const auto& [fault, example] = GetParam();
  EngineEmulator::FailCall(fault.function, fault.nth, example.code);
  EXPECT_EQ(EnableOn(7, Log), example.result);
  EXPECT_THAT(TakeLog(),
              ElementsAre("NATIVE: Enabling skein firewall rules",
                          "NATIVE: Enabling  skein firewall. Allowed interface: ",
                          "NATIVE: Allowing interface by LUID 7", "NATIVE: Apply skein firewall rules.",
                          "NATIVE: Error applying skein firewall.", example.logged));
  EXPECT_STREQ(GetErrorText(), fault.message);

  TakeCalls();
  EXPECT_EQ(DisableSkeinFirewallRules(), 0U);
  EXPECT_THAT(TakeCalls(), testing::Contains("FwpmSubLayerGetByKey0")) << "registered until now";
  EXPECT_TRUE(EngineEmulator::TakeSnapshot().sublayers.empty());
  EXPECT_THAT(FilterTexts(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    EachCall, EnableSkeinFailure,
    testing::Combine(testing::Values(SkeinFault{"FwpmEngineOpen0", 1, "Error opening engine."},
                                     SkeinFault{"FwpmSubLayerAdd0", 1, "Error creating sublayer."},
                                     SkeinFault{"FwpmFilterAdd0", 1, "Failed to add filter to firewall."},
                                     SkeinFault{"FwpmFilterAdd0", 2, "Failed to add filter to firewall."}),
                     testing::ValuesIn(kCodeExamples)));

class DisableSkeinFailure : public InitializedModuleTest, public testing::WithParamInterface<CodeExample> {};

TEST_P(DisableSkeinFailure, GivesTheCodeAndKeepsTheRulesRegistered) {
  ASSERT_EQ(EnableOn(7, Log), 0U);
  TakeLog();
  EngineEmulator::FailCall("FwpmSubLayerDeleteByKey0", 1, GetParam().code);
  EXPECT_EQ(DisableSkeinFirewallRules(), GetParam().result);
  EXPECT_THAT(TakeLog(), IsEmpty());
  EXPECT_STREQ(GetErrorText(), "Failed to remove provider.");

  EXPECT_EQ(DisableSkeinFirewallRules(), 0U);
  EXPECT_TRUE(EngineEmulator::TakeSnapshot().sublayers.empty());
}

TEST_P(DisableSkeinFailure, InsideEnableOnlyLeavesItsTextAndAnEmptySublayer) {
  ASSERT_EQ(EnableOn(7, Log), 0U);
  TakeLog();
  EngineEmulator::FailCall("FwpmSubLayerDeleteByKey0", 1, GetParam().code);
  EXPECT_EQ(EnableOn(8, Log), 0U);
  EXPECT_THAT(TakeLog(),
              ElementsAre("NATIVE: Enabling skein firewall rules",
                          "NATIVE: Enabling  skein firewall. Allowed interface: ",
                          "NATIVE: Allowing interface by LUID 8", "NATIVE: Apply skein firewall rules."));
  EXPECT_STREQ(GetErrorText(), "Failed to remove provider.");
  EXPECT_EQ(EngineEmulator::TakeSnapshot().sublayers.size(), 1U);
  EXPECT_THAT(FilterTexts(), IsEmpty());

  EXPECT_EQ(DisableSkeinFirewallRules(), 0U);
  EXPECT_TRUE(EngineEmulator::TakeSnapshot().sublayers.empty());
  EXPECT_EQ(EnableOn(8, Log), 0U);
  EXPECT_THAT(FilterTexts(), SizeIs(2));
}

INSTANTIATE_TEST_SUITE_P(EachCode, DisableSkeinFailure, testing::ValuesIn(kCodeExamples));

class SkeinFailures : public InitializedModuleTest {};

TEST_F(SkeinFailures, AProviderThatCannotBeAddedIsAFailureOfCodeOne) {
  EngineEmulator::FailCall("FwpmProviderAdd0", 1, 0x80320010);
  EXPECT_EQ(EnableOn(7, Log), 1U);
  EXPECT_EQ(TakeLog().back(), "1");
  EXPECT_STREQ(GetErrorText(), "Failed to add provider");
}

TEST_F(SkeinFailures, EnableAfterAFailedEnableTriesAgain) {
  EngineEmulator::FailCall("FwpmFilterAdd0", 2, 5);
  ASSERT_EQ(EnableOn(7, Log), 5U);
  EXPECT_THAT(FilterTexts(), SizeIs(1));
  EXPECT_EQ(EnableOn(7, Log), 0U);
  EXPECT_THAT(FilterTexts(), SizeIs(2));
}

TEST_F(SkeinFailures, OldFiltersStayWhenOneOfThemCannotBeDeletedInsideEnable) {
  ASSERT_EQ(EnableOn(7, Log), 0U);
  EngineEmulator::FailCall("FwpmFilterDeleteById0", 1, 5);
  EXPECT_EQ(EnableOn(8, Log), 0U);
  EXPECT_STREQ(GetErrorText(), "Failed to remove provider.");
  EXPECT_THAT(FilterTexts(), ElementsAre("ALE_AUTH_RECV_ACCEPT_V4 | BLOCK | UINT8 14 | CLEAR_ACTION_RIGHT | "
                                         "IP_LOCAL_INTERFACE EQUAL UINT64 7 & "
                                         "IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 100.64.0.0/255.192.0.0"));
}

TEST_F(SkeinFailures, EnableAfterAFailedRemovalRemovesWhatStayed) {
  ASSERT_EQ(EnableOn(7, Log), 0U);
  EngineEmulator::FailCall("FwpmFilterDeleteById0", 1, 5);
  ASSERT_EQ(EnableOn(8, Log), 0U);
  ASSERT_THAT(FilterTexts(), SizeIs(1));
  EXPECT_EQ(EnableOn(9, Log), 0U);
  EXPECT_THAT(FilterTexts(), ElementsAre("ALE_AUTH_RECV_ACCEPT_V4 | BLOCK | UINT8 14 | CLEAR_ACTION_RIGHT | "
                                         "IP_LOCAL_INTERFACE EQUAL UINT64 9 & "
                                         "IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 100.64.0.0/255.192.0.0",
                                         "ALE_AUTH_RECV_ACCEPT_V4 | PERMIT | UINT8 15 | CLEAR_ACTION_RIGHT | "
                                         "IP_LOCAL_INTERFACE EQUAL UINT64 9 & "
                                         "IP_REMOTE_ADDRESS EQUAL UINT32 100.64.0.9"));
}

TEST_F(SkeinFailures, DisableForgetsWhatTheEngineDeniesHaving) {
  ASSERT_EQ(EnableOn(7, Log), 0U);
  EngineEmulator::FailCall("FwpmSubLayerGetByKey0", 1, 5);
  EXPECT_EQ(DisableSkeinFirewallRules(), 0U);
  TakeCalls();
  EXPECT_EQ(DisableSkeinFirewallRules(), 0U);
  EXPECT_THAT(TakeCalls(), IsEmpty());
  EXPECT_THAT(FilterTexts(), SizeIs(2));
}

TEST_F(SkeinFailures, InterfacesThatCannotBeFetchedEscapeWithTheOldRulesGone) {
  ASSERT_EQ(EnableOn(7, Log), 0U);
  TakeLog();
  FakePlatform::FailCall("GetAdaptersAddresses", FakePlatform::kEveryCall, 8);
  EXPECT_THROW(EnableOn(0, Log), WfpFirewall::Helpers::NetworkInfoException);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: Enabling skein firewall rules",
                                     "NATIVE: Enabling  skein firewall. Allowed interface: ",
                                     "NATIVE: Using adapters search by name"));
  EXPECT_STREQ(GetErrorText(), "");
  EXPECT_THAT(FilterTexts(), IsEmpty());
  TakeCalls();
  EXPECT_EQ(DisableSkeinFirewallRules(), 0U);
  EXPECT_THAT(TakeCalls(), IsEmpty());
}

}  // namespace
