#include "sublayers/BlockAppsBlockedInWinFirewall.h"

#include <gmock/gmock.h>

#include "api/RuleSetIdentity.h"
#include "filtering/EngineKeys.h"
#include "support/AppBlock.h"
#include "unit/engine/FailsWith.h"
#include "unit/sublayers/RuleSetFixture.h"

namespace WfpFirewall::Sublayers {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class BlockAppsBlockedInWinFirewallTest : public RuleSetFixture {
 protected:
  void SetUp() override {
    RuleSetFixture::SetUp();
    Identities().firewallCopy = {kFirewallCopyKey, L"Copy", L"Repeats application blocks"};
  }

  void TearDown() override {
    Identities() = {};
    RuleSetFixture::TearDown();
  }

  /// The filters of the rule set that are in the engine after it is applied.
  static std::vector<std::string> InstalledCopies() {
    std::vector<std::string> texts;
    for (const auto& filter : InstallAndLook(BlockAppsBlockedInWinFirewall()).filters) {
      if (filter.subLayerKey == kFirewallCopyKey) {
        texts.push_back(filter.text);
      }
    }
    return texts;
  }
};

TEST_F(BlockAppsBlockedInWinFirewallTest, WeighsEveryCopyFifteenWhateverItsSourceWeighed) {
  ExpectOutstandingMemory(1);
  AppBlock(L"C:\\a.exe").Add();
  AppBlock light(L"C:\\b.exe");
  light.filter.weight.type = FWP_UINT8;
  light.filter.weight.uint8 = 1;
  light.Add();
  UINT64 weight = 0x0100;
  AppBlock heavy(L"C:\\c.exe");
  heavy.filter.layerKey = Filtering::kLayerAleFlowEstablishedV6;
  heavy.filter.weight.type = FWP_UINT64;
  heavy.filter.weight.uint64 = &weight;
  heavy.filter.flags = FWPM_FILTER_FLAG_CLEAR_ACTION_RIGHT;
  heavy.Add();
  EXPECT_THAT(
      InstalledCopies(),
      ElementsAre("ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 15 | - | ALE_APP_ID EQUAL BYTE_BLOB "
                  "\\device\\harddiskvolume1\\a.exe",
                  "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 15 | - | ALE_APP_ID EQUAL BYTE_BLOB "
                  "\\device\\harddiskvolume1\\b.exe",
                  "ALE_FLOW_ESTABLISHED_V6 | BLOCK | UINT8 15 | CLEAR_ACTION_RIGHT | ALE_APP_ID EQUAL "
                  "BYTE_BLOB \\device\\harddiskvolume1\\c.exe"));
}

TEST_F(BlockAppsBlockedInWinFirewallTest, IsEmptyOnAMachineWithoutApplicationBlocks) {
  EXPECT_THAT(InstalledCopies(), IsEmpty());
}

TEST_F(BlockAppsBlockedInWinFirewallTest, IsASnapshot) {
  ExpectOutstandingMemory(1);
  AppBlock(L"C:\\a.exe").Add();
  const BlockAppsBlockedInWinFirewall rules;
  AppBlock(L"C:\\b.exe").Add();
  EXPECT_THAT(rules.GetFilters(), SizeIs(1));
}

TEST_F(BlockAppsBlockedInWinFirewallTest, CopiesTheCopiesOfAnEarlierInstanceToo) {
  ExpectOutstandingMemory(2);
  AppBlock(L"C:\\a.exe").Add();
  Firewall firewall(Provider({0x10000000, 1, 0x4001, {}}, L"CorvaneService", L"Corvane", L"Corvane"));
  BlockAppsBlockedInWinFirewall earlier;
  firewall.AddSublayer(earlier).Apply();
  EXPECT_THAT(BlockAppsBlockedInWinFirewall().GetFilters(), SizeIs(2));
}

TEST_F(BlockAppsBlockedInWinFirewallTest, CannotBeMadeWithoutASession) {
  EngineEmulator::FailCall("FwpmEngineOpen0", 1, 5);
  EXPECT_THAT([] { BlockAppsBlockedInWinFirewall(); }, FailsWith("Error opening engine.", 5));
}

TEST_F(BlockAppsBlockedInWinFirewallTest, HasTheIdentityOfInitializeAndNoWeightOfItsOwn) {
  const auto sublayers = InstallAndLook(BlockAppsBlockedInWinFirewall()).sublayers;
  ASSERT_THAT(sublayers, SizeIs(1));
  EXPECT_EQ(sublayers[0].key, kFirewallCopyKey);
  EXPECT_EQ(sublayers[0].name, L"Copy");
  EXPECT_EQ(sublayers[0].description, L"Repeats application blocks");
  EXPECT_EQ(sublayers[0].weight, 0);
}

}  // namespace
}  // namespace WfpFirewall::Sublayers
