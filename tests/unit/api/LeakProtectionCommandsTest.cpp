#include <WfpPlatform.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <memory>

#include "LeakProtectionTest.h"
#include "emulator/Control.h"
#include "engine/Engine.h"
#include "engine/Sublayer.h"
#include "filtering/EngineKeys.h"
#include "helpers/NetworkInfoException.h"
#include "support/AppBlock.h"
#include "support/FakePlatform.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

class LeakProtection : public LeakProtectionTest {
 protected:
  using Names = std::vector<const wchar_t*>;

  static std::uint64_t EnableByName(const Names& names, std::uint64_t luid = 0) {
    return EnableLeakProtection("198.51.100.7", Log, names.data(), static_cast<std::uint32_t>(names.size()),
                                luid, nullptr, 0);
  }

  /// The filter in the engine that permits the listed addresses.
  static Texts ListedAddresses() {
    Texts filters = FilterTexts();
    std::erase_if(filters, [](const std::string& filter) {
      return !filter.starts_with("ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 15 | CLEAR_ACTION_RIGHT |");
    });
    return filters;
  }
};

TEST_F(LeakProtection, FirstInstallsAllThreeRuleSetsWithoutATransaction) {
  EXPECT_EQ(Enable({0x01020304}), 0U);
  EXPECT_THAT(
      TakeLog(),
      ElementsAre(
          "NATIVE: Enabling leak protection v3",
          "NATIVE: Enabling leak protection. Allowed interface: ", "NATIVE: Allowing interface by LUID 7",
          "NATIVE: LeakProtection dnsLeakSublayer set weight", "NATIVE: LeakProtection - apply firewall.",
          "NATIVE: LeakProtection - transaction commit.", "NATIVE: LeakProtection applying finished."));
  EXPECT_THAT(TakeCalls(),
              ElementsAre("FwpmGetAppIdFromFileName0 x 4",  //
                          "FwpmEngineOpen0", "FwpmFilterCreateEnumHandle0", "FwpmFilterEnum0",
                          "FwpmFilterDestroyEnumHandle0", "FwpmEngineClose0",                  //
                          "FwpmEngineOpen0", "FwpmProviderGetByKey0", "FwpmProviderAdd0",      //
                          "FwpmSubLayerGetByKey0", "FwpmSubLayerAdd0", "FwpmFilterAdd0 x 12",  //
                          "FwpmSubLayerGetByKey0", "FwpmSubLayerAdd0", "FwpmFilterAdd0",       //
                          "FwpmSubLayerGetByKey0", "FwpmSubLayerAdd0", "FwpmFilterAdd0 x 21"));
  EXPECT_EQ(IsLeakProtectionEnabled(), 1U);
  EXPECT_EQ(Installed(), "dns 12, copy 1, interface 21");
  EXPECT_STREQ(GetErrorText(), "");
}

TEST_F(LeakProtection, InstallsUnderTheIdentitiesOfInitializeWithTheirWeights) {
  TurnOn();
  const std::vector<EngineEmulator::SublayerObject> sublayers = EngineEmulator::TakeSnapshot().sublayers;
  ASSERT_THAT(sublayers, SizeIs(3));
  EXPECT_EQ(sublayers[0].key, kDnsLeakKey);
  EXPECT_EQ(sublayers[0].name, L"dns leak name");
  EXPECT_EQ(sublayers[0].description, L"dns leak description");
  EXPECT_EQ(sublayers[0].weight, 32001);
  EXPECT_EQ(sublayers[1].key, kFirewallCopyKey);
  EXPECT_EQ(sublayers[1].name, L"firewall copy name");
  EXPECT_EQ(sublayers[1].description, L"firewall copy description");
  EXPECT_EQ(sublayers[1].weight, 15);
  EXPECT_EQ(sublayers[2].key, kInterfaceLeakKey);
  EXPECT_EQ(sublayers[2].name, L"interface leak name");
  EXPECT_EQ(sublayers[2].description, L"interface leak description");
  EXPECT_EQ(sublayers[2].weight, 8);
}

TEST_F(LeakProtection, TakesServerInterfaceAndAppFromWhereTheyWereGiven) {
  TurnOn();
  const Texts filters = FilterTexts();
  EXPECT_THAT(filters,
              Contains("ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 15 | - | IP_REMOTE_PORT EQUAL UINT16 53 & "
                       "IP_LOCAL_INTERFACE EQUAL UINT64 7"));
  EXPECT_THAT(filters,
              Contains("ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 15 | - | IP_REMOTE_PORT EQUAL UINT16 53 & "
                       "ALE_APP_ID EQUAL BYTE_BLOB \\device\\harddiskvolume1\\dns.exe"));
  EXPECT_THAT(filters, Contains("ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 15 | - | ALE_APP_ID EQUAL BYTE_BLOB "
                                "\\device\\harddiskvolume1\\blocked.exe"));
  EXPECT_THAT(filters, Contains("ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 14 | CLEAR_ACTION_RIGHT | "
                                "IP_LOCAL_INTERFACE NOT_EQUAL UINT64 7 & IP_REMOTE_ADDRESS EQUAL UINT32 "
                                "198.51.100.7"));
}

TEST_F(LeakProtection, WhenOnReplacesJustTheInterfaceRulesInOneTransaction) {
  ASSERT_EQ(Enable({0x01020304}), 0U);
  TakeLog();
  TakeCalls();
  EXPECT_EQ(Enable({0xC8010203, 0x05060708}), 0U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: Enabling leak protection v3",
                                     "NATIVE: Enabling leak protection. Allowed interface: ",
                                     "NATIVE: Allowing interface by LUID 7",
                                     "NATIVE: LeakProtection already enabled - changing only whitelisted IP.",
                                     "NATIVE: LeakProtection - apply firewall.",
                                     "NATIVE: LeakProtection - transaction commit.",
                                     "NATIVE: LeakProtection applying finished."));
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmTransactionBegin0", "FwpmSubLayerGetByKey0", "FwpmFreeMemory0",
                                       "FwpmFilterDeleteById0 x 21", "FwpmSubLayerDeleteByKey0",  //
                                       "FwpmSubLayerGetByKey0", "FwpmFreeMemory0",                //
                                       "FwpmSubLayerGetByKey0", "FwpmFreeMemory0",                //
                                       "FwpmSubLayerGetByKey0", "FwpmSubLayerAdd0", "FwpmFilterAdd0 x 21",
                                       "FwpmTransactionCommit0"));
  EXPECT_EQ(IsLeakProtectionEnabled(), 1U);
  EXPECT_FALSE(TransactionIsOpen());
  EXPECT_EQ(Installed(), "dns 12, copy 1, interface 21");
  EXPECT_THAT(ListedAddresses(),
              ElementsAre("ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 15 | CLEAR_ACTION_RIGHT | IP_REMOTE_ADDRESS "
                          "EQUAL UINT32 200.1.2.3 & IP_REMOTE_ADDRESS EQUAL UINT32 5.6.7.8"));
}

TEST_F(LeakProtection, WhenOnKeepsWeightsFiltersAndBlocksOfTheOtherRuleSets) {
  TurnOn();
  const auto others = [] {
    std::vector<UINT64> ids;
    for (const EngineEmulator::FilterObject& filter : EngineEmulator::TakeSnapshot().filters) {
      if (filter.subLayerKey != kInterfaceLeakKey) {
        ids.push_back(filter.id);
      }
    }
    return ids;
  };
  const std::vector<UINT64> before = others();
  AppBlock(L"C:\\blocked later.exe").Add();
  const std::vector<UINT64> withLater = others();
  ASSERT_EQ(withLater.size(), before.size() + 1);
  ASSERT_EQ(EnableByName({}, 8), 0U);
  EXPECT_EQ(others(), withLater);
  EXPECT_EQ(EngineEmulator::TakeSnapshot().sublayers.at(0).weight, 32001);
  EXPECT_THAT(FilterTexts(), Contains(HasSubstr("IP_REMOTE_PORT EQUAL UINT16 53 & IP_LOCAL_INTERFACE EQUAL "
                                                "UINT64 7")));
  EXPECT_THAT(FilterTexts(), Contains(HasSubstr("PERMIT | UINT8 14 | CLEAR_ACTION_RIGHT | IP_LOCAL_INTERFACE "
                                                "EQUAL UINT64 8")));
}

TEST_F(LeakProtection, IsRemovedInterfaceRulesFirstThenDnsThenTheCopy) {
  TurnOn();
  EXPECT_EQ(DisableLeakProtection(), 0U);
  EXPECT_THAT(TakeCalls(),
              ElementsAre("FwpmSubLayerGetByKey0", "FwpmFreeMemory0", "FwpmFilterDeleteById0 x 20",
                          "FwpmSubLayerDeleteByKey0",  //
                          "FwpmSubLayerGetByKey0", "FwpmFreeMemory0", "FwpmFilterDeleteById0 x 12",
                          "FwpmSubLayerDeleteByKey0",  //
                          "FwpmFreeMemory0 x 4",       // the application's identifiers
                          "FwpmSubLayerGetByKey0", "FwpmFreeMemory0", "FwpmFilterDeleteById0",
                          "FwpmSubLayerDeleteByKey0"));
  EXPECT_THAT(TakeLog(), IsEmpty());
  EXPECT_EQ(IsLeakProtectionEnabled(), 0U);
  EXPECT_EQ(Installed(), "");
  EXPECT_THAT(FilterTexts(), SizeIs(1));  // Windows Firewall's own
}

TEST_F(LeakProtection, CanBeTurnedOnAgainInTheSameSession) {
  TurnOn();
  ASSERT_EQ(DisableLeakProtection(), 0U);
  AppBlock(L"C:\\blocked later.exe").Add();
  TakeCalls();
  EXPECT_EQ(Enable(), 0U);
  EXPECT_EQ(std::ranges::count(Calls(), "FwpmEngineOpen0"), 1);  // the enumeration's
  EXPECT_EQ(Installed(), "dns 12, copy 2, interface 20");
}

TEST_F(LeakProtection, CopiesTheCopiesOfAnotherProcess) {
  AppBlock copied(L"C:\\blocked.exe");
  copied.filter.weight.type = FWP_UINT8;
  copied.filter.weight.uint8 = 15;
  copied.Add();
  TurnOn();
  EXPECT_EQ(Installed(), "dns 12, copy 2, interface 20");
}

TEST_F(LeakProtection, ThatIsOffIsDisabledWithoutTouchingTheEngine) {
  EXPECT_EQ(IsLeakProtectionEnabled(), 0U);
  EXPECT_EQ(DisableLeakProtection(), 0U);
  EXPECT_THAT(TakeCalls(), IsEmpty());
}

TEST_F(LeakProtection, KeepsTheEnginesArrayOfEachEnumerationAndNothingElse) {
  TurnOn();
  ASSERT_EQ(Enable(), 0U);  // replaces the interface rules only
  ASSERT_EQ(DisableLeakProtection(), 0U);
  ASSERT_EQ(Enable(), 0U);
  ASSERT_EQ(DisableLeakProtection(), 0U);
  EXPECT_THAT(EngineEmulator::OutstandingMemory(), ElementsAre("FwpmFilterEnum0", "FwpmFilterEnum0"));
  EXPECT_EQ(EngineEmulator::CountOutstanding().sessions, 1U);
}

TEST_F(LeakProtection, StandsBesideTheKillSwitch) {
  ASSERT_EQ(DisableInternet(nullptr, 0, nullptr, 0, Log), 0U);
  TurnOn();
  EXPECT_EQ(Installed(), "dns 12, copy 1, interface 20");
  EXPECT_EQ(EnableInternet(), 0U);
  EXPECT_EQ(IsLeakProtectionEnabled(), 1U);
  EXPECT_EQ(Installed(), "dns 12, copy 1, interface 20");
}

TEST_F(LeakProtection, EndsWithASecondInitialize) {
  TurnOn();
  InitializeModule();
  EXPECT_EQ(IsLeakProtectionEnabled(), 0U);
  EXPECT_EQ(Installed(), "");
}

/// Adds a sublayer for another program, which is removed when the result is destroyed. As long as it exists,
/// the engine refuses the library's filters for this key.
std::shared_ptr<void> OccupySublayer(const GUID& key) {
  std::shared_ptr<void> session = WfpFirewall::Engine::OpenEngine();
  WfpFirewall::Sublayer(key, L"Another program's", L"").Apply(session.get(), {kProviderKey, L"", L"", L""});
  return session;
}

TEST_F(LeakProtection, ReadsThePermittedAddressesOnlyDuringTheCall) {
  std::vector<std::uint32_t> addresses{0xFFFFFFFF, 0x80000000, 0};
  std::shared_ptr<void> otherProgram = OccupySublayer(kInterfaceLeakKey);
  ASSERT_EQ(Enable(addresses), 0U);
  ASSERT_EQ(Installed(), "dns 12, copy 1, interface 0");
  std::ranges::fill(addresses, 1);
  otherProgram.reset();
  ASSERT_EQ(EnableDhcp(Log), 0U);  // installs everything that is registered
  EXPECT_THAT(
      ListedAddresses(),
      ElementsAre(EndsWith("| IP_REMOTE_ADDRESS EQUAL UINT32 255.255.255.255 & IP_REMOTE_ADDRESS EQUAL "
                           "UINT32 128.0.0.0 & IP_REMOTE_ADDRESS EQUAL UINT32 0.0.0.0")));
}

TEST_F(LeakProtection, PermitsNoAddressesWithoutArrayOrCount) {
  const std::uint32_t address = 1;
  ASSERT_EQ(EnableLeakProtection("198.51.100.7", Log, nullptr, 0, 7, nullptr, 5), 0U);
  EXPECT_THAT(ListedAddresses(), IsEmpty());
  ASSERT_EQ(EnableLeakProtection("198.51.100.7", Log, nullptr, 0, 7, &address, 0), 0U);
  EXPECT_THAT(ListedAddresses(), IsEmpty());
}

TEST_F(LeakProtection, KeepsAllSixtyFourBitsOfALuid) {
  ASSERT_EQ(EnableByName({}, 0xFFFFFFFFFFFFFFFF), 0U);
  EXPECT_THAT(TakeLog(), Contains("NATIVE: Allowing interface by LUID 18446744073709551615"));
  EXPECT_THAT(FilterTexts(),
              Contains(EndsWith("| IP_LOCAL_INTERFACE NOT_EQUAL UINT64 18446744073709551615")));
}

TEST_F(LeakProtection, WithALuidSearchesNoAdaptersButLogsTheNames) {
  FakePlatform::AddAdapter({L"vpn", L"A Tunnel", 9, 6, {}});
  ASSERT_EQ(EnableByName({L"Tunnel", L"B,c"}, 7), 0U);
  const Texts log = TakeLog();
  EXPECT_EQ(log.at(1), "NATIVE: Enabling leak protection. Allowed interface: Tunnel,B,c");
  EXPECT_EQ(log.at(2), "NATIVE: Allowing interface by LUID 7");
  EXPECT_THAT(FakePlatform::GetCalls(), IsEmpty());
  EXPECT_THAT(FilterTexts(), Not(Contains(HasSubstr("UINT64 9"))));
}

TEST_F(LeakProtection, WithoutALuidAllowsTheAdaptersOfTheNames) {
  FakePlatform::AddAdapter({L"vpn", L"A Tunnel", 9, 6, {}});
  FakePlatform::AddAdapter({L"lan", L"Ethernet", 10, 6, {}});
  FakePlatform::AddAdapter({L"spare", L"B Tunnel", 11, 6, {}});
  ASSERT_EQ(EnableByName({L"Tunnel"}), 0U);
  EXPECT_THAT(
      TakeLog(),
      ElementsAre("NATIVE: Enabling leak protection v3",
                  "NATIVE: Enabling leak protection. Allowed interface: Tunnel",
                  "NATIVE: Using adapters search by name", "NATIVE: found interface: A Tunnel:9",
                  "NATIVE: found interface: B Tunnel:11", "NATIVE available interface : vpn-A Tunnel",
                  "NATIVE available interface : lan-Ethernet", "NATIVE available interface : spare-B Tunnel",
                  "NATIVE: LeakProtection dnsLeakSublayer set weight",
                  "NATIVE: LeakProtection - apply firewall.", "NATIVE: LeakProtection - transaction commit.",
                  "NATIVE: LeakProtection applying finished."));
  EXPECT_EQ(Installed(), "dns 16, copy 1, interface 40");
}

TEST_F(LeakProtection, WithoutLuidAndNamesKeepsJustPort53Closed) {
  ASSERT_EQ(EnableLeakProtection("198.51.100.7", Log, nullptr, 0, 0, nullptr, 0), 0U);
  EXPECT_THAT(
      TakeLog(),
      ElementsAre("NATIVE: Enabling leak protection v3",
                  "NATIVE: Enabling leak protection. Allowed interface: ",
                  "NATIVE: Using adapters search by name",  //
                  "NATIVE: adapter luids empty.", "NATIVE: LeakProtection dnsLeakSublayer set weight",
                  "NATIVE: LeakProtection - apply firewall.", "NATIVE: LeakProtection - transaction commit.",
                  "NATIVE: LeakProtection applying finished."));
  EXPECT_EQ(IsLeakProtectionEnabled(), 1U);
  EXPECT_EQ(Installed(), "dns 8, copy 1, interface 0");
}

TEST_F(LeakProtection, LetsAFailedAdapterSearchEscape) {
  FakePlatform::FailCall("GetAdaptersAddresses", FakePlatform::kEveryCall, 8);
  EXPECT_THROW(EnableByName({L"Tunnel"}), WfpFirewall::Helpers::NetworkInfoException);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: Enabling leak protection v3",
                                     "NATIVE: Enabling leak protection. Allowed interface: Tunnel",
                                     "NATIVE: Using adapters search by name"));
  EXPECT_THAT(TakeCalls(), IsEmpty());
  EXPECT_EQ(Registered(), "");
  EXPECT_STREQ(GetErrorText(), "");
}

TEST_F(LeakProtection, ThatIsOnStaysOnAfterAFailedAdapterSearch) {
  TurnOn();
  FakePlatform::FailCall("GetAdaptersAddresses", FakePlatform::kEveryCall, 8);
  EXPECT_THROW(EnableByName({L"Tunnel"}), WfpFirewall::Helpers::NetworkInfoException);
  EXPECT_THAT(TakeCalls(), IsEmpty());
  EXPECT_EQ(IsLeakProtectionEnabled(), 1U);
}

class UninitializedLeakProtection : public ModuleTest {};

TEST_F(UninitializedLeakProtection, IsOffAndHasNothingToDisable) {
  EXPECT_EQ(IsLeakProtectionEnabled(), 0U);
  EXPECT_EQ(DisableLeakProtection(), 0U);
  EXPECT_THAT(TakeCalls(), IsEmpty());
}

}  // namespace
