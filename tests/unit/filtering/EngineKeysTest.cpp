#include "filtering/EngineKeys.h"

#include <gtest/gtest.h>

#include "unit/filtering/FieldKeys.h"
#include "unit/filtering/GuidFromText.h"

namespace WfpFirewall::Filtering {
namespace {

TEST(EngineKeys, ConditionFieldsHaveTheEnginesKeys) {
  EXPECT_EQ(kConditionAleAppId, GuidFromText(kAppIdKey));
  EXPECT_EQ(kConditionIpArrivalInterface, GuidFromText(kArrivalInterfaceKey));
  EXPECT_EQ(kConditionIpLocalInterface, GuidFromText(kLocalInterfaceKey));
  EXPECT_EQ(kConditionInterfaceIndex, GuidFromText(kInterfaceIndexKey));
  EXPECT_EQ(kConditionSubInterfaceIndex, GuidFromText(kSubInterfaceIndexKey));
  EXPECT_EQ(kConditionIpProtocol, GuidFromText(kProtocolKey));
  EXPECT_EQ(kConditionIpLocalAddressType, GuidFromText(kLocalAddressTypeKey));
  EXPECT_EQ(kConditionFlags, GuidFromText(kFlagsKey));
  EXPECT_EQ(kConditionIpLocalAddress, GuidFromText(kLocalAddressKey));
  EXPECT_EQ(kConditionIpRemoteAddress, GuidFromText(kRemoteAddressKey));
  EXPECT_EQ(kConditionIpDestinationAddress, GuidFromText(kDestinationAddressKey));
  EXPECT_EQ(kConditionIpSourceAddress, GuidFromText(kSourceAddressKey));
  EXPECT_EQ(kConditionIpLocalPort, GuidFromText(kLocalPortKey));
  EXPECT_EQ(kConditionIpRemotePort, GuidFromText(kRemotePortKey));
}

}  // namespace
}  // namespace WfpFirewall::Filtering
