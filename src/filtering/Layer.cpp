#include "filtering/Layer.h"

#include "engine/FirewallException.h"
#include "filtering/EngineKeys.h"

namespace WfpFirewall::Filtering {
namespace {

struct LayerPair {
  LayerType type;
  const GUID& key;
};

constexpr LayerPair kLayerPairs[]{
    {LayerType::InboundIpPacketV4, kLayerInboundIpPacketV4},
    {LayerType::InboundIpPacketV6, kLayerInboundIpPacketV6},
    {LayerType::OutboundIpPacketV4, kLayerOutboundIpPacketV4},
    {LayerType::OutboundIpPacketV6, kLayerOutboundIpPacketV6},
    {LayerType::AleAuthRecvAcceptV4, kLayerAleAuthRecvAcceptV4},
    {LayerType::AleAuthRecvAcceptV6, kLayerAleAuthRecvAcceptV6},
    {LayerType::AleAuthConnectV4, kLayerAleAuthConnectV4},
    {LayerType::AleAuthConnectV6, kLayerAleAuthConnectV6},
    {LayerType::IpForwardV4, kLayerIpForwardV4},
    {LayerType::IpForwardV6, kLayerIpForwardV6},
    {LayerType::InboundTransportV4, kLayerInboundTransportV4},
    {LayerType::OutboundTransportV4, kLayerOutboundTransportV4},
    {LayerType::AleFlowEstablishedV4, kLayerAleFlowEstablishedV4},
    {LayerType::AleFlowEstablishedV6, kLayerAleFlowEstablishedV6},
    {LayerType::InboundIcmpErrorV4, kLayerInboundIcmpErrorV4},
    {LayerType::InboundIcmpErrorV6, kLayerInboundIcmpErrorV6},
    {LayerType::InboundIcmpErrorV4Discard, kLayerInboundIcmpErrorV4Discard},
    {LayerType::InboundIcmpErrorV6Discard, kLayerInboundIcmpErrorV6Discard},
    {LayerType::OutboundIcmpErrorV4, kLayerOutboundIcmpErrorV4},
    {LayerType::OutboundIcmpErrorV6, kLayerOutboundIcmpErrorV6},
    {LayerType::OutboundIcmpErrorV4Discard, kLayerOutboundIcmpErrorV4Discard},
    {LayerType::OutboundIcmpErrorV6Discard, kLayerOutboundIcmpErrorV6Discard},
    {LayerType::AleResourceAssignmentV4, kLayerAleResourceAssignmentV4},
    {LayerType::AleResourceAssignmentV6, kLayerAleResourceAssignmentV6},
    {LayerType::AleResourceAssignmentV4Discard, kLayerAleResourceAssignmentV4Discard},
    {LayerType::AleResourceAssignmentV6Discard, kLayerAleResourceAssignmentV6Discard},
    {LayerType::AleResourceReleaseV4, kLayerAleResourceReleaseV4},
    {LayerType::AleResourceReleaseV6, kLayerAleResourceReleaseV6},
    {LayerType::AleAuthListenV4, kLayerAleAuthListenV4},
    {LayerType::AleAuthListenV6, kLayerAleAuthListenV6},
    {LayerType::AleAuthListenV4Discard, kLayerAleAuthListenV4Discard},
    {LayerType::AleAuthListenV6Discard, kLayerAleAuthListenV6Discard},
};

}  // namespace

GUID MapLayerType(LayerType type) {
  if (type == LayerType::None) {
    throw FirewallException("Layer type None cant be set.");
  }
  for (const LayerPair& pair : kLayerPairs) {
    // The IPv6 forwarding layer can be read from the engine but not written.
    if (pair.type == type && type != LayerType::IpForwardV6) {
      return pair.key;
    }
  }
  throw FirewallException("Not supported Layer type.");
}

LayerType MapLayerType(GUID key) {
  for (const LayerPair& pair : kLayerPairs) {
    if (pair.key == key) {
      return pair.type;
    }
  }
  throw FirewallException("Not supported Layer type.");
}

Layer::Layer(LayerType type) : type_(type) {}

LayerType Layer::GetLayerType() const { return type_; }

GUID Layer::GetNativeLayerType() const { return MapLayerType(type_); }

Layer Layer::FromNative(GUID key) { return MapLayerType(key); }

}  // namespace WfpFirewall::Filtering
