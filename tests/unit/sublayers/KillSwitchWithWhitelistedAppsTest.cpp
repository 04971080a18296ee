#include "sublayers/KillSwitchWithWhitelistedApps.h"

#include <gmock/gmock.h>

#include <optional>

#include "unit/engine/FailsWith.h"
#include "unit/sublayers/KillSwitchTable.h"
#include "unit/sublayers/RuleSetFixture.h"

namespace WfpFirewall::Sublayers {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

constexpr const wchar_t* kBrowser = L"C:\\Apps\\Browser.exe";
constexpr const wchar_t* kMail = L"C:\\Apps\\Mail.exe";

/// The filters that follow those of the kill switch.
constexpr const char* kPermits = R"(
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 14 | - | ALE_APP_ID EQUAL BYTE_BLOB \device\harddiskvolume1\apps\browser.exe
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 14 | - | ALE_APP_ID EQUAL BYTE_BLOB \device\harddiskvolume1\apps\mail.exe

ALE_FLOW_ESTABLISHED_V4 | PERMIT | UINT8 14 | - | ALE_APP_ID EQUAL BYTE_BLOB \device\harddiskvolume1\apps\browser.exe
ALE_FLOW_ESTABLISHED_V4 | PERMIT | UINT8 14 | - | ALE_APP_ID EQUAL BYTE_BLOB \device\harddiskvolume1\apps\mail.exe

ALE_AUTH_RECV_ACCEPT_V4 | PERMIT | UINT8 14 | - | ALE_APP_ID EQUAL BYTE_BLOB \device\harddiskvolume1\apps\browser.exe
ALE_AUTH_RECV_ACCEPT_V4 | PERMIT | UINT8 14 | - | ALE_APP_ID EQUAL BYTE_BLOB \device\harddiskvolume1\apps\mail.exe

ALE_AUTH_CONNECT_V6 | PERMIT | UINT8 14 | - | ALE_APP_ID EQUAL BYTE_BLOB \device\harddiskvolume1\apps\browser.exe
ALE_AUTH_CONNECT_V6 | PERMIT | UINT8 14 | - | ALE_APP_ID EQUAL BYTE_BLOB \device\harddiskvolume1\apps\mail.exe

ALE_FLOW_ESTABLISHED_V6 | PERMIT | UINT8 14 | - | ALE_APP_ID EQUAL BYTE_BLOB \device\harddiskvolume1\apps\browser.exe
ALE_FLOW_ESTABLISHED_V6 | PERMIT | UINT8 14 | - | ALE_APP_ID EQUAL BYTE_BLOB \device\harddiskvolume1\apps\mail.exe

ALE_AUTH_RECV_ACCEPT_V6 | PERMIT | UINT8 14 | - | ALE_APP_ID EQUAL BYTE_BLOB \device\harddiskvolume1\apps\browser.exe
ALE_AUTH_RECV_ACCEPT_V6 | PERMIT | UINT8 14 | - | ALE_APP_ID EQUAL BYTE_BLOB \device\harddiskvolume1\apps\mail.exe
)";

class KillSwitchWithWhitelistedAppsTest : public RuleSetFixture {
 protected:
  void SetUp() override {
    RuleSetFixture::SetUp();
    EngineEmulator::PretendFileExists(kBrowser);
    EngineEmulator::PretendFileExists(kMail);
  }

  static std::size_t BlocksNotGivenBack() { return EngineEmulator::CountOutstanding().memoryBlocks; }

  KillSwitch source_{kKillSwitchKey, L"Kill switch", L"Cuts the machine off"};
};

TEST_F(KillSwitchWithWhitelistedAppsTest, InstallsTheKillSwitchThenItsPermits) {
  EXPECT_TRUE(Installs(KillSwitchWithWhitelistedApps(source_, {kBrowser, kMail}),
                       std::string(kKillSwitchTable) + kPermits));
}

TEST_F(KillSwitchWithWhitelistedAppsTest, AddsSixFiltersPerApplication) {
  EXPECT_THAT(KillSwitchWithWhitelistedApps(source_, {kBrowser}).GetFilters(), SizeIs(57));
  EXPECT_THAT(KillSwitchWithWhitelistedApps(source_, {kBrowser, kMail}).GetFilters(), SizeIs(63));
}

TEST_F(KillSwitchWithWhitelistedAppsTest, GroupsByLayerThenByApplication) {
  const std::vector<std::string> filters = Install(KillSwitchWithWhitelistedApps(source_, {kBrowser, kMail}));
  ASSERT_THAT(filters, SizeIs(63));
  EXPECT_EQ(filters[51],
            "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 14 | - | "
            "ALE_APP_ID EQUAL BYTE_BLOB \\device\\harddiskvolume1\\apps\\browser.exe");
  EXPECT_EQ(filters[52],
            "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 14 | - | "
            "ALE_APP_ID EQUAL BYTE_BLOB \\device\\harddiskvolume1\\apps\\mail.exe");
  EXPECT_EQ(filters[62],
            "ALE_AUTH_RECV_ACCEPT_V6 | PERMIT | UINT8 14 | - | "
            "ALE_APP_ID EQUAL BYTE_BLOB \\device\\harddiskvolume1\\apps\\mail.exe");
}

TEST_F(KillSwitchWithWhitelistedAppsTest, WithoutApplicationsEqualsTheKillSwitch) {
  EXPECT_TRUE(Installs(KillSwitchWithWhitelistedApps(source_, {}), kKillSwitchTable));
}

TEST_F(KillSwitchWithWhitelistedAppsTest, GivesThePathsInTheOrderGivenAsACopy) {
  const KillSwitchWithWhitelistedApps variant(source_, {kMail, kBrowser});
  std::vector<std::wstring> apps = variant.GetApps();
  EXPECT_THAT(apps, ElementsAre(kMail, kBrowser));
  apps.clear();
  EXPECT_THAT(variant.GetApps(), SizeIs(2));
}

TEST_F(KillSwitchWithWhitelistedAppsTest, LeavesTheSourceUnchanged) {
  const KillSwitchWithWhitelistedApps variant(source_, {kBrowser});
  EXPECT_TRUE(Installs(source_, kKillSwitchTable));
}

TEST_F(KillSwitchWithWhitelistedAppsTest, ApplicationWithoutIdentifierThrowsFromTheConstructor) {
  for (const std::size_t filter : {1U, 2U, 12U}) {
    EngineEmulator::FailCall("FwpmGetAppIdFromFileName0", filter, ERROR_FILE_NOT_FOUND);
    EXPECT_THAT(
        [&] {
          KillSwitchWithWhitelistedApps(source_, {kBrowser, kMail});
        },
        FailsWith("Failed to retrieve app blob", ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(BlocksNotGivenBack(), 0u);
  }
}

TEST_F(KillSwitchWithWhitelistedAppsTest, IdentifiersLiveAsLongAsACopyOfTheFilters) {
  std::optional<KillSwitchWithWhitelistedApps> variant(std::in_place, source_,
                                                       std::vector<std::wstring>{kMail});
  std::optional<Sublayer> copy = *variant;
  variant.reset();
  EXPECT_GT(BlocksNotGivenBack(), 0u);
  EXPECT_THAT(Install(*copy), SizeIs(57));
  copy.reset();
  EXPECT_EQ(BlocksNotGivenBack(), 0u);
}

TEST_F(KillSwitchWithWhitelistedAppsTest, HasTheKeyOfTheSource) {
  EXPECT_EQ(KillSwitchWithWhitelistedApps(source_, {kBrowser}).GetGuid(), kKillSwitchKey);
}

TEST_F(KillSwitchWithWhitelistedAppsTest, HasNameDescriptionAndWeightOfTheSource) {
  source_.SetWeight(32001);
  const auto sublayers = InstallAndLook(KillSwitchWithWhitelistedApps(source_, {kBrowser})).sublayers;
  ASSERT_THAT(sublayers, SizeIs(1));
  EXPECT_EQ(sublayers[0].name, L"Kill switch");
  EXPECT_EQ(sublayers[0].description, L"Cuts the machine off");
  EXPECT_EQ(sublayers[0].weight, 32001);
}

TEST_F(KillSwitchWithWhitelistedAppsTest, BuildingAgainAppendsThePermitsASecondTime) {
  KillSwitchWithWhitelistedApps variant(source_, {kBrowser});
  KillSwitch& base = variant;
  base.BuildFilters();
  EXPECT_THAT(variant.GetFilters(), SizeIs(63));
}

}  // namespace
}  // namespace WfpFirewall::Sublayers
