#include "sublayers/SkeinFirewallRules.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>
#include <memory>

#include "unit/sublayers/RuleSetFixture.h"

namespace WfpFirewall::Sublayers {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr UINT64 kTunnel = 1689399632855040;
constexpr UINT64 kBackup = 7;

/// 100.64.0.9, 203.0.113.5, 10.1.2.3
constexpr UINT32 kPeers[]{0x64400009, 0xcb007105, 0x0a010203};

constexpr const char* kBlocks = R"(
ALE_AUTH_RECV_ACCEPT_V4 | BLOCK | UINT8 14 | CLEAR_ACTION_RIGHT | IP_LOCAL_INTERFACE EQUAL UINT64 1689399632855040 & IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 100.64.0.0/255.192.0.0
ALE_AUTH_RECV_ACCEPT_V4 | BLOCK | UINT8 14 | CLEAR_ACTION_RIGHT | IP_LOCAL_INTERFACE EQUAL UINT64 7 & IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 100.64.0.0/255.192.0.0
)";
constexpr const char* kPermits = R"(
ALE_AUTH_RECV_ACCEPT_V4 | PERMIT | UINT8 15 | CLEAR_ACTION_RIGHT | IP_LOCAL_INTERFACE EQUAL UINT64 1689399632855040 & IP_REMOTE_ADDRESS EQUAL UINT32 100.64.0.9 & IP_REMOTE_ADDRESS EQUAL UINT32 203.0.113.5 & IP_REMOTE_ADDRESS EQUAL UINT32 10.1.2.3
ALE_AUTH_RECV_ACCEPT_V4 | PERMIT | UINT8 15 | CLEAR_ACTION_RIGHT | IP_LOCAL_INTERFACE EQUAL UINT64 7 & IP_REMOTE_ADDRESS EQUAL UINT32 100.64.0.9 & IP_REMOTE_ADDRESS EQUAL UINT32 203.0.113.5 & IP_REMOTE_ADDRESS EQUAL UINT32 10.1.2.3
)";

class SkeinFirewallRulesTest : public RuleSetFixture {
 protected:
  static SkeinFirewallRules Rules(const std::vector<UINT64>& luids, const UINT32* peers, std::size_t count) {
    return {kSkeinKey, L"Skein", L"Guards the peer network", luids, peers, count};
  }
};

TEST_F(SkeinFirewallRulesTest, InstallsItsBlocksThenItsPermits) {
  EXPECT_TRUE(Installs(Rules({kTunnel, kBackup}, kPeers, 3), std::string(kBlocks) + kPermits));
}

TEST_F(SkeinFirewallRulesTest, KeepsTheOrderOfTheInterfaces) {
  const std::vector<std::string> filters = Install(Rules({kBackup, kTunnel}, kPeers, 1));
  EXPECT_THAT(filters,
              ElementsAre("ALE_AUTH_RECV_ACCEPT_V4 | BLOCK | UINT8 14 | CLEAR_ACTION_RIGHT | "
                          "IP_LOCAL_INTERFACE EQUAL UINT64 7 & "
                          "IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 100.64.0.0/255.192.0.0",
                          "ALE_AUTH_RECV_ACCEPT_V4 | BLOCK | UINT8 14 | CLEAR_ACTION_RIGHT | "
                          "IP_LOCAL_INTERFACE EQUAL UINT64 1689399632855040 & "
                          "IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 100.64.0.0/255.192.0.0",
                          "ALE_AUTH_RECV_ACCEPT_V4 | PERMIT | UINT8 15 | CLEAR_ACTION_RIGHT | "
                          "IP_LOCAL_INTERFACE EQUAL UINT64 7 & IP_REMOTE_ADDRESS EQUAL UINT32 100.64.0.9",
                          "ALE_AUTH_RECV_ACCEPT_V4 | PERMIT | UINT8 15 | CLEAR_ACTION_RIGHT | "
                          "IP_LOCAL_INTERFACE EQUAL UINT64 1689399632855040 & "
                          "IP_REMOTE_ADDRESS EQUAL UINT32 100.64.0.9"));
}

TEST_F(SkeinFirewallRulesTest, WithoutPeersOnlyBlocks) {
  EXPECT_TRUE(Installs(Rules({kTunnel, kBackup}, nullptr, 0), kBlocks));
}

TEST_F(SkeinFirewallRulesTest, NoListAndACountOfZeroAreTheSame) {
  EXPECT_TRUE(Installs(Rules({kTunnel, kBackup}, nullptr, 3), kBlocks));
  EXPECT_TRUE(Installs(Rules({kTunnel, kBackup}, kPeers, 0), kBlocks));
}

TEST_F(SkeinFirewallRulesTest, WithoutInterfacesInstallsAnEmptySublayer) {
  const auto engine = InstallAndLook(Rules({}, kPeers, 3));
  EXPECT_THAT(engine.sublayers, SizeIs(1));
  EXPECT_THAT(engine.filters, IsEmpty());
}

TEST_F(SkeinFirewallRulesTest, TakesPeersAsTheNumbersGiven) {
  constexpr UINT32 kEdges[]{0, 0xffffffff, 0x80000000, 0x7f000001};
  const std::vector<std::string> filters = Install(Rules({kBackup}, kEdges, 4));
  ASSERT_THAT(filters, SizeIs(2));
  EXPECT_EQ(filters[1],
            "ALE_AUTH_RECV_ACCEPT_V4 | PERMIT | UINT8 15 | CLEAR_ACTION_RIGHT | "
            "IP_LOCAL_INTERFACE EQUAL UINT64 7 & IP_REMOTE_ADDRESS EQUAL UINT32 0.0.0.0 & "
            "IP_REMOTE_ADDRESS EQUAL UINT32 255.255.255.255 & IP_REMOTE_ADDRESS EQUAL UINT32 128.0.0.0 & "
            "IP_REMOTE_ADDRESS EQUAL UINT32 127.0.0.1");
}

TEST_F(SkeinFirewallRulesTest, NeverReadsThePeersAgainOnceBuilt) {
  auto peers = std::make_unique<std::vector<UINT32>>(std::begin(kPeers), std::end(kPeers));
  const SkeinFirewallRules rules = Rules({kTunnel, kBackup}, peers->data(), peers->size());
  std::fill(peers->begin(), peers->end(), 0);
  peers.reset();
  const SkeinFirewallRules copy = rules;
  EXPECT_TRUE(Installs(copy, std::string(kBlocks) + kPermits));
}

TEST_F(SkeinFirewallRulesTest, PutsManyPeersIntoOneFilterAnInterface) {
  const std::vector<UINT32> peers(100000, kPeers[0]);
  const std::vector<Filter> filters = Rules({kBackup}, peers.data(), peers.size()).GetFilters();
  ASSERT_THAT(filters, SizeIs(2));
  EXPECT_THAT(filters[1].GetConditions(), SizeIs(100001));
}

TEST_F(SkeinFirewallRulesTest, SublayerHasTheIdentityGivenAndNoWeightOfItsOwn) {
  const auto sublayers = InstallAndLook(Rules({kTunnel}, kPeers, 1)).sublayers;
  ASSERT_THAT(sublayers, SizeIs(1));
  EXPECT_EQ(sublayers[0].key, kSkeinKey);
  EXPECT_EQ(sublayers[0].name, L"Skein");
  EXPECT_EQ(sublayers[0].description, L"Guards the peer network");
  EXPECT_EQ(sublayers[0].weight, 0);
}

}  // namespace
}  // namespace WfpFirewall::Sublayers
