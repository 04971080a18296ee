#include "sublayers/EnableDhcp.h"

#include <gmock/gmock.h>

#include "unit/sublayers/RuleSetFixture.h"

namespace WfpFirewall::Sublayers {
namespace {

using testing::SizeIs;

constexpr const char* kTable = R"(
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 14 | - | IP_PROTOCOL EQUAL UINT8 17 & IP_LOCAL_PORT EQUAL UINT16 67 & IP_REMOTE_PORT EQUAL UINT16 68

ALE_FLOW_ESTABLISHED_V4 | PERMIT | UINT8 14 | - | IP_PROTOCOL EQUAL UINT8 17 & IP_LOCAL_PORT EQUAL UINT16 67 & IP_REMOTE_PORT EQUAL UINT16 68

ALE_AUTH_CONNECT_V6 | PERMIT | UINT8 14 | - | IP_PROTOCOL EQUAL UINT8 17 & IP_LOCAL_PORT EQUAL UINT16 546 & IP_REMOTE_PORT EQUAL UINT16 547
ALE_AUTH_CONNECT_V6 | PERMIT | UINT8 14 | - | IP_PROTOCOL EQUAL UINT8 17 & IP_LOCAL_PORT EQUAL UINT16 547 & IP_REMOTE_PORT EQUAL UINT16 546

ALE_FLOW_ESTABLISHED_V6 | PERMIT | UINT8 14 | - | IP_PROTOCOL EQUAL UINT8 17 & IP_LOCAL_PORT EQUAL UINT16 546 & IP_REMOTE_PORT EQUAL UINT16 547
ALE_FLOW_ESTABLISHED_V6 | PERMIT | UINT8 14 | - | IP_PROTOCOL EQUAL UINT8 17 & IP_LOCAL_PORT EQUAL UINT16 547 & IP_REMOTE_PORT EQUAL UINT16 546
)";

class EnableDhcpTest : public RuleSetFixture {
 protected:
  EnableDhcp dhcp_{kDhcpKey, L"DHCP", L"Lets address configuration through"};
};

TEST_F(EnableDhcpTest, InstallsExactlyItsTable) { EXPECT_TRUE(Installs(dhcp_, kTable)); }

TEST_F(EnableDhcpTest, HoldsSixPermitsOfThreeConditions) {
  const std::vector<Filter> filters = dhcp_.GetFilters();
  EXPECT_THAT(filters, SizeIs(6));
  for (const Filter& filter : filters) {
    EXPECT_EQ(filter.GetAction(), Action::Permit);
    EXPECT_THAT(filter.GetConditions(), SizeIs(3));
  }
}

TEST_F(EnableDhcpTest, SublayerHasTheIdentityGivenAndNoWeightOfItsOwn) {
  const auto sublayers = InstallAndLook(dhcp_).sublayers;
  ASSERT_THAT(sublayers, SizeIs(1));
  EXPECT_EQ(sublayers[0].key, kDhcpKey);
  EXPECT_EQ(sublayers[0].name, L"DHCP");
  EXPECT_EQ(sublayers[0].description, L"Lets address configuration through");
  EXPECT_EQ(sublayers[0].weight, 0);
}

}  // namespace
}  // namespace WfpFirewall::Sublayers
