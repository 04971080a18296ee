#include <gmock/gmock.h>

#include <vector>

#include "emulator/Control.h"
#include "engine/Engine.h"
#include "engine/Firewall.h"
#include "filtering/EngineKeys.h"
#include "support/AppBlock.h"
#include "support/EngineKeys.h"
#include "support/EngineTest.h"
#include "unit/engine/FailsWith.h"
#include "unit/engine/Samples.h"

namespace WfpFirewall {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// FWP_MATCH_PREFIX, which is not in older headers.
constexpr auto kMatchPrefix = static_cast<FWP_MATCH_TYPE>(11);

class BlockedAppsFilters : public EngineTest {
 protected:
  /// The copies as texts, installed in a sublayer and read back in the order of the engine.
  std::vector<std::string> Copies() {
    Sublayer sublayer = Samples::Empty(Samples::kFirstKey);
    sublayer.AddFilters(Copy());
    Firewall firewall(Samples::MakeProvider());
    firewall.AddSublayer(sublayer).Apply();
    std::vector<std::string> texts;
    for (const EngineEmulator::FilterObject& filter : EngineEmulator::TakeSnapshot().filters) {
      if (filter.subLayerKey == Samples::kFirstKey) {
        texts.push_back(filter.text);
      }
    }
    return texts;
  }

  std::vector<Filter> Copy() {
    ExpectOutstandingMemory(1);
    return Engine::GetAllBlockedAppsFilters();
  }
};

TEST_F(BlockedAppsFilters, AreCopiedInTheEnginesOrder) {
  AppBlock(L"C:\\second.exe").Add();
  AppBlock(L"C:\\first.exe").Add();
  EXPECT_THAT(Copies(), ElementsAre("ALE_AUTH_CONNECT_V4 | BLOCK | EMPTY | - | ALE_APP_ID EQUAL BYTE_BLOB "
                                    "\\device\\harddiskvolume1\\second.exe",
                                    "ALE_AUTH_CONNECT_V4 | BLOCK | EMPTY | - | ALE_APP_ID EQUAL BYTE_BLOB "
                                    "\\device\\harddiskvolume1\\first.exe"));
}

TEST_F(BlockedAppsFilters, AreNoneInAnEngineWithoutFilters) {
  EXPECT_THAT(Engine::GetAllBlockedAppsFilters(), IsEmpty());
}

TEST_F(BlockedAppsFilters, ComeFromEveryOwnerLayerAndSublayer) {
  const std::shared_ptr<void> session = Engine::OpenEngine();
  Samples::Empty(Samples::kSecondKey).Apply(session.get(), Samples::MakeProvider());
  AppBlock inbound(L"C:\\a.exe");
  inbound.filter.layerKey = Filtering::kLayerAleAuthRecvAcceptV6;
  inbound.Add();
  AppBlock listening(L"C:\\b.exe");
  listening.filter.layerKey = Filtering::kLayerAleAuthListenV4;
  listening.filter.weight.type = FWP_UINT8;
  listening.filter.weight.uint8 = 1;
  listening.Add();
  AppBlock ours(L"C:\\c.exe");
  ours.filter.subLayerKey = Samples::kSecondKey;
  EXPECT_EQ(FwpmFilterAdd0(session.get(), &ours.filter, nullptr, nullptr), ERROR_SUCCESS);
  EXPECT_THAT(Copies(),
              ElementsAre("ALE_AUTH_RECV_ACCEPT_V6 | BLOCK | EMPTY | - | ALE_APP_ID EQUAL BYTE_BLOB "
                          "\\device\\harddiskvolume1\\a.exe",
                          "ALE_AUTH_LISTEN_V4 | BLOCK | UINT8 1 | - | ALE_APP_ID EQUAL BYTE_BLOB "
                          "\\device\\harddiskvolume1\\b.exe",
                          "ALE_AUTH_CONNECT_V4 | BLOCK | EMPTY | - | ALE_APP_ID EQUAL BYTE_BLOB "
                          "\\device\\harddiskvolume1\\c.exe"));
}

TEST_F(BlockedAppsFilters, ComeFromEveryProvider) {
  const std::shared_ptr<void> session = Engine::OpenEngine();
  std::wstring name = L"Another product";
  FWPM_PROVIDER0 provider{};
  provider.providerKey = Samples::kThirdKey;
  provider.displayData.name = name.data();
  ASSERT_EQ(FwpmProviderAdd0(session.get(), &provider, nullptr), ERROR_SUCCESS);
  AppBlock block(L"C:\\a.exe");
  block.filter.providerKey = &provider.providerKey;
  ASSERT_EQ(FwpmFilterAdd0(session.get(), &block.filter, nullptr, nullptr), ERROR_SUCCESS);
  EXPECT_THAT(Copies(), ElementsAre("ALE_AUTH_CONNECT_V4 | BLOCK | EMPTY | - | ALE_APP_ID EQUAL BYTE_BLOB "
                                    "\\device\\harddiskvolume1\\a.exe"));
}

TEST_F(BlockedAppsFilters, AreNotThosePermittingAnApp) {
  AppBlock permit(L"C:\\a.exe");
  permit.filter.action.type = FWP_ACTION_PERMIT;
  permit.Add();
  EXPECT_THAT(Copy(), IsEmpty());
}

TEST_F(BlockedAppsFilters, AreNotThoseWithASecondCondition) {
  AppBlock narrow(L"C:\\a.exe");
  narrow.filter.numFilterConditions = 2;
  narrow.Add();
  EXPECT_THAT(Copy(), IsEmpty());
}

TEST_F(BlockedAppsFilters, AreNotThoseWithoutConditions) {
  AppBlock wide(L"C:\\a.exe");
  wide.filter.numFilterConditions = 0;
  wide.Add();
  EXPECT_THAT(Copy(), IsEmpty());
}

TEST_F(BlockedAppsFilters, AreNotThoseOnAnotherField) {
  AppBlock port(L"C:\\a.exe");
  port.filter.filterCondition = &port.conditions[1];
  port.Add();
  EXPECT_THAT(Copy(), IsEmpty());
}

TEST_F(BlockedAppsFilters, KeepTheOverrideOnlyWithoutOtherFlags) {
  AppBlock overriding(L"C:\\a.exe");
  overriding.filter.layerKey = kFlowEstablishedV4;
  overriding.filter.flags = FWPM_FILTER_FLAG_CLEAR_ACTION_RIGHT;
  overriding.Add();
  AppBlock persistent(L"C:\\b.exe");
  persistent.filter.layerKey = kFlowEstablishedV4;
  persistent.filter.flags = FWPM_FILTER_FLAG_CLEAR_ACTION_RIGHT | FWPM_FILTER_FLAG_PERSISTENT;
  persistent.Add();
  EXPECT_THAT(Copies(),
              ElementsAre("ALE_FLOW_ESTABLISHED_V4 | BLOCK | EMPTY | CLEAR_ACTION_RIGHT | ALE_APP_ID EQUAL "
                          "BYTE_BLOB \\device\\harddiskvolume1\\a.exe",
                          "ALE_FLOW_ESTABLISHED_V4 | BLOCK | EMPTY | - | ALE_APP_ID EQUAL BYTE_BLOB "
                          "\\device\\harddiskvolume1\\b.exe"));
}

TEST_F(BlockedAppsFilters, LoseTheOverrideWhereTheEngineIndexesApplications) {
  AppBlock overriding(L"C:\\a.exe");
  overriding.filter.flags = FWPM_FILTER_FLAG_CLEAR_ACTION_RIGHT;
  overriding.Add();
  EXPECT_THAT(Copies(), ElementsAre("ALE_AUTH_CONNECT_V4 | BLOCK | EMPTY | - | ALE_APP_ID EQUAL BYTE_BLOB "
                                    "\\device\\harddiskvolume1\\a.exe"));
}

TEST_F(BlockedAppsFilters, ReadGreaterThanAsNotEqual) {
  AppBlock greater(L"C:\\a.exe");
  greater.conditions[0].matchType = FWP_MATCH_GREATER;
  greater.Add();
  EXPECT_THAT(Copies(), ElementsAre("ALE_AUTH_CONNECT_V4 | BLOCK | EMPTY | - | ALE_APP_ID NOT_EQUAL "
                                    "BYTE_BLOB \\device\\harddiskvolume1\\a.exe"));
}

TEST_F(BlockedAppsFilters, CannotBeCopiedFromALayerThatTheModelLacks) {
  AppBlock(L"C:\\a.exe").Add();
  AppBlock discarded(L"C:\\b.exe");
  discarded.filter.layerKey = kConnectV4Discard;
  discarded.Add();
  EXPECT_THAT([&] { Copy(); }, FailsWith("Not supported Layer type."));
}

TEST_F(BlockedAppsFilters, CannotBeCopiedWithAMatchTypeThatTheModelLacks) {
  AppBlock prefix(L"C:\\a.exe");
  prefix.conditions[0].matchType = kMatchPrefix;
  prefix.Add();
  EXPECT_THAT([&] { Copy(); }, FailsWith("Not supported Condition type."));
}

TEST_F(BlockedAppsFilters, MayBeSkippedInALayerThatTheModelLacks) {
  AppBlock permit(L"C:\\a.exe");
  permit.filter.layerKey = kConnectV4Discard;
  permit.filter.action.type = FWP_ACTION_PERMIT;
  permit.Add();
  EXPECT_THAT(Copy(), IsEmpty());
}

TEST_F(BlockedAppsFilters, AreLeftAsTheyAreInTheEngine) {
  const UINT64 id = AppBlock(L"C:\\a.exe").Add();
  Copy();
  const std::vector<EngineEmulator::FilterObject> filters = EngineEmulator::TakeSnapshot().filters;
  ASSERT_THAT(filters, SizeIs(1));
  EXPECT_EQ(filters[0].id, id);
}

TEST_F(BlockedAppsFilters, AreReadAtOnceInASessionThatIsClosedAgain) {
  for (const wchar_t* path : {L"C:\\a.exe", L"C:\\b.exe", L"C:\\c.exe"}) {
    AppBlock(path).Add();
  }
  EngineEmulator::ClearJournal();
  Copy();
  EXPECT_THAT(Calls(), ElementsAre("FwpmEngineOpen0", "FwpmFilterCreateEnumHandle0", "FwpmFilterEnum0",
                                   "FwpmFilterDestroyEnumHandle0", "FwpmEngineClose0"));
}

TEST_F(BlockedAppsFilters, KeepTheEnginesArrayAndNothingElse) {
  AppBlock(L"C:\\a.exe").Add();
  Copy();
  EXPECT_THAT(EngineEmulator::OutstandingMemory(), ElementsAre("FwpmFilterEnum0"));
  EXPECT_EQ(EngineEmulator::CountOutstanding().sessions, 0U);
}

TEST_F(BlockedAppsFilters, CannotBeReadWithoutASession) {
  AppBlock(L"C:\\a.exe").Add();
  for (const DWORD code : {DWORD{5}, DWORD{1753}, DWORD{0x80320010}}) {
    EngineEmulator::FailCall("FwpmEngineOpen0", 1, code);
    EXPECT_THAT([] { Engine::GetAllBlockedAppsFilters(); }, FailsWith("Error opening engine.", code));
  }
}

TEST_F(BlockedAppsFilters, AreNoneWhenTheEnumerationFails) {
  AppBlock(L"C:\\a.exe").Add();
  for (const char* function : {"FwpmFilterCreateEnumHandle0", "FwpmFilterEnum0"}) {
    EngineEmulator::FailCall(function, 1, 5);
    EXPECT_THAT(Engine::GetAllBlockedAppsFilters(), IsEmpty()) << function;
  }
}

TEST_F(BlockedAppsFilters, DoNotMindAnEnumerationThatCannotBeEnded) {
  AppBlock(L"C:\\a.exe").Add();
  EngineEmulator::FailCall("FwpmFilterDestroyEnumHandle0", 1, 5);
  EXPECT_THAT(Copy(), SizeIs(1));
}

}  // namespace
}  // namespace WfpFirewall
