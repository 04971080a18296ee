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

constexpr std::size_t kFilters = 15;

class LocalNetworkBeforeInitialize : public ModuleTest {};

TEST_F(LocalNetworkBeforeInitialize, IsEnabledAndEnableHasNothingToDo) {
  EXPECT_EQ(IsLocalNetworkEnabled(), 1U);
  EXPECT_EQ(EnableLocalNetwork(), 0U);
  EXPECT_THAT(TakeCalls(), IsEmpty());
  EXPECT_STREQ(GetErrorText(), "");
}

class LocalNetworkCommands : public InitializedModuleTest {};

TEST_F(LocalNetworkCommands, DisableInstallsFifteenFiltersThroughANewSession) {
  EXPECT_EQ(IsLocalNetworkEnabled(), 1U);
  EXPECT_EQ(DisableLocalNetwork(Log), 0U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: Apply firewall."));
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmEngineOpen0", "FwpmProviderGetByKey0", "FwpmProviderAdd0",
                                       "FwpmSubLayerGetByKey0", "FwpmSubLayerAdd0", "FwpmFilterAdd0 x 15"));
  EXPECT_EQ(IsLocalNetworkEnabled(), 0U);
  const Texts filters = FilterTexts();
  ASSERT_EQ(filters.size(), kFilters);
  EXPECT_EQ(filters.front(),
            "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT NOT_EQUAL UINT16 53 & "
            "IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 192.168.0.0/255.255.0.0");
  EXPECT_EQ(filters.back(),
            "ALE_FLOW_ESTABLISHED_V6 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT NOT_EQUAL UINT16 53 & "
            "IP_REMOTE_ADDRESS EQUAL V6_ADDR_MASK fc00::/7");
}

TEST_F(LocalNetworkCommands, DisableInstallsUnderTheDescriptionAsNameAndAnEmptyDescription) {
  ASSERT_EQ(DisableLocalNetwork(Log), 0U);
  const EngineEmulator::Snapshot engine = EngineEmulator::TakeSnapshot();
  ASSERT_EQ(engine.sublayers.size(), 1U);
  EXPECT_EQ(engine.sublayers[0].key, kLocalNetworkKey);
  EXPECT_EQ(engine.sublayers[0].name, L"local network description");
  EXPECT_EQ(engine.sublayers[0].description, L"");
  EXPECT_EQ(engine.sublayers[0].weight, 8U);
  EXPECT_EQ(engine.sublayers[0].flags, 0U);
  EXPECT_EQ(engine.sublayers[0].providerKey, std::nullopt);
  ASSERT_EQ(engine.filters.size(), kFilters);
  for (const EngineEmulator::FilterObject& filter : engine.filters) {
    EXPECT_EQ(filter.subLayerKey, kLocalNetworkKey);
    EXPECT_EQ(filter.providerKey, kProviderKey);
    EXPECT_EQ(filter.name, L"local network description");
    EXPECT_EQ(filter.description, L"");
  }
}

TEST_F(LocalNetworkCommands, DisableHasNothingToDoAndNothingToSayWhenDisabled) {
  ASSERT_EQ(DisableLocalNetwork(Log), 0U);
  TakeLog();
  TakeCalls();
  EXPECT_EQ(DisableLocalNetwork(Log), 0U);
  EXPECT_THAT(TakeLog(), IsEmpty());
  EXPECT_THAT(TakeCalls(), IsEmpty());
  EXPECT_EQ(FilterTexts().size(), kFilters);
}

TEST_F(LocalNetworkCommands, EnableRemovesTheFiltersAndTheSublayer) {
  ASSERT_EQ(DisableLocalNetwork(Log), 0U);
  TakeLog();
  TakeCalls();
  EXPECT_EQ(EnableLocalNetwork(), 0U);
  EXPECT_THAT(TakeLog(), IsEmpty());
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmSubLayerGetByKey0", "FwpmFreeMemory0",
                                       "FwpmFilterDeleteById0 x 15", "FwpmSubLayerDeleteByKey0"));
  EXPECT_EQ(IsLocalNetworkEnabled(), 1U);
  EXPECT_THAT(FilterTexts(), IsEmpty());
  EXPECT_TRUE(EngineEmulator::TakeSnapshot().sublayers.empty());
}

TEST_F(LocalNetworkCommands, EnableWithoutABlockDoesNotTouchTheEngine) {
  EXPECT_EQ(EnableLocalNetwork(), 0U);
  EXPECT_THAT(TakeCalls(), IsEmpty());
  EXPECT_THAT(TakeLog(), IsEmpty());
}

TEST_F(LocalNetworkCommands, DisableAfterEnableInstallsAgainInTheSameSession) {
  ASSERT_EQ(DisableLocalNetwork(Log), 0U);
  ASSERT_EQ(EnableLocalNetwork(), 0U);
  TakeCalls();
  EXPECT_EQ(DisableLocalNetwork(Log), 0U);
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmSubLayerGetByKey0", "FwpmSubLayerAdd0", "FwpmFilterAdd0 x 15"));
  EXPECT_EQ(IsLocalNetworkEnabled(), 0U);
}

TEST_F(LocalNetworkCommands, LeaveOtherFeaturesAlone) {
  ASSERT_EQ(DisableInternet(nullptr, 0, nullptr, 0, Log), 0U);
  ASSERT_EQ(EnableDhcp(Log), 0U);
  EXPECT_EQ(DisableLocalNetwork(Log), 0U);
  EXPECT_EQ(FilterTexts().size(), 72U);
  EXPECT_EQ(EnableLocalNetwork(), 0U);
  EXPECT_EQ(FilterTexts().size(), 57U);
  EXPECT_EQ(IsInternetEnabled(), 0U);
  EXPECT_EQ(IsDhcpEnabled(), 1U);
}

TEST_F(LocalNetworkCommands, AFailedDisableCountsAsDisabledUntilEnable) {
  EngineEmulator::FailCall("FwpmEngineOpen0", 1, 1753);
  ASSERT_EQ(DisableLocalNetwork(Log), 1753U);
  EXPECT_EQ(IsLocalNetworkEnabled(), 0U);
  TakeCalls();

  EXPECT_EQ(DisableLocalNetwork(Log), 0U);
  EXPECT_THAT(TakeCalls(), IsEmpty());

  EXPECT_EQ(EnableLocalNetwork(), 0U);
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmSubLayerGetByKey0"));
  EXPECT_EQ(IsLocalNetworkEnabled(), 1U);
}

TEST_F(LocalNetworkCommands, TheNextApplyInstallsWhatAFailedDisableRegistered) {
  EngineEmulator::FailCall("FwpmEngineOpen0", 1, 1753);
  ASSERT_EQ(DisableLocalNetwork(Log), 1753U);
  EXPECT_EQ(EnableDhcp(Log), 0U);
  EXPECT_EQ(FilterTexts().size(), 21U);
}

TEST_F(LocalNetworkCommands, AFailedAddOfAFilterKeepsTheEarlierOnesUntilEnable) {
  EngineEmulator::FailCall("FwpmFilterAdd0", 3, 5);
  EXPECT_EQ(DisableLocalNetwork(Log), 5U);
  EXPECT_EQ(FilterTexts().size(), 2U);
  EXPECT_EQ(EnableLocalNetwork(), 0U);
  EXPECT_THAT(FilterTexts(), IsEmpty());
  EXPECT_TRUE(EngineEmulator::TakeSnapshot().sublayers.empty());
}

TEST_F(LocalNetworkCommands, AProviderThatCannotBeAddedIsAFailureOfCodeOne) {
  EngineEmulator::FailCall("FwpmProviderAdd0", 1, 0x80320010);
  EXPECT_EQ(DisableLocalNetwork(Log), 1U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: Apply firewall.", "NATIVE: Error applying firewall.", "1"));
  EXPECT_STREQ(GetErrorText(), "Failed to add provider");
}

TEST_F(LocalNetworkCommands, EnableKeepsTheBlockRegisteredWhenAFilterIsLeft) {
  ASSERT_EQ(DisableLocalNetwork(Log), 0U);
  EngineEmulator::FailCall("FwpmFilterDeleteById0", 15, 5);
  EXPECT_EQ(EnableLocalNetwork(), 2150760458U);  // FWP_E_IN_USE
  EXPECT_STREQ(GetErrorText(), "Failed to remove provider.");
  EXPECT_EQ(FilterTexts().size(), 1U);
  EXPECT_EQ(IsLocalNetworkEnabled(), 0U);
  EXPECT_EQ(EnableLocalNetwork(), 0U);
  EXPECT_EQ(FilterTexts().size(), 0U);
}

TEST_F(LocalNetworkCommands, EnableForgetsWhatTheEngineDeniesHaving) {
  ASSERT_EQ(DisableLocalNetwork(Log), 0U);
  EngineEmulator::FailCall("FwpmSubLayerGetByKey0", 1, 5);
  EXPECT_EQ(EnableLocalNetwork(), 0U);
  EXPECT_EQ(IsLocalNetworkEnabled(), 1U);
  EXPECT_EQ(FilterTexts().size(), kFilters);
}

std::uint64_t CORVANE_CALL ThrowOnApply(const char*) { throw std::out_of_range("not the engine's"); }

TEST_F(LocalNetworkCommands, AnExceptionThatIsNotTheEnginesEscapesAfterRegistering) {
  EXPECT_THROW(DisableLocalNetwork(ThrowOnApply), std::out_of_range);
  EXPECT_STREQ(GetErrorText(), "");
  EXPECT_EQ(IsLocalNetworkEnabled(), 0U);
  EXPECT_THAT(TakeCalls(), IsEmpty());
}

struct LocalNetworkFault {
  const char* function;
  std::size_t nth;
  const char* message;
};

class DisableLocalNetworkFailure
    : public InitializedModuleTest,
      public testing::WithParamInterface<std::tuple<LocalNetworkFault, CodeExample>> {};

TEST_P(DisableLocalNetworkFailure, LogsAndGivesTheCodeAndLeavesTheBlockRegistered) {
  const auto& [fault, example] = GetParam();
  EngineEmulator::FailCall(fault.function, fault.nth, example.code);
  EXPECT_EQ(DisableLocalNetwork(Log), example.result);
  EXPECT_THAT(TakeLog(),
              ElementsAre("NATIVE: Apply firewall.", "NATIVE: Error applying firewall.", example.logged));
  EXPECT_STREQ(GetErrorText(), fault.message);
  EXPECT_EQ(IsLocalNetworkEnabled(), 0U);
}

INSTANTIATE_TEST_SUITE_P(
    EachCall, DisableLocalNetworkFailure,
    testing::Combine(
        testing::Values(LocalNetworkFault{"FwpmEngineOpen0", 1, "Error opening engine."},
                        LocalNetworkFault{"FwpmSubLayerAdd0", 1, "Error creating sublayer."},
                        LocalNetworkFault{"FwpmFilterAdd0", 1, "Failed to add filter to firewall."},
                        LocalNetworkFault{"FwpmFilterAdd0", 15, "Failed to add filter to firewall."}),
        testing::ValuesIn(kCodeExamples)));

class EnableLocalNetworkFailure : public InitializedModuleTest,
                                  public testing::WithParamInterface<CodeExample> {};

TEST_P(EnableLocalNetworkFailure, GivesTheCodeAndKeepsTheBlockRegistered) {
  ASSERT_EQ(DisableLocalNetwork(Log), 0U);
  TakeLog();
  EngineEmulator::FailCall("FwpmSubLayerDeleteByKey0", 1, GetParam().code);
  EXPECT_EQ(EnableLocalNetwork(), GetParam().result);
  EXPECT_THAT(TakeLog(), IsEmpty());
  EXPECT_STREQ(GetErrorText(), "Failed to remove provider.");
  EXPECT_EQ(IsLocalNetworkEnabled(), 0U);
}

INSTANTIATE_TEST_SUITE_P(EachCode, EnableLocalNetworkFailure, testing::ValuesIn(kCodeExamples));

}  // namespace
