#include "filtering/Layer.h"

#include <gmock/gmock.h>

#include "catalog/Guid.h"
#include "support/EngineKeys.h"
#include "unit/engine/FailsWith.h"

namespace WfpFirewall::Filtering {
namespace {

using Catalog::operator""_guid;

struct LayerRow {
  LayerType type;
  int number;
  const char* name;  ///< in the Windows SDK
  GUID key;
};

// clang-format off: each row is one line, even if it is long.
const LayerRow kLayers[]{
    {LayerType::InboundIpPacketV4, 0, "FWPM_LAYER_INBOUND_IPPACKET_V4",
     "c86fd1bf-21cd-497e-a0bb-17425c885c58"_guid},
    {LayerType::InboundIpPacketV6, 1, "FWPM_LAYER_INBOUND_IPPACKET_V6",
     "f52032cb-991c-46e7-971d-2601459a91ca"_guid},
    {LayerType::OutboundIpPacketV4, 2, "FWPM_LAYER_OUTBOUND_IPPACKET_V4",
     "1e5c9fae-8a84-4135-a331-950b54229ecd"_guid},
    {LayerType::OutboundIpPacketV6, 3, "FWPM_LAYER_OUTBOUND_IPPACKET_V6",
     "a3b3ab6b-3564-488c-9117-f34e82142763"_guid},
    {LayerType::AleAuthRecvAcceptV4, 4, "FWPM_LAYER_ALE_AUTH_RECV_ACCEPT_V4",
     "e1cd9fe7-f4b5-4273-96c0-592e487b8650"_guid},
    {LayerType::AleAuthRecvAcceptV6, 5, "FWPM_LAYER_ALE_AUTH_RECV_ACCEPT_V6",
     "a3b42c97-9f04-4672-b87e-cee9c483257f"_guid},
    {LayerType::AleAuthConnectV4, 6, "FWPM_LAYER_ALE_AUTH_CONNECT_V4",
     "c38d57d1-05a7-4c33-904f-7fbceee60e82"_guid},
    {LayerType::AleAuthConnectV6, 7, "FWPM_LAYER_ALE_AUTH_CONNECT_V6",
     "4a72393b-319f-44bc-84c3-ba54dcb3b6b4"_guid},
    {LayerType::IpForwardV4, 8, "FWPM_LAYER_IPFORWARD_V4", "a82acc24-4ee1-4ee1-b465-fd1d25cb10a4"_guid},
    {LayerType::IpForwardV6, 9, "FWPM_LAYER_IPFORWARD_V6", "7b964818-19c7-493a-b71f-832c3684d28c"_guid},
    {LayerType::InboundTransportV4, 10, "FWPM_LAYER_INBOUND_TRANSPORT_V4",
     "5926dfc8-e3cf-4426-a283-dc393f5d0f9d"_guid},
    {LayerType::OutboundTransportV4, 11, "FWPM_LAYER_OUTBOUND_TRANSPORT_V4",
     "09e61aea-d214-46e2-9b21-b26b0b2f28c8"_guid},
    {LayerType::AleFlowEstablishedV4, 12, "FWPM_LAYER_ALE_FLOW_ESTABLISHED_V4",
     "af80470a-5596-4c13-9992-539e6fe57967"_guid},
    {LayerType::AleFlowEstablishedV6, 13, "FWPM_LAYER_ALE_FLOW_ESTABLISHED_V6",
     "7021d2b3-dfa4-406e-afeb-6afaf7e70efd"_guid},
    {LayerType::InboundIcmpErrorV4, 14, "FWPM_LAYER_INBOUND_ICMP_ERROR_V4",
     "61499990-3cb6-4e84-b950-53b94b6964f3"_guid},
    {LayerType::InboundIcmpErrorV6, 15, "FWPM_LAYER_INBOUND_ICMP_ERROR_V6",
     "65f9bdff-3b2d-4e5d-b8c6-c720651fe898"_guid},
    {LayerType::InboundIcmpErrorV4Discard, 16, "FWPM_LAYER_INBOUND_ICMP_ERROR_V4_DISCARD",
     "a6b17075-ebaf-4053-a4e7-213c8121ede5"_guid},
    {LayerType::InboundIcmpErrorV6Discard, 17, "FWPM_LAYER_INBOUND_ICMP_ERROR_V6_DISCARD",
     "a6e7ccc0-08fb-468d-a472-9771d5595e09"_guid},
    {LayerType::OutboundIcmpErrorV4, 18, "FWPM_LAYER_OUTBOUND_ICMP_ERROR_V4",
     "41390100-564c-4b32-bc1d-718048354d7c"_guid},
    {LayerType::OutboundIcmpErrorV6, 19, "FWPM_LAYER_OUTBOUND_ICMP_ERROR_V6",
     "7fb03b60-7b8d-4dfa-badd-980176fc4e12"_guid},
    {LayerType::OutboundIcmpErrorV4Discard, 20, "FWPM_LAYER_OUTBOUND_ICMP_ERROR_V4_DISCARD",
     "b3598d36-0561-4588-a6bf-e955e3f6264b"_guid},
    {LayerType::OutboundIcmpErrorV6Discard, 21, "FWPM_LAYER_OUTBOUND_ICMP_ERROR_V6_DISCARD",
     "65f2e647-8d0c-4f47-b19b-33a4d3f1357c"_guid},
    {LayerType::AleResourceAssignmentV4, 22, "FWPM_LAYER_ALE_RESOURCE_ASSIGNMENT_V4",
     "1247d66d-0b60-4a15-8d44-7155d0f53a0c"_guid},
    {LayerType::AleResourceAssignmentV6, 23, "FWPM_LAYER_ALE_RESOURCE_ASSIGNMENT_V6",
     "55a650e1-5f0a-4eca-a653-88f53b26aa8c"_guid},
    {LayerType::AleResourceAssignmentV4Discard, 24, "FWPM_LAYER_ALE_RESOURCE_ASSIGNMENT_V4_DISCARD",
     "0b5812a2-c3ff-4eca-b88d-c79e20ac6322"_guid},
    {LayerType::AleResourceAssignmentV6Discard, 25, "FWPM_LAYER_ALE_RESOURCE_ASSIGNMENT_V6_DISCARD",
     "cbc998bb-c51f-4c1a-bb4f-9775fcacab2f"_guid},
    {LayerType::AleResourceReleaseV4, 26, "FWPM_LAYER_ALE_RESOURCE_RELEASE_V4",
     "74365cce-ccb0-401a-bfc1-b89934ad7e15"_guid},
    {LayerType::AleResourceReleaseV6, 27, "FWPM_LAYER_ALE_RESOURCE_RELEASE_V6",
     "f4e5ce80-edcc-4e13-8a2f-b91454bb057b"_guid},
    {LayerType::AleAuthListenV4, 28, "FWPM_LAYER_ALE_AUTH_LISTEN_V4",
     "88bb5dad-76d7-4227-9c71-df0a3ed7be7e"_guid},
    {LayerType::AleAuthListenV6, 29, "FWPM_LAYER_ALE_AUTH_LISTEN_V6",
     "7ac9de24-17dd-4814-b4bd-a9fbc95a321b"_guid},
    {LayerType::AleAuthListenV4Discard, 30, "FWPM_LAYER_ALE_AUTH_LISTEN_V4_DISCARD",
     "371dfada-9f26-45fd-b4eb-c29eb212893f"_guid},
    {LayerType::AleAuthListenV6Discard, 31, "FWPM_LAYER_ALE_AUTH_LISTEN_V6_DISCARD",
     "60703b07-63c8-48e9-ada3-12b1af40a617"_guid},
};
// clang-format on

TEST(Layer, MembersHaveTheirNumbers) {
  for (const LayerRow& layer : kLayers) {
    EXPECT_EQ(static_cast<int>(layer.type), layer.number) << layer.name;
  }
  EXPECT_EQ(static_cast<int>(LayerType::None), 32);
}

TEST(Layer, EveryMemberButIpForwardV6HasTheEnginesKey) {
  for (const LayerRow& layer : kLayers) {
    if (layer.type != LayerType::IpForwardV6) {
      EXPECT_EQ(MapLayerType(layer.type), layer.key) << layer.name;
    }
  }
}

TEST(Layer, EveryKeyOfTheEngineReadsAsItsMember) {
  for (const LayerRow& layer : kLayers) {
    EXPECT_EQ(MapLayerType(layer.key), layer.type) << layer.name;
  }
}

TEST(Layer, IpForwardV6CanBeReadButNotWritten) {
  EXPECT_EQ(MapLayerType("7b964818-19c7-493a-b71f-832c3684d28c"_guid), LayerType::IpForwardV6);
  EXPECT_THAT([] { MapLayerType(LayerType::IpForwardV6); }, FailsWith("Not supported Layer type."));
}

TEST(Layer, NoneCannotBeWritten) {
  EXPECT_THAT([] { MapLayerType(LayerType::None); }, FailsWith("Layer type None cant be set."));
  EXPECT_THAT([] { (void)Layer().GetNativeLayerType(); }, FailsWith("Layer type None cant be set."));
}

TEST(Layer, NumbersOutsideTheEnumerationAreRefused) {
  EXPECT_THAT([] { MapLayerType(static_cast<LayerType>(33)); }, FailsWith("Not supported Layer type."));
  EXPECT_THAT([] { MapLayerType(static_cast<LayerType>(-1)); }, FailsWith("Not supported Layer type."));
}

TEST(Layer, UnknownKeysAreRefused) {
  const GUID streamV4 = "3b89653c-c170-49e4-b1cd-e0eeeee19a3e"_guid;
  EXPECT_THAT([&] { MapLayerType(streamV4); }, FailsWith("Not supported Layer type."));
  EXPECT_THAT([&] { Layer::FromNative(streamV4); }, FailsWith("Not supported Layer type."));
  EXPECT_THAT([] { MapLayerType(GUID{}); }, FailsWith("Not supported Layer type."));
}

TEST(Layer, KeysAreComparedToTheLastByte) {
  EXPECT_THAT([] { MapLayerType("c38d57d1-05a7-4c33-904f-7fbceee60e83"_guid); },
              FailsWith("Not supported Layer type."));
}

TEST(Layer, HoldsNoneUnlessTold) { EXPECT_EQ(Layer().GetLayerType(), LayerType::None); }

TEST(Layer, HoldsWhatItIsGivenUnchecked) {
  EXPECT_EQ(Layer(LayerType::AleAuthConnectV4).GetLayerType(), LayerType::AleAuthConnectV4);
  EXPECT_EQ(Layer(static_cast<LayerType>(33)).GetLayerType(), static_cast<LayerType>(33));
}

TEST(Layer, ConvertsItsTypeBothWays) {
  const GUID connectV4 = kConnectV4;
  EXPECT_EQ(Layer(LayerType::AleAuthConnectV4).GetNativeLayerType(), connectV4);
  EXPECT_EQ(Layer::FromNative(connectV4).GetLayerType(), LayerType::AleAuthConnectV4);
}

}  // namespace
}  // namespace WfpFirewall::Filtering
