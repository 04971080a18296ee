#pragma once

#include <WfpPlatform.h>

#include <cstdint>

#include "Export.h"

namespace WfpFirewall::Filtering {

/// The engine's filtering layers; each is FWPM_LAYER_ and the same words in the Windows SDK.
enum class LayerType : std::int32_t {
  InboundIpPacketV4 = 0,
  InboundIpPacketV6 = 1,
  OutboundIpPacketV4 = 2,
  OutboundIpPacketV6 = 3,
  AleAuthRecvAcceptV4 = 4,
  AleAuthRecvAcceptV6 = 5,
  AleAuthConnectV4 = 6,
  AleAuthConnectV6 = 7,
  IpForwardV4 = 8,
  IpForwardV6 = 9,
  InboundTransportV4 = 10,
  OutboundTransportV4 = 11,
  AleFlowEstablishedV4 = 12,
  AleFlowEstablishedV6 = 13,
  InboundIcmpErrorV4 = 14,
  InboundIcmpErrorV6 = 15,
  InboundIcmpErrorV4Discard = 16,
  InboundIcmpErrorV6Discard = 17,
  OutboundIcmpErrorV4 = 18,
  OutboundIcmpErrorV6 = 19,
  OutboundIcmpErrorV4Discard = 20,
  OutboundIcmpErrorV6Discard = 21,
  AleResourceAssignmentV4 = 22,
  AleResourceAssignmentV6 = 23,
  AleResourceAssignmentV4Discard = 24,
  AleResourceAssignmentV6Discard = 25,
  AleResourceReleaseV4 = 26,
  AleResourceReleaseV6 = 27,
  AleAuthListenV4 = 28,
  AleAuthListenV6 = 29,
  AleAuthListenV4Discard = 30,
  AleAuthListenV6Discard = 31,
  None = 32,
};

/// @throws FirewallException "Layer type None cant be set." for None; "Not supported Layer type." for
///         IpForwardV6, which can be read but not written, and for a number outside the enumeration.
WFPFIREWALL_API GUID MapLayerType(LayerType type);
/// @throws FirewallException "Not supported Layer type." for an unknown key. Never None.
WFPFIREWALL_API LayerType MapLayerType(GUID key);

/// The layer that a filter sits in.
class WFPFIREWALL_API Layer {
 public:
  Layer() = default;
  Layer(LayerType type);  // NOLINT(google-explicit-constructor): a layer is nothing but its type.

  [[nodiscard]] LayerType GetLayerType() const;
  /// The key of the layer. @throws FirewallException as MapLayerType does.
  [[nodiscard]] GUID GetNativeLayerType() const;
  /// @throws FirewallException as MapLayerType does.
  static Layer FromNative(GUID key);

 private:
  LayerType type_ = LayerType::None;
};

}  // namespace WfpFirewall::Filtering
