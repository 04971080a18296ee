#include "filtering/EngineKeys.h"

#include <gtest/gtest.h>

#include "support/EngineKeys.h"

namespace WfpFirewall::Filtering {
namespace {

TEST(EngineKeys, ConditionFieldsHaveTheEnginesKeys) {
  EXPECT_EQ(kConditionAleAppId, kAppId);
  EXPECT_EQ(kConditionIpArrivalInterface, kArrivalInterface);
  EXPECT_EQ(kConditionIpLocalInterface, kLocalInterface);
  EXPECT_EQ(kConditionInterfaceIndex, kInterfaceIndex);
  EXPECT_EQ(kConditionSubInterfaceIndex, kSubInterfaceIndex);
  EXPECT_EQ(kConditionIpProtocol, kProtocol);
  EXPECT_EQ(kConditionIpLocalAddressType, kLocalAddressType);
  EXPECT_EQ(kConditionFlags, kFlagsField);
  EXPECT_EQ(kConditionIpLocalAddress, kLocalAddress);
  EXPECT_EQ(kConditionIpRemoteAddress, kRemoteAddress);
  EXPECT_EQ(kConditionIpDestinationAddress, kDestinationAddress);
  EXPECT_EQ(kConditionIpSourceAddress, kSourceAddress);
  EXPECT_EQ(kConditionIpLocalPort, kLocalPort);
  EXPECT_EQ(kConditionIpRemotePort, kRemotePort);
}

}  // namespace
}  // namespace WfpFirewall::Filtering
