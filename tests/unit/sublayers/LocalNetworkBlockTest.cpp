#include "sublayers/LocalNetworkBlock.h"

#include <gmock/gmock.h>

#include "filtering/Values.h"
#include "unit/sublayers/RuleSetFixture.h"

namespace WfpFirewall::Sublayers {
namespace {

using testing::AllOf;
using testing::Each;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

constexpr const char* kTable = R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT NOT_EQUAL UINT16 53 & IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 192.168.0.0/255.255.0.0
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT NOT_EQUAL UINT16 53 & IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 172.16.0.0/255.240.0.0
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT NOT_EQUAL UINT16 53 & IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 10.0.0.0/255.0.0.0

ALE_AUTH_RECV_ACCEPT_V4 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT NOT_EQUAL UINT16 53 & IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 192.168.0.0/255.255.0.0
ALE_AUTH_RECV_ACCEPT_V4 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT NOT_EQUAL UINT16 53 & IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 172.16.0.0/255.240.0.0
ALE_AUTH_RECV_ACCEPT_V4 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT NOT_EQUAL UINT16 53 & IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 10.0.0.0/255.0.0.0

ALE_FLOW_ESTABLISHED_V4 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT NOT_EQUAL UINT16 53 & IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 192.168.0.0/255.255.0.0
ALE_FLOW_ESTABLISHED_V4 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT NOT_EQUAL UINT16 53 & IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 172.16.0.0/255.240.0.0
ALE_FLOW_ESTABLISHED_V4 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT NOT_EQUAL UINT16 53 & IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 10.0.0.0/255.0.0.0

ALE_AUTH_CONNECT_V6 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT NOT_EQUAL UINT16 53 & IP_REMOTE_ADDRESS EQUAL V6_ADDR_MASK fe80::/10
ALE_AUTH_CONNECT_V6 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT NOT_EQUAL UINT16 53 & IP_REMOTE_ADDRESS EQUAL V6_ADDR_MASK fc00::/7

ALE_AUTH_RECV_ACCEPT_V6 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT NOT_EQUAL UINT16 53 & IP_REMOTE_ADDRESS EQUAL V6_ADDR_MASK fe80::/10
ALE_AUTH_RECV_ACCEPT_V6 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT NOT_EQUAL UINT16 53 & IP_REMOTE_ADDRESS EQUAL V6_ADDR_MASK fc00::/7

ALE_FLOW_ESTABLISHED_V6 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT NOT_EQUAL UINT16 53 & IP_REMOTE_ADDRESS EQUAL V6_ADDR_MASK fe80::/10
ALE_FLOW_ESTABLISHED_V6 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT NOT_EQUAL UINT16 53 & IP_REMOTE_ADDRESS EQUAL V6_ADDR_MASK fc00::/7
)";

class LocalNetworkBlockTest : public RuleSetFixture {
 protected:
  LocalNetworkBlock block_{kLocalNetworkKey, L"Local networks", L"Cuts the machine off its local networks"};
};

TEST_F(LocalNetworkBlockTest, InstallsExactlyItsTable) { EXPECT_TRUE(Installs(block_, kTable)); }

TEST_F(LocalNetworkBlockTest, HoldsFifteenBlocksOfTwoConditions) {
  const std::vector<Filter> filters = block_.GetFilters();
  EXPECT_THAT(filters, SizeIs(15));
  for (const Filter& filter : filters) {
    EXPECT_EQ(filter.GetAction(), Action::Block);
    EXPECT_THAT(filter.GetConditions(), SizeIs(2));
  }
}

TEST_F(LocalNetworkBlockTest, EveryFilterTestsThePortFirst) {
  for (const Filter& filter : block_.GetFilters()) {
    const auto value = filter.GetConditions().front().GetConditionValue();
    EXPECT_NE(dynamic_cast<const Filtering::Values::RemotePort*>(value.get()), nullptr);
  }
}

TEST_F(LocalNetworkBlockTest, ReceiveAcceptComesBeforeFlowEstablished) {
  const std::vector<std::string> filters = Install(block_);
  ASSERT_THAT(filters, SizeIs(15));
  EXPECT_THAT(filters[0], AllOf(HasSubstr("ALE_AUTH_CONNECT_V4"), HasSubstr("192.168.0.0/255.255.0.0")));
  EXPECT_THAT(filters[3], HasSubstr("ALE_AUTH_RECV_ACCEPT_V4"));
  EXPECT_THAT(filters[6], HasSubstr("ALE_FLOW_ESTABLISHED_V4"));
  EXPECT_THAT(filters[9], AllOf(HasSubstr("ALE_AUTH_CONNECT_V6"), HasSubstr("fe80::/10")));
  EXPECT_THAT(filters[14], AllOf(HasSubstr("ALE_FLOW_ESTABLISHED_V6"), HasSubstr("fc00::/7")));
}

TEST_F(LocalNetworkBlockTest, LeavesTheDecisionOpenToOtherSublayers) {
  EXPECT_THAT(Install(block_), Each(Not(HasSubstr("CLEAR_ACTION_RIGHT"))));
}

TEST_F(LocalNetworkBlockTest, SublayerHasTheIdentityGivenAndNoWeightOfItsOwn) {
  const auto sublayers = InstallAndLook(block_).sublayers;
  ASSERT_THAT(sublayers, SizeIs(1));
  EXPECT_EQ(sublayers[0].key, kLocalNetworkKey);
  EXPECT_EQ(sublayers[0].name, L"Local networks");
  EXPECT_EQ(sublayers[0].description, L"Cuts the machine off its local networks");
  EXPECT_EQ(sublayers[0].weight, 0);
}

}  // namespace
}  // namespace WfpFirewall::Sublayers
