#include <WfpPlatform.h>
#include <gmock/gmock.h>
#include <ipifcons.h>

#include <memory>
#include <optional>

#include "ApiTest.h"
#include "emulator/Control.h"
#include "support/FakePlatform.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// 100.64.0.9 and 203.0.113.5
constexpr std::uint32_t kPeers[]{0x64400009, 0xcb007105};
constexpr const wchar_t* kInterfaceNames[]{L"Skein", L"Other"};

class SkeinBeforeInitialize : public ModuleTest {};

TEST_F(SkeinBeforeInitialize, DisableHasNothingToDo) {
  EXPECT_EQ(DisableSkeinFirewallRules(), 0U);
  EXPECT_THAT(TakeCalls(), IsEmpty());
  EXPECT_STREQ(GetErrorText(), "");
}

class SkeinCommands : public InitializedModuleTest {
 protected:
  /// By LUID, so that the adapters are not searched.
  static std::uint64_t Enable(std::uint64_t luid) {
    return EnableSkeinFirewallRules(Log, nullptr, 0, luid, kPeers, 2);
  }

  static void AddAdapter(const std::wstring& friendlyName, const std::wstring& description,
                         std::uint64_t luid) {
    FakePlatform::AddAdapter({friendlyName, description, luid, IF_TYPE_ETHERNET_CSMACD, {}});
  }

  static constexpr const char* kBlockOn7 =
      "ALE_AUTH_RECV_ACCEPT_V4 | BLOCK | UINT8 14 | CLEAR_ACTION_RIGHT | IP_LOCAL_INTERFACE EQUAL UINT64 7 & "
      "IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 100.64.0.0/255.192.0.0";
  static constexpr const char* kPermitOn7 =
      "ALE_AUTH_RECV_ACCEPT_V4 | PERMIT | UINT8 15 | CLEAR_ACTION_RIGHT | IP_LOCAL_INTERFACE EQUAL UINT64 7 "
      "& "
      "IP_REMOTE_ADDRESS EQUAL UINT32 100.64.0.9 & IP_REMOTE_ADDRESS EQUAL UINT32 203.0.113.5";
  static constexpr const char* kBlockOn8 =
      "ALE_AUTH_RECV_ACCEPT_V4 | BLOCK | UINT8 14 | CLEAR_ACTION_RIGHT | IP_LOCAL_INTERFACE EQUAL UINT64 8 & "
      "IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 100.64.0.0/255.192.0.0";
  static constexpr const char* kPermitOn8 =
      "ALE_AUTH_RECV_ACCEPT_V4 | PERMIT | UINT8 15 | CLEAR_ACTION_RIGHT | IP_LOCAL_INTERFACE EQUAL UINT64 8 "
      "& "
      "IP_REMOTE_ADDRESS EQUAL UINT32 100.64.0.9 & IP_REMOTE_ADDRESS EQUAL UINT32 203.0.113.5";
};

TEST_F(SkeinCommands, EnableByLuidInstallsABlockAndAPermitThroughANewSession) {
  AddAdapter(L"a", L"Skein", 8);
  EXPECT_EQ(EnableSkeinFirewallRules(Log, kInterfaceNames, 2, 7, kPeers, 2), 0U);
  EXPECT_THAT(TakeLog(),
              ElementsAre("NATIVE: Enabling skein firewall rules",
                          "NATIVE: Enabling  skein firewall. Allowed interface: Skein,Other",
                          "NATIVE: Allowing interface by LUID 7", "NATIVE: Apply skein firewall rules."));
  EXPECT_THAT(FakePlatform::GetCalls(), IsEmpty());
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmEngineOpen0", "FwpmProviderGetByKey0", "FwpmProviderAdd0",
                                       "FwpmSubLayerGetByKey0", "FwpmSubLayerAdd0", "FwpmFilterAdd0 x 2"));
  EXPECT_THAT(FilterTexts(), ElementsAre(kBlockOn7, kPermitOn7));
}

TEST_F(SkeinCommands, EnableWithoutALuidSearchesByName) {
  AddAdapter(L"a", L"Skein adapter", 7);
  AddAdapter(L"b", L"Ethernet", 9);
  AddAdapter(L"c", L"Some Other", 8);
  EXPECT_EQ(EnableSkeinFirewallRules(Log, kInterfaceNames, 2, 0, kPeers, 2), 0U);
  EXPECT_THAT(
      TakeLog(),
      ElementsAre("NATIVE: Enabling skein firewall rules",
                  "NATIVE: Enabling  skein firewall. Allowed interface: Skein,Other",
                  "NATIVE: Using adapters search by name", "NATIVE: found interface: Skein adapter:7",
                  "NATIVE: found interface: Some Other:8", "NATIVE available interface : a-Skein adapter",
                  "NATIVE available interface : b-Ethernet", "NATIVE available interface : c-Some Other",
                  "NATIVE: Apply skein firewall rules."));
  EXPECT_THAT(FilterTexts(), ElementsAre(kBlockOn7, kBlockOn8, kPermitOn7, kPermitOn8));
}

TEST_F(SkeinCommands, EnableWithNamesThatMatchNothingInstallsAnEmptySublayer) {
  AddAdapter(L"a", L"Ethernet", 7);
  EXPECT_EQ(EnableSkeinFirewallRules(Log, kInterfaceNames, 1, 0, kPeers, 2), 0U);
  EXPECT_THAT(TakeLog(),
              ElementsAre("NATIVE: Enabling skein firewall rules",
                          "NATIVE: Enabling  skein firewall. Allowed interface: Skein",
                          "NATIVE: Using adapters search by name", "NATIVE available interface : a-Ethernet",
                          "NATIVE: skein firewall luids empty.", "NATIVE: Apply skein firewall rules."));
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmEngineOpen0", "FwpmProviderGetByKey0", "FwpmProviderAdd0",
                                       "FwpmSubLayerGetByKey0", "FwpmSubLayerAdd0"));
  EXPECT_EQ(EngineEmulator::TakeSnapshot().sublayers.size(), 1U);
}

TEST_F(SkeinCommands, EnableWithoutNamesAndLuidInstallsAnEmptySublayer) {
  AddAdapter(L"a", L"Ethernet", 7);
  EXPECT_EQ(EnableSkeinFirewallRules(Log, nullptr, 0, 0, kPeers, 2), 0U);
  EXPECT_THAT(TakeLog(),
              ElementsAre("NATIVE: Enabling skein firewall rules",
                          "NATIVE: Enabling  skein firewall. Allowed interface: ",
                          "NATIVE: Using adapters search by name", "NATIVE available interface : a-Ethernet",
                          "NATIVE: skein firewall luids empty.", "NATIVE: Apply skein firewall rules."));
  EXPECT_THAT(FilterTexts(), IsEmpty());
}

TEST_F(SkeinCommands, LuidsAreLoggedUnsigned) {
  EXPECT_EQ(Enable(0xffffffffffffffff), 0U);
  EXPECT_THAT(TakeLog(), testing::Contains("NATIVE: Allowing interface by LUID 18446744073709551615"));
}

TEST_F(SkeinCommands, EnableWithoutPeersOnlyBlocks) {
  EXPECT_EQ(EnableSkeinFirewallRules(Log, nullptr, 0, 7, nullptr, 0), 0U);
  EXPECT_THAT(FilterTexts(), ElementsAre(kBlockOn7));
}

TEST_F(SkeinCommands, NoListOfPeersAndACountOfZeroAreTheSame) {
  EXPECT_EQ(EnableSkeinFirewallRules(Log, nullptr, 0, 7, nullptr, 2), 0U);
  EXPECT_THAT(FilterTexts(), ElementsAre(kBlockOn7));
  EXPECT_EQ(EnableSkeinFirewallRules(Log, nullptr, 0, 7, kPeers, 0), 0U);
  EXPECT_THAT(FilterTexts(), ElementsAre(kBlockOn7));
}

TEST_F(SkeinCommands, EnableReadsOnlyAsManyPeersAsCounted) {
  EXPECT_EQ(EnableSkeinFirewallRules(Log, nullptr, 0, 7, kPeers, 1), 0U);
  EXPECT_EQ(FilterTexts().at(1),
            "ALE_AUTH_RECV_ACCEPT_V4 | PERMIT | UINT8 15 | CLEAR_ACTION_RIGHT | "
            "IP_LOCAL_INTERFACE EQUAL UINT64 7 & IP_REMOTE_ADDRESS EQUAL UINT32 100.64.0.9");
}

TEST_F(SkeinCommands, ThePeersMayGoWhenEnableReturns) {
  EngineEmulator::FailCall("FwpmEngineOpen0", 1, 1753);
  auto peers = std::make_unique<std::uint32_t[]>(2);
  std::copy(std::begin(kPeers), std::end(kPeers), peers.get());
  ASSERT_EQ(EnableSkeinFirewallRules(Log, nullptr, 0, 7, peers.get(), 2), 1753U);
  peers[0] = 0;
  peers.reset();
  EXPECT_EQ(EnableDhcp(Log), 0U);  // installs what the failure left registered
  EXPECT_EQ(FilterTexts().at(1), kPermitOn7);
}

TEST_F(SkeinCommands, EnableInstallsUnderTheIdentityHandedOver) {
  ASSERT_EQ(Enable(7), 0U);
  const EngineEmulator::Snapshot engine = EngineEmulator::TakeSnapshot();
  ASSERT_EQ(engine.sublayers.size(), 1U);
  EXPECT_EQ(engine.sublayers[0].key, kSkeinKey);
  EXPECT_EQ(engine.sublayers[0].name, L"skein name");
  EXPECT_EQ(engine.sublayers[0].description, L"skein description");
  EXPECT_EQ(engine.sublayers[0].weight, 8U);
  EXPECT_EQ(engine.sublayers[0].flags, 0U);
  EXPECT_EQ(engine.sublayers[0].providerKey, std::nullopt);
  for (const EngineEmulator::FilterObject& filter : engine.filters) {
    EXPECT_EQ(filter.subLayerKey, kSkeinKey);
    EXPECT_EQ(filter.providerKey, kProviderKey);
    EXPECT_EQ(filter.name, L"skein name");
    EXPECT_EQ(filter.description, L"skein description");
  }
}

TEST_F(SkeinCommands, EnableOnceMoreRemovesTheRulesThenInstallsNewOnesWithoutATransaction) {
  ASSERT_EQ(Enable(7), 0U);
  TakeLog();
  TakeCalls();
  EXPECT_EQ(Enable(8), 0U);
  EXPECT_THAT(TakeLog(),
              ElementsAre("NATIVE: Enabling skein firewall rules",
                          "NATIVE: Enabling  skein firewall. Allowed interface: ",
                          "NATIVE: Allowing interface by LUID 8", "NATIVE: Apply skein firewall rules."));
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmSubLayerGetByKey0", "FwpmFreeMemory0",
                                       "FwpmFilterDeleteById0 x 2", "FwpmSubLayerDeleteByKey0",
                                       "FwpmSubLayerGetByKey0", "FwpmSubLayerAdd0", "FwpmFilterAdd0 x 2"));
  EXPECT_THAT(FilterTexts(), ElementsAre(kBlockOn8, kPermitOn8));
  EXPECT_EQ(EngineEmulator::TakeSnapshot().sublayers.size(), 1U);

  EXPECT_EQ(DisableSkeinFirewallRules(), 0U);
  EXPECT_TRUE(EngineEmulator::TakeSnapshot().sublayers.empty());
}

TEST_F(SkeinCommands, DisableRemovesTheFiltersAndTheSublayer) {
  ASSERT_EQ(Enable(7), 0U);
  TakeLog();
  TakeCalls();
  EXPECT_EQ(DisableSkeinFirewallRules(), 0U);
  EXPECT_THAT(TakeLog(), IsEmpty());
  EXPECT_THAT(TakeCalls(), ElementsAre("FwpmSubLayerGetByKey0", "FwpmFreeMemory0",
                                       "FwpmFilterDeleteById0 x 2", "FwpmSubLayerDeleteByKey0"));
  EXPECT_THAT(FilterTexts(), IsEmpty());
  EXPECT_TRUE(EngineEmulator::TakeSnapshot().sublayers.empty());
}

TEST_F(SkeinCommands, DisableWithoutRulesDoesNotTouchTheEngine) {
  EXPECT_EQ(DisableSkeinFirewallRules(), 0U);
  EXPECT_THAT(TakeCalls(), IsEmpty());
  EXPECT_THAT(TakeLog(), IsEmpty());
  ASSERT_EQ(Enable(7), 0U);
  ASSERT_EQ(DisableSkeinFirewallRules(), 0U);
  TakeCalls();
  EXPECT_EQ(DisableSkeinFirewallRules(), 0U);
  EXPECT_THAT(TakeCalls(), IsEmpty());
}

TEST_F(SkeinCommands, LeaveOtherFeaturesAlone) {
  ASSERT_EQ(DisableInternet(nullptr, 0, nullptr, 0, Log), 0U);
  ASSERT_EQ(DisableLocalNetwork(Log), 0U);
  ASSERT_EQ(Enable(7), 0U);
  EXPECT_EQ(FilterTexts().size(), 68U);
  EXPECT_EQ(Enable(8), 0U);
  EXPECT_EQ(FilterTexts().size(), 68U);
  EXPECT_EQ(DisableSkeinFirewallRules(), 0U);
  EXPECT_EQ(FilterTexts().size(), 66U);
  EXPECT_EQ(IsInternetEnabled(), 0U);
  EXPECT_EQ(IsLocalNetworkEnabled(), 0U);
}

}  // namespace
