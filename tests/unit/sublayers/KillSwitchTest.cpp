#include "sublayers/KillSwitch.h"

#include <gmock/gmock.h>

#include "unit/sublayers/KillSwitchTable.h"
#include "unit/sublayers/RuleSetFixture.h"

namespace WfpFirewall::Sublayers {
namespace {

using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;

class KillSwitchTest : public RuleSetFixture {
 protected:
  static KillSwitch Make() { return {kKillSwitchKey, L"Kill switch", L"Cuts the machine off"}; }
};

TEST_F(KillSwitchTest, InstallsExactlyItsTable) { EXPECT_TRUE(Installs(Make(), kKillSwitchTable)); }

TEST_F(KillSwitchTest, HoldsFiftyOneFilters) { EXPECT_THAT(Make().GetFilters(), SizeIs(51)); }

TEST_F(KillSwitchTest, FirstBlocksEveryOutboundIpV4Connection) {
  EXPECT_EQ(Install(Make()).at(0), "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 14 | - | -");
}

TEST_F(KillSwitchTest, LastPermitsTheGlobalDiscoveryGroupInbound) {
  EXPECT_EQ(Install(Make()).at(50),
            "ALE_AUTH_RECV_ACCEPT_V6 | PERMIT | UINT8 14 | - | "
            "IP_REMOTE_ADDRESS EQUAL V6_ADDR_MASK ff0e::c/128 & IP_REMOTE_PORT NOT_EQUAL UINT16 53");
}

/// The texts of some filters, which must all be at `layer`, without the name of the layer.
std::vector<std::string> Rules(const std::vector<std::string>& filters, std::size_t first, std::size_t last,
                               const std::string& layer) {
  std::vector<std::string> rules;
  for (std::size_t number = first; number <= last; ++number) {
    EXPECT_THAT(filters.at(number - 1), StartsWith(layer + " | "));
    rules.push_back(filters.at(number - 1).substr(layer.size()));
  }
  return rules;
}

TEST_F(KillSwitchTest, LayersOfOneFamilyHoldTheSameRules) {
  const std::vector<std::string> filters = Install(Make());
  const auto v4 = Rules(filters, 1, 8, "ALE_AUTH_CONNECT_V4");
  EXPECT_EQ(Rules(filters, 9, 16, "ALE_FLOW_ESTABLISHED_V4"), v4);
  EXPECT_EQ(Rules(filters, 17, 24, "ALE_AUTH_RECV_ACCEPT_V4"), v4);
  const auto v6 = Rules(filters, 25, 33, "ALE_AUTH_CONNECT_V6");
  EXPECT_EQ(Rules(filters, 34, 42, "ALE_FLOW_ESTABLISHED_V6"), v6);
  EXPECT_EQ(Rules(filters, 43, 51, "ALE_AUTH_RECV_ACCEPT_V6"), v6);
}

TEST_F(KillSwitchTest, OnlyLimitedBroadcastOverridesOtherSublayers) {
  const std::vector<std::string> filters = Install(Make());
  std::vector<std::size_t> overriding;
  for (std::size_t i = 0; i < filters.size(); ++i) {
    if (filters[i].find("CLEAR_ACTION_RIGHT") != std::string::npos) {
      overriding.push_back(i + 1);
    }
  }
  EXPECT_EQ(overriding, (std::vector<std::size_t>{8, 16, 24}));
}

TEST_F(KillSwitchTest, EveryFilterWeighsFourteen) {
  for (const std::string& filter : Install(Make())) {
    EXPECT_THAT(filter, HasSubstr(" | UINT8 14 | "));
  }
}

TEST_F(KillSwitchTest, TwoBuiltAlikeHoldEqualFilters) {
  const std::vector<std::string> first = Install(Make());
  EXPECT_EQ(Install(Make()), first);
}

TEST_F(KillSwitchTest, SublayerHasTheIdentityGivenAndNoWeightOfItsOwn) {
  const auto sublayers = InstallAndLook(Make()).sublayers;
  ASSERT_THAT(sublayers, SizeIs(1));
  EXPECT_EQ(sublayers[0].key, kKillSwitchKey);
  EXPECT_EQ(sublayers[0].name, L"Kill switch");
  EXPECT_EQ(sublayers[0].description, L"Cuts the machine off");
  EXPECT_EQ(sublayers[0].weight, 0);
}

TEST_F(KillSwitchTest, BuildingAgainAppendsTheFiltersASecondTime) {
  KillSwitch killSwitch = Make();
  killSwitch.BuildFilters();
  EXPECT_THAT(killSwitch.GetFilters(), SizeIs(102));
}

TEST_F(KillSwitchTest, BuildingCallsNothingOfTheEngine) {
  const KillSwitch killSwitch = Make();
  EXPECT_THAT(Calls(), SizeIs(0));
}

}  // namespace
}  // namespace WfpFirewall::Sublayers
