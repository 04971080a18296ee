#include <WfpPlatform.h>
#include <gmock/gmock.h>

#include <stdexcept>
#include <string_view>
#include <tuple>

#include "ApiTest.h"
#include "emulator/Control.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct InternetFault {
  const char* function;
  std::size_t nth;
  const char* message;
};

using FaultAndCode = std::tuple<InternetFault, CodeExample>;

constexpr const wchar_t* kApps[]{L"C:\\a.exe", L"C:\\b.exe"};

std::uint64_t DisablePlain(LogCallback log) { return DisableInternet(nullptr, 0, nullptr, 0, log); }

class FirstDisableFailure : public InitializedModuleTest, public testing::WithParamInterface<FaultAndCode> {};

TEST_P(FirstDisableFailure, GivesTheCodeAndLeavesTheKillSwitchRegistered) {
  const auto& [fault, example] = GetParam();
  EngineEmulator::FailCall(fault.function, fault.nth, example.code);
  EXPECT_EQ(DisablePlain(Log), example.result);
  EXPECT_THAT(TakeLog(),
              ElementsAre("NATIVE: DisableInternet", "NATIVE: create killswitch layer",
                          "NATIVE: get interface luids", "NATIVE: KillSwitch without adapter filter",
                          "NATIVE: Error applying firewall.", example.logged));
  EXPECT_STREQ(GetErrorText(), fault.message);
  EXPECT_EQ(IsInternetEnabled(), 0U);
  EXPECT_EQ(EngineEmulator::CountOutstanding().openTransactions, 0U);

  EXPECT_EQ(EnableInternet(), 0U);
  EXPECT_EQ(IsInternetEnabled(), 1U);
  EXPECT_THAT(FilterTexts(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    EachCall, FirstDisableFailure,
    testing::Combine(testing::Values(InternetFault{"FwpmEngineOpen0", 1, "Error opening engine."},
                                     InternetFault{"FwpmSubLayerAdd0", 1, "Error creating sublayer."},
                                     InternetFault{"FwpmFilterAdd0", 1, "Failed to add filter to firewall."},
                                     InternetFault{"FwpmFilterAdd0", 51,
                                                   "Failed to add filter to firewall."}),
                     testing::ValuesIn(kCodeExamples)));

class AppIdFailure : public InitializedModuleTest,
                     public testing::WithParamInterface<std::tuple<std::size_t, CodeExample>> {};

TEST_P(AppIdFailure, GivesTheCodeAndRegistersNothing) {
  const auto& [nth, example] = GetParam();
  for (const wchar_t* app : kApps) {
    EngineEmulator::PretendFileExists(app);
  }
  EngineEmulator::FailCall("FwpmGetAppIdFromFileName0", nth, example.code);
  EXPECT_EQ(DisableInternet(kApps, 2, nullptr, 0, Log), example.result);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: DisableInternet", "NATIVE: create killswitch layer",
                                     "NATIVE: Error applying firewall.", example.logged));
  EXPECT_STREQ(GetErrorText(), "Failed to retrieve app blob");
  EXPECT_EQ(IsInternetEnabled(), 1U);
  EXPECT_EQ(EngineEmulator::CountOutstanding().memoryBlocks, 0U);
}

INSTANTIATE_TEST_SUITE_P(EachCall, AppIdFailure,
                         testing::Combine(testing::Values(1U, 2U, 12U), testing::ValuesIn(kCodeExamples)));

class ReplacementFailure : public InitializedModuleTest, public testing::WithParamInterface<FaultAndCode> {};

TEST_P(ReplacementFailure, KeepsTheTransactionAsTheEngineLeavesItAndTheKillSwitchRegistered) {
  ASSERT_EQ(DisablePlain(Log), 0U);
  TakeLog();
  const auto& [fault, example] = GetParam();
  EngineEmulator::FailCall(fault.function, fault.nth, example.code);
  EXPECT_EQ(DisablePlain(Log), example.result);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: DisableInternet", "NATIVE: Remove killswitch layer",
                                     "NATIVE: create killswitch layer", "NATIVE: get interface luids",
                                     "NATIVE: KillSwitch without adapter filter",
                                     "NATIVE: Error applying firewall.", example.logged));
  EXPECT_STREQ(GetErrorText(), fault.message);
  EXPECT_EQ(IsInternetEnabled(), 0U);
  // If the commit fails, the emulated engine ends the transaction.
  const bool endedByEngine = fault.function == std::string_view("FwpmTransactionCommit0");
  EXPECT_EQ(EngineEmulator::CountOutstanding().openTransactions, endedByEngine ? 0U : 1U);
}

INSTANTIATE_TEST_SUITE_P(
    EachCall, ReplacementFailure,
    testing::Combine(testing::Values(InternetFault{"FwpmSubLayerAdd0", 1, "Error creating sublayer."},
                                     InternetFault{"FwpmFilterAdd0", 1, "Failed to add filter to firewall."},
                                     InternetFault{"FwpmFilterAdd0", 51, "Failed to add filter to firewall."},
                                     InternetFault{"FwpmTransactionCommit0", 1,
                                                   "Failed to commit transaction."}),
                     testing::ValuesIn(kCodeExamples)));

class RemovalFailure : public InitializedModuleTest, public testing::WithParamInterface<CodeExample> {};

TEST_P(RemovalFailure, OfBeginChangesNothing) {
  ASSERT_EQ(DisablePlain(Log), 0U);
  TakeLog();
  TakeCalls();
  EngineEmulator::FailCall("FwpmTransactionBegin0", 1, GetParam().code);
  EXPECT_EQ(DisablePlain(Log), GetParam().result);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: DisableInternet", "NATIVE: Remove killswitch layer",
                                     "NATIVE: Error applying firewall.", GetParam().logged));
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmTransactionBegin0"));
  EXPECT_STREQ(GetErrorText(), "Failed to begin transaction.");
  EXPECT_EQ(IsInternetEnabled(), 0U);
  EXPECT_EQ(FilterTexts().size(), 51U);
}

TEST_P(RemovalFailure, OfTheSublayerInAReplacementKeepsItRegistered) {
  ASSERT_EQ(DisablePlain(Log), 0U);
  TakeLog();
  EngineEmulator::FailCall("FwpmSubLayerDeleteByKey0", 1, GetParam().code);
  EXPECT_EQ(DisablePlain(Log), GetParam().result);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: DisableInternet", "NATIVE: Remove killswitch layer",
                                     "NATIVE: Error applying firewall.", GetParam().logged));
  EXPECT_STREQ(GetErrorText(), "Failed to remove provider.");
  EXPECT_EQ(IsInternetEnabled(), 0U);
  EXPECT_EQ(EngineEmulator::CountOutstanding().openTransactions, 1U);
}

TEST_P(RemovalFailure, OfTheSublayerInEnableKeepsItRegistered) {
  ASSERT_EQ(DisablePlain(Log), 0U);
  TakeLog();
  EngineEmulator::FailCall("FwpmSubLayerDeleteByKey0", 1, GetParam().code);
  EXPECT_EQ(EnableInternet(), GetParam().result);
  EXPECT_THAT(TakeLog(), IsEmpty());
  EXPECT_STREQ(GetErrorText(), "Failed to remove provider.");
  EXPECT_EQ(IsInternetEnabled(), 0U);
  EXPECT_EQ(EnableInternet(), 0U);
  EXPECT_EQ(IsInternetEnabled(), 1U);
}

INSTANTIATE_TEST_SUITE_P(EachCode, RemovalFailure, testing::ValuesIn(kCodeExamples));

class InternetFailures : public InitializedModuleTest {};

TEST_F(InternetFailures, AProviderThatCannotBeAddedIsOneOfCodeOne) {
  EngineEmulator::FailCall("FwpmProviderAdd0", 1, 0x80320010);
  EXPECT_EQ(DisablePlain(Log), 1U);
  EXPECT_THAT(
      TakeLog(),
      ElementsAre("NATIVE: DisableInternet", "NATIVE: create killswitch layer", "NATIVE: get interface luids",
                  "NATIVE: KillSwitch without adapter filter", "NATIVE: Error applying firewall.", "1"));
  EXPECT_STREQ(GetErrorText(), "Failed to add provider");
  EXPECT_EQ(IsInternetEnabled(), 0U);
}

/// Adds a provider with the library's key, such as an earlier process may have left.
class ForeignProvider {
 public:
  ForeignProvider() {
    EXPECT_EQ(FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &engine_), 0U);
    std::wstring name = L"foreign";
    FWPM_PROVIDER0 provider{};
    provider.providerKey = kProviderKey;
    provider.displayData.name = name.data();
    EXPECT_EQ(FwpmProviderAdd0(engine_, &provider, nullptr), 0U);
  }
  ForeignProvider(const ForeignProvider&) = delete;
  ForeignProvider& operator=(const ForeignProvider&) = delete;
  ~ForeignProvider() { FwpmEngineClose0(engine_); }

 private:
  HANDLE engine_ = nullptr;
};

TEST_F(InternetFailures, AProviderThatIsThereIsUsedAsItIs) {
  const ForeignProvider provider;
  TakeCalls();
  EXPECT_EQ(DisablePlain(Log), 0U);
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmEngineOpen0", "FwpmProviderGetByKey0", "FwpmSubLayerGetByKey0",
                                       "FwpmSubLayerAdd0", "FwpmFilterAdd0 x 51"));
  EXPECT_EQ(EngineEmulator::TakeSnapshot().providers.at(0).name, L"foreign");
  ExpectOutstandingMemory(1);
}

TEST_F(InternetFailures, AProviderThatIsThereButCannotBeReadIsOneOfCodeOne) {
  const ForeignProvider provider;
  EngineEmulator::FailCall("FwpmProviderGetByKey0", 1, 5);
  EXPECT_EQ(DisablePlain(Log), 1U);
  EXPECT_STREQ(GetErrorText(), "Failed to add provider");
}

TEST_F(InternetFailures, LookUpsThatFailCountAsNotFound) {
  EngineEmulator::FailCall("FwpmProviderGetByKey0", 1, 5);
  EngineEmulator::FailCall("FwpmSubLayerGetByKey0", 1, 5);
  EXPECT_EQ(DisablePlain(Log), 0U);
  EXPECT_EQ(FilterTexts().size(), 51U);
}

TEST_F(InternetFailures, EnableForgetsWhatTheEngineDeniesHaving) {
  ASSERT_EQ(DisablePlain(Log), 0U);
  EngineEmulator::FailCall("FwpmSubLayerGetByKey0", 1, 5);
  EXPECT_EQ(EnableInternet(), 0U);
  EXPECT_EQ(IsInternetEnabled(), 1U);
  EXPECT_EQ(FilterTexts().size(), 51U);
}

TEST_F(InternetFailures, AReplacementKeepsTheFiltersThatTheEngineDeniedHaving) {
  ASSERT_EQ(DisablePlain(Log), 0U);
  TakeCalls();
  EngineEmulator::FailCall("FwpmSubLayerGetByKey0", 1, 5);
  EXPECT_EQ(DisablePlain(Log), 0U);
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmTransactionBegin0", "FwpmSubLayerGetByKey0 x 2",
                                       "FwpmFreeMemory0", "FwpmTransactionCommit0"));
  EXPECT_EQ(FilterTexts().size(), 51U);
}

TEST_F(InternetFailures, AReplacementWhoseSecondLookUpFailsAddsAnew) {
  ASSERT_EQ(DisablePlain(Log), 0U);
  EngineEmulator::FailCall("FwpmSubLayerGetByKey0", 2, 5);
  EXPECT_EQ(DisablePlain(Log), 0U);
  EXPECT_EQ(FilterTexts().size(), 51U);
}

TEST_F(InternetFailures, AFilterThatCannotBeDeletedIsIgnoredButNotTheSublayerItBlocks) {
  ASSERT_EQ(DisablePlain(Log), 0U);
  EngineEmulator::FailCall("FwpmFilterDeleteById0", 51, 5);
  EXPECT_EQ(EnableInternet(), 2150760458U);  // FWP_E_IN_USE
  EXPECT_STREQ(GetErrorText(), "Failed to remove provider.");
  EXPECT_EQ(FilterTexts().size(), 1U);
  EXPECT_EQ(IsInternetEnabled(), 0U);
}

TEST_F(InternetFailures, EnableAgainDeletesTheFilterThatStayed) {
  ASSERT_EQ(DisablePlain(Log), 0U);
  EngineEmulator::FailCall("FwpmFilterDeleteById0", 2, 5);
  ASSERT_EQ(EnableInternet(), 2150760458U);  // FWP_E_IN_USE
  EXPECT_EQ(EnableInternet(), 0U);
  EXPECT_EQ(IsInternetEnabled(), 1U);
  EXPECT_THAT(FilterTexts(), IsEmpty());
  EXPECT_TRUE(EngineEmulator::TakeSnapshot().sublayers.empty());
}

TEST_F(InternetFailures, DisableAfterAFailedEnableReplacesWhatStayed) {
  ASSERT_EQ(DisablePlain(Log), 0U);
  EngineEmulator::FailCall("FwpmFilterDeleteById0", 2, 5);
  ASSERT_EQ(EnableInternet(), 2150760458U);  // FWP_E_IN_USE
  EXPECT_EQ(DisablePlain(Log), 0U);
  EXPECT_EQ(FilterTexts().size(), 51U);
  EXPECT_EQ(EngineEmulator::CountOutstanding().openTransactions, 0U);
}

TEST_F(InternetFailures, EnableToleratesTheProvidersNotFoundCode) {
  ASSERT_EQ(DisablePlain(Log), 0U);
  EngineEmulator::FailCall("FwpmSubLayerDeleteByKey0", 1, 0x80320005);
  EXPECT_EQ(EnableInternet(), 0U);
  EXPECT_EQ(IsInternetEnabled(), 1U);
}

TEST_F(InternetFailures, AnAppWithoutAFileFailsWithTheEnginesCode) {
  constexpr const wchar_t* kMissing[]{L"C:\\windows\\no such program.exe"};
  EngineEmulator::PretendFileExists(L"C:\\windows\\program.exe");
  EXPECT_EQ(DisableInternet(kMissing, 1, nullptr, 0, Log), 2U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: DisableInternet", "NATIVE: create killswitch layer",
                                     "NATIVE: Error applying firewall.", "2"));
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmGetAppIdFromFileName0"));
  EXPECT_STREQ(GetErrorText(), "Failed to retrieve app blob");
}

TEST_F(InternetFailures, AReplacementThatCannotBeBuiltLeavesNoneRegistered) {
  ASSERT_EQ(DisablePlain(Log), 0U);
  TakeLog();
  EngineEmulator::FailCall("FwpmGetAppIdFromFileName0", 1, 5);
  EXPECT_EQ(DisableInternet(kApps, 2, nullptr, 0, Log), 5U);
  EXPECT_THAT(TakeLog(),
              ElementsAre("NATIVE: DisableInternet", "NATIVE: Remove killswitch layer",
                          "NATIVE: create killswitch layer", "NATIVE: Error applying firewall.", "5"));
  EXPECT_EQ(IsInternetEnabled(), 1U);
  EXPECT_EQ(EngineEmulator::CountOutstanding().openTransactions, 1U);
}

TEST_F(InternetFailures, AReplacementAfterAFailedOneCannotBegin) {
  ASSERT_EQ(DisablePlain(Log), 0U);
  EngineEmulator::FailCall("FwpmFilterAdd0", 51, 5);
  ASSERT_EQ(DisablePlain(Log), 5U);
  TakeLog();
  EXPECT_EQ(DisablePlain(Log), 2150760462U);  // FWP_E_TXN_IN_PROGRESS
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: DisableInternet", "NATIVE: Remove killswitch layer",
                                     "NATIVE: Error applying firewall.", "-2144206834"));
  EXPECT_STREQ(GetErrorText(), "Failed to begin transaction.");
}

TEST_F(InternetFailures, AReplacementAfterAFailedOpenOpensTheSessionForItsTransaction) {
  EngineEmulator::FailCall("FwpmEngineOpen0", 1, 1753);
  ASSERT_EQ(DisablePlain(Log), 1753U);
  TakeCalls();
  EXPECT_EQ(DisablePlain(Log), 0U);
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmEngineOpen0", "FwpmProviderGetByKey0", "FwpmProviderAdd0",
                                       "FwpmTransactionBegin0", "FwpmSubLayerGetByKey0 x 2",
                                       "FwpmSubLayerAdd0", "FwpmFilterAdd0 x 51", "FwpmTransactionCommit0"));
  EXPECT_EQ(FilterTexts().size(), 51U);
}

TEST_F(InternetFailures, AReplacementThatCannotOpenTheSessionKeepsTheKillSwitchRegistered) {
  EngineEmulator::FailCall("FwpmEngineOpen0", 1, 1753);
  EngineEmulator::FailCall("FwpmEngineOpen0", 2, 1753);
  ASSERT_EQ(DisablePlain(Log), 1753U);
  TakeLog();
  EXPECT_EQ(DisablePlain(Log), 1753U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: DisableInternet", "NATIVE: Remove killswitch layer",
                                     "NATIVE: Error applying firewall.", "1753"));
  EXPECT_STREQ(GetErrorText(), "Error opening engine.");
  EXPECT_EQ(IsInternetEnabled(), 0U);
}

/// Its callback throws an exception at one line of the log.
class ThrowingLog : public InitializedModuleTest {
 protected:
  void SetUp() override {
    InitializedModuleTest::SetUp();
    throwAt_ = {};
  }

  static std::uint64_t CORVANE_CALL LogAndThrow(const char* line) {
    Log(line);
    if (line == throwAt_) {
      throw std::length_error("out of something");
    }
    return 0;
  }

  inline static std::string throwAt_;
};

TEST_F(ThrowingLog, MakesAnyOtherExceptionTheCode904) {
  throwAt_ = "NATIVE: KillSwitch without adapter filter";
  EXPECT_EQ(DisablePlain(LogAndThrow), 904U);
  EXPECT_THAT(TakeLog(),
              ElementsAre("NATIVE: DisableInternet", "NATIVE: create killswitch layer",
                          "NATIVE: get interface luids", "NATIVE: KillSwitch without adapter filter",
                          "NATIVE: Error geting interfaces.", "out of something"));
  EXPECT_STREQ(GetErrorText(), "out of something");
  EXPECT_EQ(IsInternetEnabled(), 1U);
}

TEST_F(ThrowingLog, MakesTheCode904AlsoWhileInterfacesAreFetched) {
  constexpr const wchar_t* kNames[]{L"none"};
  throwAt_ = "NATIVE: No adapters found.";
  EXPECT_EQ(DisableInternet(nullptr, 0, kNames, 1, LogAndThrow), 904U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: DisableInternet", "NATIVE: DisableInternet: none",
                                     "NATIVE: create killswitch layer", "NATIVE: get interface luids",
                                     "NATIVE: No adapters found.", "NATIVE: Error geting interfaces.",
                                     "out of something"));
}

TEST_F(ThrowingLog, LeavesTheTransactionOfAReplacementOpen) {
  ASSERT_EQ(DisablePlain(Log), 0U);
  throwAt_ = "NATIVE: create killswitch layer";
  EXPECT_EQ(DisablePlain(LogAndThrow), 904U);
  EXPECT_EQ(IsInternetEnabled(), 1U);
  EXPECT_EQ(EngineEmulator::CountOutstanding().openTransactions, 1U);
}

TEST_F(ThrowingLog, AfterTheWorkStillMakesTheCode904) {
  throwAt_ = "NATIVE: Apply firewall.";
  EXPECT_EQ(DisablePlain(LogAndThrow), 904U);
  EXPECT_EQ(IsInternetEnabled(), 0U);
  EXPECT_EQ(FilterTexts().size(), 51U);
}

TEST_F(ThrowingLog, BeforeTheWorkEscapes) {
  throwAt_ = "NATIVE: DisableInternet";
  EXPECT_THROW(DisablePlain(LogAndThrow), std::length_error);
  EXPECT_STREQ(GetErrorText(), "");
}

}  // namespace
