#include <WfpPlatform.h>
#include <gmock/gmock.h>

#include <optional>

#include "ApiTest.h"
#include "emulator/Control.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

class InternetCommands : public InitializedModuleTest {
 protected:
  static std::uint64_t Disable() { return DisableInternet(nullptr, 0, nullptr, 0, Log); }

  /// Two files that exist for the engine.
  static constexpr const wchar_t* kApps[]{L"C:\\Apps\\B.exe", L"C:\\Apps\\A.exe"};
  void SetUp() override {
    InitializedModuleTest::SetUp();
    for (const wchar_t* app : kApps) {
      EngineEmulator::PretendFileExists(app);
    }
  }
};

TEST_F(InternetCommands, DisableWithoutAppsAndNamesInstallsThePlainKillSwitch) {
  EXPECT_EQ(Disable(), 0U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: DisableInternet", "NATIVE: create killswitch layer",
                                     "NATIVE: get interface luids",
                                     "NATIVE: KillSwitch without adapter filter", "NATIVE: Apply firewall."));
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmEngineOpen0", "FwpmProviderGetByKey0", "FwpmProviderAdd0",
                                       "FwpmSubLayerGetByKey0", "FwpmSubLayerAdd0", "FwpmFilterAdd0 x 51"));
  EXPECT_EQ(IsInternetEnabled(), 0U);
  const Texts filters = FilterTexts();
  ASSERT_EQ(filters.size(), 51U);
  EXPECT_EQ(filters.front(), "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 14 | - | -");
  EXPECT_EQ(filters[7],
            "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 14 | CLEAR_ACTION_RIGHT | IP_REMOTE_ADDRESS EQUAL "
            "V4_ADDR_MASK 255.255.255.255/255.255.255.255 & IP_REMOTE_PORT NOT_EQUAL UINT16 53");
  EXPECT_EQ(filters.back(),
            "ALE_AUTH_RECV_ACCEPT_V6 | PERMIT | UINT8 14 | - | IP_REMOTE_ADDRESS EQUAL V6_ADDR_MASK "
            "ff0e::c/128 & IP_REMOTE_PORT NOT_EQUAL UINT16 53");
}

TEST_F(InternetCommands, DisableInstallsUnderTheIdentityHandedOver) {
  ASSERT_EQ(Disable(), 0U);
  const EngineEmulator::Snapshot engine = EngineEmulator::TakeSnapshot();
  ASSERT_EQ(engine.sublayers.size(), 1U);
  EXPECT_EQ(engine.sublayers[0].key, kKillSwitchKey);
  EXPECT_EQ(engine.sublayers[0].name, L"kill switch name");
  EXPECT_EQ(engine.sublayers[0].description, L"kill switch description");
  EXPECT_EQ(engine.sublayers[0].weight, 8U);
  EXPECT_EQ(engine.sublayers[0].flags, 0U);
  EXPECT_EQ(engine.sublayers[0].providerKey, std::nullopt);
  for (const EngineEmulator::FilterObject& filter : engine.filters) {
    EXPECT_EQ(filter.subLayerKey, kKillSwitchKey);
    EXPECT_EQ(filter.providerKey, kProviderKey);
    EXPECT_EQ(filter.name, L"kill switch name");
    EXPECT_EQ(filter.description, L"kill switch description");
  }
}

TEST_F(InternetCommands, DisableOnceMoreReplacesTheKillSwitchInOneTransaction) {
  ASSERT_EQ(Disable(), 0U);
  const UINT64 lastId = EngineEmulator::TakeSnapshot().filters.back().id;
  TakeLog();
  TakeCalls();

  EXPECT_EQ(Disable(), 0U);

  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: DisableInternet", "NATIVE: Remove killswitch layer",
                                     "NATIVE: create killswitch layer", "NATIVE: get interface luids",
                                     "NATIVE: KillSwitch without adapter filter", "NATIVE: Apply firewall."));
  EXPECT_THAT(TakeCalls(),
              ElementsAre("FwpmTransactionBegin0", "FwpmSubLayerGetByKey0", "FwpmFreeMemory0",
                          "FwpmFilterDeleteById0 x 51", "FwpmSubLayerDeleteByKey0", "FwpmSubLayerGetByKey0",
                          "FwpmSubLayerAdd0", "FwpmFilterAdd0 x 51", "FwpmTransactionCommit0"));
  EXPECT_EQ(EngineEmulator::CountOutstanding().openTransactions, 0U);
  EXPECT_EQ(IsInternetEnabled(), 0U);
  const EngineEmulator::Snapshot engine = EngineEmulator::TakeSnapshot();
  EXPECT_EQ(engine.sublayers.size(), 1U);
  ASSERT_EQ(engine.filters.size(), 51U);
  EXPECT_GT(engine.filters.front().id, lastId);
}

TEST_F(InternetCommands, DisableLetsTheAppsThrough) {
  EXPECT_EQ(DisableInternet(kApps, 2, nullptr, 0, Log), 0U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: DisableInternet", "NATIVE: create killswitch layer",
                                     "NATIVE: Apply firewall."));
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmGetAppIdFromFileName0 x 12", "FwpmEngineOpen0",
                                       "FwpmProviderGetByKey0", "FwpmProviderAdd0", "FwpmSubLayerGetByKey0",
                                       "FwpmSubLayerAdd0", "FwpmFilterAdd0 x 63"));
  Texts filters = FilterTexts();
  ASSERT_EQ(filters.size(), 63U);
  filters.erase(filters.begin(), filters.begin() + 51);
  EXPECT_THAT(filters, ElementsAreArray({
                           "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 14 | - | ALE_APP_ID EQUAL BYTE_BLOB "
                           "\\device\\harddiskvolume1\\apps\\b.exe",
                           "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 14 | - | ALE_APP_ID EQUAL BYTE_BLOB "
                           "\\device\\harddiskvolume1\\apps\\a.exe",
                           "ALE_FLOW_ESTABLISHED_V4 | PERMIT | UINT8 14 | - | ALE_APP_ID EQUAL BYTE_BLOB "
                           "\\device\\harddiskvolume1\\apps\\b.exe",
                           "ALE_FLOW_ESTABLISHED_V4 | PERMIT | UINT8 14 | - | ALE_APP_ID EQUAL BYTE_BLOB "
                           "\\device\\harddiskvolume1\\apps\\a.exe",
                           "ALE_AUTH_RECV_ACCEPT_V4 | PERMIT | UINT8 14 | - | ALE_APP_ID EQUAL BYTE_BLOB "
                           "\\device\\harddiskvolume1\\apps\\b.exe",
                           "ALE_AUTH_RECV_ACCEPT_V4 | PERMIT | UINT8 14 | - | ALE_APP_ID EQUAL BYTE_BLOB "
                           "\\device\\harddiskvolume1\\apps\\a.exe",
                           "ALE_AUTH_CONNECT_V6 | PERMIT | UINT8 14 | - | ALE_APP_ID EQUAL BYTE_BLOB "
                           "\\device\\harddiskvolume1\\apps\\b.exe",
                           "ALE_AUTH_CONNECT_V6 | PERMIT | UINT8 14 | - | ALE_APP_ID EQUAL BYTE_BLOB "
                           "\\device\\harddiskvolume1\\apps\\a.exe",
                           "ALE_FLOW_ESTABLISHED_V6 | PERMIT | UINT8 14 | - | ALE_APP_ID EQUAL BYTE_BLOB "
                           "\\device\\harddiskvolume1\\apps\\b.exe",
                           "ALE_FLOW_ESTABLISHED_V6 | PERMIT | UINT8 14 | - | ALE_APP_ID EQUAL BYTE_BLOB "
                           "\\device\\harddiskvolume1\\apps\\a.exe",
                           "ALE_AUTH_RECV_ACCEPT_V6 | PERMIT | UINT8 14 | - | ALE_APP_ID EQUAL BYTE_BLOB "
                           "\\device\\harddiskvolume1\\apps\\b.exe",
                           "ALE_AUTH_RECV_ACCEPT_V6 | PERMIT | UINT8 14 | - | ALE_APP_ID EQUAL BYTE_BLOB "
                           "\\device\\harddiskvolume1\\apps\\a.exe",
                       }));
}

TEST_F(InternetCommands, DisableReadsOnlyAsManyAppsAsCounted) {
  EXPECT_EQ(DisableInternet(kApps, 1, nullptr, 0, Log), 0U);
  EXPECT_EQ(FilterTexts().size(), 57U);
}

TEST_F(InternetCommands, DisableGivesBackTheAppsIdsWhenTheKillSwitchGoes) {
  ASSERT_EQ(DisableInternet(kApps, 2, nullptr, 0, Log), 0U);
  TakeCalls();
  EXPECT_EQ(EnableInternet(), 0U);
  EXPECT_THAT(TakeCalls(),
              ElementsAre("FwpmSubLayerGetByKey0", "FwpmFreeMemory0", "FwpmFilterDeleteById0 x 63",
                          "FwpmSubLayerDeleteByKey0", "FwpmFreeMemory0 x 12"));
}

TEST_F(InternetCommands, DisableForgetsTheAppsOfAnEarlierCall) {
  ASSERT_EQ(DisableInternet(kApps, 2, nullptr, 0, Log), 0U);
  EXPECT_EQ(Disable(), 0U);
  EXPECT_EQ(FilterTexts().size(), 51U);
}

TEST_F(InternetCommands, DisableIgnoresAppsThatAreNotCounted) {
  EXPECT_EQ(DisableInternet(kApps, 0, nullptr, 0, Log), 0U);
  EXPECT_THAT(TakeLog(), Contains("NATIVE: KillSwitch without adapter filter"));
  EXPECT_EQ(FilterTexts().size(), 51U);
}

TEST_F(InternetCommands, DisableLeavesDhcpAlone) {
  ASSERT_EQ(EnableDhcp(Log), 0U);
  ASSERT_EQ(Disable(), 0U);
  EXPECT_EQ(Disable(), 0U);
  EXPECT_EQ(IsDhcpEnabled(), 1U);
  EXPECT_EQ(FilterTexts().size(), 57U);
}

TEST_F(InternetCommands, EnableRemovesTheKillSwitchWithoutATransaction) {
  ASSERT_EQ(Disable(), 0U);
  TakeLog();
  TakeCalls();
  EXPECT_EQ(EnableInternet(), 0U);
  EXPECT_THAT(TakeLog(), IsEmpty());
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmSubLayerGetByKey0", "FwpmFreeMemory0",
                                       "FwpmFilterDeleteById0 x 51", "FwpmSubLayerDeleteByKey0"));
  EXPECT_EQ(IsInternetEnabled(), 1U);
  EXPECT_THAT(FilterTexts(), IsEmpty());
  EXPECT_TRUE(EngineEmulator::TakeSnapshot().sublayers.empty());
}

TEST_F(InternetCommands, EnableWithoutAKillSwitchDoesNotTouchTheEngine) {
  EXPECT_EQ(EnableInternet(), 0U);
  EXPECT_THAT(TakeCalls(), IsEmpty());
  EXPECT_THAT(TakeLog(), IsEmpty());
}

TEST_F(InternetCommands, EnableLeavesDhcpAlone) {
  ASSERT_EQ(EnableDhcp(Log), 0U);
  ASSERT_EQ(Disable(), 0U);
  EXPECT_EQ(EnableInternet(), 0U);
  EXPECT_EQ(IsDhcpEnabled(), 1U);
  EXPECT_EQ(FilterTexts().size(), 6U);
}

TEST_F(InternetCommands, DisableAfterEnableInstallsAgainInTheSameSession) {
  ASSERT_EQ(Disable(), 0U);
  ASSERT_EQ(EnableInternet(), 0U);
  TakeCalls();
  EXPECT_EQ(Disable(), 0U);
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmSubLayerGetByKey0", "FwpmSubLayerAdd0", "FwpmFilterAdd0 x 51"));
  EXPECT_EQ(IsInternetEnabled(), 0U);
}

}  // namespace
