#include "catalog/Keys.h"

#include <gtest/gtest.h>

#include "catalog/Layers.h"
#include "catalog/Names.h"

namespace Catalog {
namespace {

TEST(Keys, OfFieldsAreThoseOfTheirNames) {
  EXPECT_EQ(FieldName(kAleAppIdFieldKey), "ALE_APP_ID");
  EXPECT_EQ(FieldName(kDirectionFieldKey), "DIRECTION");
  EXPECT_EQ(FieldName(kFlagsFieldKey), "FLAGS");
  EXPECT_EQ(FieldName(kIpArrivalInterfaceFieldKey), "IP_ARRIVAL_INTERFACE");
  EXPECT_EQ(FieldName(kIpLocalAddressFieldKey), "IP_LOCAL_ADDRESS");
  EXPECT_EQ(FieldName(kIpLocalInterfaceFieldKey), "IP_LOCAL_INTERFACE");
  EXPECT_EQ(FieldName(kIpLocalPortFieldKey), "IP_LOCAL_PORT");
  EXPECT_EQ(FieldName(kIpNextHopInterfaceFieldKey), "IP_NEXTHOP_INTERFACE");
  EXPECT_EQ(FieldName(kIpProtocolFieldKey), "IP_PROTOCOL");
  EXPECT_EQ(FieldName(kIpRemoteAddressFieldKey), "IP_REMOTE_ADDRESS");
  EXPECT_EQ(FieldName(kIpRemotePortFieldKey), "IP_REMOTE_PORT");
}

TEST(Keys, OfLayersAreThoseOfTheirNames) {
  EXPECT_EQ(LayerName(kAleResourceAssignmentV4LayerKey), "ALE_RESOURCE_ASSIGNMENT_V4");
  EXPECT_EQ(LayerName(kAleResourceAssignmentV6LayerKey), "ALE_RESOURCE_ASSIGNMENT_V6");
  EXPECT_EQ(LayerName(kAleAuthListenV4LayerKey), "ALE_AUTH_LISTEN_V4");
  EXPECT_EQ(LayerName(kAleAuthListenV6LayerKey), "ALE_AUTH_LISTEN_V6");
  EXPECT_EQ(LayerName(kAleAuthRecvAcceptV4LayerKey), "ALE_AUTH_RECV_ACCEPT_V4");
  EXPECT_EQ(LayerName(kAleAuthRecvAcceptV6LayerKey), "ALE_AUTH_RECV_ACCEPT_V6");
  EXPECT_EQ(LayerName(kAleAuthConnectV4LayerKey), "ALE_AUTH_CONNECT_V4");
  EXPECT_EQ(LayerName(kAleAuthConnectV6LayerKey), "ALE_AUTH_CONNECT_V6");
  EXPECT_EQ(LayerName(kAleFlowEstablishedV4LayerKey), "ALE_FLOW_ESTABLISHED_V4");
  EXPECT_EQ(LayerName(kAleFlowEstablishedV6LayerKey), "ALE_FLOW_ESTABLISHED_V6");
}

TEST(Keys, OfSublayersAreThoseOfTheirNames) {
  EXPECT_EQ(SublayerName(kUniversalSublayerKey), "UNIVERSAL");
  EXPECT_EQ(SublayerName(kInspectionSublayerKey), "INSPECTION");
}

TEST(IsFlowEstablished, HoldsForFourLayers) {
  int count = 0;
  for (const Layer& layer : AllLayers()) {
    count += IsFlowEstablished(layer.key) ? 1 : 0;
  }
  EXPECT_EQ(count, 4);
  EXPECT_TRUE(IsFlowEstablished("146ae4a9-a1d2-4d43-a31a-4c42682b8e4f"_guid));
  EXPECT_FALSE(IsFlowEstablished("c38d57d1-05a7-4c33-904f-7fbceee60e82"_guid));
}

}  // namespace
}  // namespace Catalog
