#include <WfpPlatform.h>
#include <gmock/gmock.h>

#include <optional>
#include <stdexcept>
#include <tuple>

#include "ApiTest.h"
#include "emulator/Control.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DhcpCommands : public InitializedModuleTest {};

TEST_F(DhcpCommands, EnableInstallsSixFiltersThroughANewSession) {
  EXPECT_EQ(EnableDhcp(Log), 0U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: enabling dhcp", "NATIVE: dhcp enabled successfully."));
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmEngineOpen0", "FwpmProviderGetByKey0", "FwpmProviderAdd0",
                                       "FwpmSubLayerGetByKey0", "FwpmSubLayerAdd0", "FwpmFilterAdd0 x 6"));
  EXPECT_EQ(IsDhcpEnabled(), 1U);
  EXPECT_THAT(FilterTexts(),
              ElementsAre("ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 14 | - | IP_PROTOCOL EQUAL UINT8 17 & "
                          "IP_LOCAL_PORT EQUAL UINT16 67 & IP_REMOTE_PORT EQUAL UINT16 68",
                          "ALE_FLOW_ESTABLISHED_V4 | PERMIT | UINT8 14 | - | IP_PROTOCOL EQUAL UINT8 17 & "
                          "IP_LOCAL_PORT EQUAL UINT16 67 & IP_REMOTE_PORT EQUAL UINT16 68",
                          "ALE_AUTH_CONNECT_V6 | PERMIT | UINT8 14 | - | IP_PROTOCOL EQUAL UINT8 17 & "
                          "IP_LOCAL_PORT EQUAL UINT16 546 & IP_REMOTE_PORT EQUAL UINT16 547",
                          "ALE_AUTH_CONNECT_V6 | PERMIT | UINT8 14 | - | IP_PROTOCOL EQUAL UINT8 17 & "
                          "IP_LOCAL_PORT EQUAL UINT16 547 & IP_REMOTE_PORT EQUAL UINT16 546",
                          "ALE_FLOW_ESTABLISHED_V6 | PERMIT | UINT8 14 | - | IP_PROTOCOL EQUAL UINT8 17 & "
                          "IP_LOCAL_PORT EQUAL UINT16 546 & IP_REMOTE_PORT EQUAL UINT16 547",
                          "ALE_FLOW_ESTABLISHED_V6 | PERMIT | UINT8 14 | - | IP_PROTOCOL EQUAL UINT8 17 & "
                          "IP_LOCAL_PORT EQUAL UINT16 547 & IP_REMOTE_PORT EQUAL UINT16 546"));
}

TEST_F(DhcpCommands, EnableInstallsUnderTheIdentityHandedOver) {
  ASSERT_EQ(EnableDhcp(Log), 0U);
  const EngineEmulator::Snapshot engine = EngineEmulator::TakeSnapshot();
  ASSERT_EQ(engine.sublayers.size(), 1U);
  EXPECT_EQ(engine.sublayers[0].key, kDhcpKey);
  EXPECT_EQ(engine.sublayers[0].name, L"dhcp name");
  EXPECT_EQ(engine.sublayers[0].description, L"dhcp description");
  EXPECT_EQ(engine.sublayers[0].weight, 8U);
  EXPECT_EQ(engine.sublayers[0].flags, 0U);
  EXPECT_EQ(engine.sublayers[0].providerKey, std::nullopt);
  ASSERT_EQ(engine.filters.size(), 6U);
  for (const EngineEmulator::FilterObject& filter : engine.filters) {
    EXPECT_EQ(filter.subLayerKey, kDhcpKey);
    EXPECT_EQ(filter.providerKey, kProviderKey);
    EXPECT_EQ(filter.name, L"dhcp name");
    EXPECT_EQ(filter.description, L"dhcp description");
  }
}

TEST_F(DhcpCommands, EnableHasNothingToDoWhenEnabled) {
  ASSERT_EQ(EnableDhcp(Log), 0U);
  TakeLog();
  TakeCalls();
  EXPECT_EQ(EnableDhcp(Log), 0U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: enabling dhcp"));
  EXPECT_THAT(TakeCalls(), IsEmpty());
  EXPECT_EQ(FilterTexts().size(), 6U);
}

TEST_F(DhcpCommands, EnableAddsToAnInstalledKillSwitchInTheSameSession) {
  ASSERT_EQ(DisableInternet(nullptr, 0, nullptr, 0, Log), 0U);
  TakeCalls();
  EXPECT_EQ(EnableDhcp(Log), 0U);
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmSubLayerGetByKey0", "FwpmFreeMemory0", "FwpmSubLayerGetByKey0",
                                       "FwpmSubLayerAdd0", "FwpmFilterAdd0 x 6"));
  EXPECT_EQ(FilterTexts().size(), 57U);
  EXPECT_EQ(IsInternetEnabled(), 0U);
}

TEST_F(DhcpCommands, DisableRemovesTheFiltersAndTheSublayer) {
  ASSERT_EQ(EnableDhcp(Log), 0U);
  TakeLog();
  TakeCalls();
  EXPECT_EQ(DisableDhcp(Log), 0U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: disabling dhcp", "NATIVE: dhcp disabled successfully."));
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmSubLayerGetByKey0", "FwpmFreeMemory0",
                                       "FwpmFilterDeleteById0 x 6", "FwpmSubLayerDeleteByKey0"));
  EXPECT_EQ(IsDhcpEnabled(), 0U);
  EXPECT_THAT(FilterTexts(), IsEmpty());
  EXPECT_TRUE(EngineEmulator::TakeSnapshot().sublayers.empty());
}

TEST_F(DhcpCommands, DisableHasNothingToDoWhenDisabled) {
  EXPECT_EQ(DisableDhcp(Log), 0U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: disabling dhcp"));
  EXPECT_THAT(TakeCalls(), IsEmpty());
}

TEST_F(DhcpCommands, DisableLeavesTheKillSwitchAlone) {
  ASSERT_EQ(DisableInternet(nullptr, 0, nullptr, 0, Log), 0U);
  ASSERT_EQ(EnableDhcp(Log), 0U);
  EXPECT_EQ(DisableDhcp(Log), 0U);
  EXPECT_EQ(FilterTexts().size(), 51U);
  EXPECT_EQ(IsInternetEnabled(), 0U);
}

TEST_F(DhcpCommands, EnableAfterDisableInstallsAgain) {
  ASSERT_EQ(EnableDhcp(Log), 0U);
  ASSERT_EQ(DisableDhcp(Log), 0U);
  TakeCalls();
  EXPECT_EQ(EnableDhcp(Log), 0U);
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmSubLayerGetByKey0", "FwpmSubLayerAdd0", "FwpmFilterAdd0 x 6"));
  EXPECT_EQ(FilterTexts().size(), 6U);
}

TEST_F(DhcpCommands, AFailedEnableCountsAsEnabledUntilDisable) {
  EngineEmulator::FailCall("FwpmEngineOpen0", 1, 1753);
  ASSERT_EQ(EnableDhcp(Log), 1753U);
  EXPECT_EQ(IsDhcpEnabled(), 1U);
  TakeLog();
  TakeCalls();

  EXPECT_EQ(EnableDhcp(Log), 0U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: enabling dhcp"));
  EXPECT_THAT(TakeCalls(), IsEmpty());

  EXPECT_EQ(DisableDhcp(Log), 0U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: disabling dhcp", "NATIVE: dhcp disabled successfully."));
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmSubLayerGetByKey0"));
  EXPECT_EQ(IsDhcpEnabled(), 0U);
}

TEST_F(DhcpCommands, TheNextApplyInstallsWhatAFailedEnableRegistered) {
  EngineEmulator::FailCall("FwpmEngineOpen0", 1, 1753);
  ASSERT_EQ(EnableDhcp(Log), 1753U);
  EXPECT_EQ(DisableInternet(nullptr, 0, nullptr, 0, Log), 0U);
  EXPECT_EQ(FilterTexts().size(), 57U);
}

TEST_F(DhcpCommands, AFailedAddOfAFilterKeepsTheEarlierOnesUntilDisable) {
  EngineEmulator::FailCall("FwpmFilterAdd0", 3, 5);
  EXPECT_EQ(EnableDhcp(Log), 5U);
  EXPECT_EQ(FilterTexts().size(), 2U);
  EXPECT_EQ(DisableDhcp(Log), 0U);
  EXPECT_THAT(FilterTexts(), IsEmpty());
  EXPECT_TRUE(EngineEmulator::TakeSnapshot().sublayers.empty());
}

TEST_F(DhcpCommands, AProviderThatCannotBeAddedIsAFailureOfCodeOne) {
  EngineEmulator::FailCall("FwpmProviderAdd0", 1, 0x80320010);
  EXPECT_EQ(EnableDhcp(Log), 1U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: enabling dhcp", "Failed to add provider"));
  EXPECT_STREQ(GetErrorText(), "Failed to add provider");
  EXPECT_EQ(IsDhcpEnabled(), 1U);
}

TEST_F(DhcpCommands, EnableGoesOnWhenLookUpsFail) {
  EngineEmulator::FailCall("FwpmProviderGetByKey0", 1, 5);
  EngineEmulator::FailCall("FwpmSubLayerGetByKey0", 1, 5);
  EXPECT_EQ(EnableDhcp(Log), 0U);
  EXPECT_EQ(FilterTexts().size(), 6U);
}

TEST_F(DhcpCommands, DisableForgetsWhatTheEngineDeniesHaving) {
  ASSERT_EQ(EnableDhcp(Log), 0U);
  EngineEmulator::FailCall("FwpmSubLayerGetByKey0", 1, 5);
  EXPECT_EQ(DisableDhcp(Log), 0U);
  EXPECT_EQ(IsDhcpEnabled(), 0U);
  EXPECT_EQ(FilterTexts().size(), 6U);
}

TEST_F(DhcpCommands, DisableIgnoresAFilterThatCannotBeDeletedButNotTheSublayerItBlocks) {
  ASSERT_EQ(EnableDhcp(Log), 0U);
  TakeLog();
  EngineEmulator::FailCall("FwpmFilterDeleteById0", 1, 5);
  EXPECT_EQ(DisableDhcp(Log), 2150760458U);  // FWP_E_IN_USE
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: disabling dhcp", "NATIVE: failed to enable dhcp. ",
                                     "Failed to remove provider."));
  EXPECT_EQ(FilterTexts().size(), 1U);
  EXPECT_EQ(IsDhcpEnabled(), 1U);
  EXPECT_EQ(DisableDhcp(Log), 0U);
  EXPECT_EQ(FilterTexts().size(), 0U);
}

TEST_F(DhcpCommands, DisableToleratesTheProvidersNotFoundCode) {
  ASSERT_EQ(EnableDhcp(Log), 0U);
  EngineEmulator::FailCall("FwpmSubLayerDeleteByKey0", 1, 0x80320005);
  EXPECT_EQ(DisableDhcp(Log), 0U);
  EXPECT_EQ(IsDhcpEnabled(), 0U);
}

TEST_F(DhcpCommands, DisableDoesNotTolerateTheSublayersNotFoundCode) {
  ASSERT_EQ(EnableDhcp(Log), 0U);
  EngineEmulator::FailCall("FwpmSubLayerDeleteByKey0", 1, 0x80320007);
  EXPECT_EQ(DisableDhcp(Log), 2150760455U);
  EXPECT_EQ(IsDhcpEnabled(), 1U);
}

std::uint64_t CORVANE_CALL ThrowOnSuccess(const char* line) {
  if (std::string(line) == "NATIVE: dhcp enabled successfully.") {
    throw std::out_of_range("not the engine's");
  }
  return 0;
}

TEST_F(DhcpCommands, AnExceptionThatIsNotTheEnginesEscapes) {
  EXPECT_THROW(EnableDhcp(ThrowOnSuccess), std::out_of_range);
  EXPECT_STREQ(GetErrorText(), "");
}

struct DhcpFault {
  const char* function;
  std::size_t nth;
  const char* message;
};

class EnableDhcpFailure : public InitializedModuleTest,
                          public testing::WithParamInterface<std::tuple<DhcpFault, CodeExample>> {};

TEST_P(EnableDhcpFailure, LogsOnlyTheMessageAndGivesTheCode) {
  const auto& [fault, example] = GetParam();
  EngineEmulator::FailCall(fault.function, fault.nth, example.code);
  EXPECT_EQ(EnableDhcp(Log), example.result);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: enabling dhcp", fault.message));
  EXPECT_STREQ(GetErrorText(), fault.message);
  EXPECT_EQ(IsDhcpEnabled(), 1U);
}

INSTANTIATE_TEST_SUITE_P(
    EachCall, EnableDhcpFailure,
    testing::Combine(testing::Values(DhcpFault{"FwpmEngineOpen0", 1, "Error opening engine."},
                                     DhcpFault{"FwpmSubLayerAdd0", 1, "Error creating sublayer."},
                                     DhcpFault{"FwpmFilterAdd0", 1, "Failed to add filter to firewall."},
                                     DhcpFault{"FwpmFilterAdd0", 6, "Failed to add filter to firewall."}),
                     testing::ValuesIn(kCodeExamples)));

class DisableDhcpFailure : public InitializedModuleTest, public testing::WithParamInterface<CodeExample> {};

TEST_P(DisableDhcpFailure, LogsTheEnableWordingAndTheMessageAndGivesTheCode) {
  ASSERT_EQ(EnableDhcp(Log), 0U);
  TakeLog();
  EngineEmulator::FailCall("FwpmSubLayerDeleteByKey0", 1, GetParam().code);
  EXPECT_EQ(DisableDhcp(Log), GetParam().result);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: disabling dhcp", "NATIVE: failed to enable dhcp. ",
                                     "Failed to remove provider."));
  EXPECT_STREQ(GetErrorText(), "Failed to remove provider.");
  EXPECT_EQ(IsDhcpEnabled(), 1U);
}

INSTANTIATE_TEST_SUITE_P(EachCode, DisableDhcpFailure, testing::ValuesIn(kCodeExamples));

}  // namespace
