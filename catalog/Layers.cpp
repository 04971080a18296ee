#include "catalog/Layers.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

#include "catalog/KeyIndex.h"
#include "catalog/Keys.h"

namespace Catalog {
namespace {

template <std::size_t kCount>
consteval std::array<const Field*, kCount> FieldsNamed(const std::string_view (&names)[kCount]) {
  std::array<const Field*, kCount> fields{};
  for (std::size_t i = 0; i < kCount; ++i) {
    fields[i] = FindField(names[i]);
    if (fields[i] == nullptr) throw "no field of this name";
  }
  return fields;
}

// The fields of a layer are the same for both IP versions and for the twin that logs discarded traffic.
constexpr auto kPacketIn = FieldsNamed({"FLAGS", "INTERFACE_INDEX", "INTERFACE_TYPE", "IP_LOCAL_ADDRESS",
                                        "IP_LOCAL_ADDRESS_TYPE", "IP_LOCAL_INTERFACE", "IP_REMOTE_ADDRESS",
                                        "SUB_INTERFACE_INDEX", "TUNNEL_TYPE", "COMPARTMENT_ID"});
constexpr auto kPacketOut = FieldsNamed({"FLAGS", "INTERFACE_INDEX", "INTERFACE_TYPE", "IP_LOCAL_ADDRESS",
                                         "IP_LOCAL_ADDRESS_TYPE", "IP_LOCAL_INTERFACE", "IP_REMOTE_ADDRESS",
                                         "SUB_INTERFACE_INDEX", "TUNNEL_TYPE", "COMPARTMENT_ID"});
constexpr auto kForward = FieldsNamed(
    {"FLAGS", "DESTINATION_INTERFACE_INDEX", "DESTINATION_SUB_INTERFACE_INDEX", "IP_DESTINATION_ADDRESS",
     "IP_DESTINATION_ADDRESS_TYPE", "IP_FORWARD_INTERFACE", "IP_LOCAL_INTERFACE", "IP_SOURCE_ADDRESS",
     "SOURCE_INTERFACE_INDEX", "SOURCE_SUB_INTERFACE_INDEX", "IP_PHYSICAL_ARRIVAL_INTERFACE",
     "IP_PHYSICAL_NEXTHOP_INTERFACE", "ARRIVAL_INTERFACE_PROFILE_ID", "NEXTHOP_INTERFACE_PROFILE_ID",
     "COMPARTMENT_ID"});
constexpr auto kTransportIn =
    FieldsNamed({"FLAGS", "INTERFACE_INDEX", "INTERFACE_TYPE", "IP_LOCAL_ADDRESS", "IP_LOCAL_ADDRESS_TYPE",
                 "IP_LOCAL_INTERFACE", "IP_LOCAL_PORT", "IP_PROTOCOL", "IP_REMOTE_ADDRESS", "IP_REMOTE_PORT",
                 "SUB_INTERFACE_INDEX", "TUNNEL_TYPE", "CURRENT_PROFILE_ID", "IPSEC_SECURITY_REALM_ID",
                 "COMPARTMENT_ID"});
constexpr auto kTransportOut =
    FieldsNamed({"FLAGS", "INTERFACE_INDEX", "INTERFACE_TYPE", "IP_DESTINATION_ADDRESS_TYPE",
                 "IP_LOCAL_ADDRESS", "IP_LOCAL_ADDRESS_TYPE", "IP_LOCAL_INTERFACE", "IP_LOCAL_PORT",
                 "IP_PROTOCOL", "IP_REMOTE_ADDRESS", "IP_REMOTE_PORT", "SUB_INTERFACE_INDEX", "TUNNEL_TYPE",
                 "CURRENT_PROFILE_ID", "IPSEC_SECURITY_REALM_ID", "COMPARTMENT_ID"});
constexpr auto kIcmpIn = FieldsNamed({"ARRIVAL_INTERFACE_INDEX",
                                      "ARRIVAL_INTERFACE_TYPE",
                                      "ARRIVAL_SUB_INTERFACE_INDEX",
                                      "ARRIVAL_TUNNEL_TYPE",
                                      "FLAGS",
                                      "ICMP_CODE",
                                      "ICMP_TYPE",
                                      "EMBEDDED_LOCAL_ADDRESS_TYPE",
                                      "EMBEDDED_LOCAL_PORT",
                                      "EMBEDDED_PROTOCOL",
                                      "EMBEDDED_REMOTE_ADDRESS",
                                      "EMBEDDED_REMOTE_PORT",
                                      "IP_ARRIVAL_INTERFACE",
                                      "IP_LOCAL_ADDRESS",
                                      "IP_LOCAL_INTERFACE",
                                      "IP_REMOTE_ADDRESS",
                                      "LOCAL_INTERFACE_INDEX",
                                      "LOCAL_INTERFACE_TYPE",
                                      "LOCAL_TUNNEL_TYPE",
                                      "ARRIVAL_INTERFACE_PROFILE_ID",
                                      "INTERFACE_QUARANTINE_EPOCH",
                                      "COMPARTMENT_ID"});
constexpr auto kIcmpOut = FieldsNamed(
    {"FLAGS", "ICMP_CODE", "ICMP_TYPE", "INTERFACE_INDEX", "INTERFACE_TYPE", "IP_LOCAL_ADDRESS",
     "IP_LOCAL_ADDRESS_TYPE", "IP_LOCAL_INTERFACE", "IP_REMOTE_ADDRESS", "SUB_INTERFACE_INDEX", "TUNNEL_TYPE",
     "NEXTHOP_INTERFACE_PROFILE_ID", "INTERFACE_QUARANTINE_EPOCH", "COMPARTMENT_ID"});
constexpr auto kAssign = FieldsNamed(
    {"ALE_APP_ID", "ALE_PROMISCUOUS_MODE", "ALE_USER_ID", "FLAGS", "INTERFACE_TYPE", "IP_LOCAL_ADDRESS",
     "IP_LOCAL_ADDRESS_TYPE", "IP_LOCAL_INTERFACE", "IP_LOCAL_PORT", "IP_PROTOCOL", "TUNNEL_TYPE",
     "ALE_PACKAGE_FAMILY_NAME", "LOCAL_INTERFACE_PROFILE_ID", "ALE_SIO_FIREWALL_SYSTEM_PORT",
     "ALE_PACKAGE_ID", "ALE_SECURITY_ATTRIBUTE_FQBN_VALUE", "COMPARTMENT_ID"});
constexpr auto kRelease =
    FieldsNamed({"ALE_PACKAGE_FAMILY_NAME", "ALE_APP_ID", "ALE_USER_ID", "FLAGS", "IP_LOCAL_ADDRESS",
                 "IP_LOCAL_ADDRESS_TYPE", "IP_LOCAL_INTERFACE", "IP_LOCAL_PORT", "IP_PROTOCOL",
                 "ALE_PACKAGE_ID", "ALE_SECURITY_ATTRIBUTE_FQBN_VALUE", "COMPARTMENT_ID"});
constexpr auto kListen =
    FieldsNamed({"ALE_PACKAGE_FAMILY_NAME", "ALE_APP_ID", "ALE_USER_ID", "FLAGS", "INTERFACE_TYPE",
                 "IP_LOCAL_ADDRESS", "IP_LOCAL_ADDRESS_TYPE", "IP_LOCAL_INTERFACE", "IP_LOCAL_PORT",
                 "TUNNEL_TYPE", "LOCAL_INTERFACE_PROFILE_ID", "ALE_SIO_FIREWALL_SYSTEM_PORT",
                 "ALE_PACKAGE_ID", "ALE_SECURITY_ATTRIBUTE_FQBN_VALUE", "COMPARTMENT_ID"});
constexpr auto kAccept = FieldsNamed({"ALE_PACKAGE_FAMILY_NAME",
                                      "ALE_APP_ID",
                                      "ALE_NAP_CONTEXT",
                                      "ALE_REMOTE_MACHINE_ID",
                                      "ALE_REMOTE_USER_ID",
                                      "ALE_SIO_FIREWALL_SYSTEM_PORT",
                                      "ALE_USER_ID",
                                      "ARRIVAL_INTERFACE_INDEX",
                                      "ARRIVAL_INTERFACE_TYPE",
                                      "ARRIVAL_SUB_INTERFACE_INDEX",
                                      "ARRIVAL_TUNNEL_TYPE",
                                      "FLAGS",
                                      "IP_ARRIVAL_INTERFACE",
                                      "IP_LOCAL_ADDRESS",
                                      "IP_LOCAL_ADDRESS_TYPE",
                                      "IP_LOCAL_INTERFACE",
                                      "IP_LOCAL_PORT",
                                      "IP_PROTOCOL",
                                      "IP_REMOTE_ADDRESS",
                                      "IP_REMOTE_PORT",
                                      "LOCAL_INTERFACE_INDEX",
                                      "LOCAL_INTERFACE_TYPE",
                                      "LOCAL_TUNNEL_TYPE",
                                      "NEXTHOP_SUB_INTERFACE_INDEX",
                                      "IP_NEXTHOP_INTERFACE",
                                      "NEXTHOP_INTERFACE_TYPE",
                                      "NEXTHOP_TUNNEL_TYPE",
                                      "NEXTHOP_INTERFACE_INDEX",
                                      "ORIGINAL_PROFILE_ID",
                                      "CURRENT_PROFILE_ID",
                                      "REAUTHORIZE_REASON",
                                      "ORIGINAL_ICMP_TYPE",
                                      "INTERFACE_QUARANTINE_EPOCH",
                                      "ALE_REAUTH_REASON",
                                      "ALE_PACKAGE_ID",
                                      "ALE_SECURITY_ATTRIBUTE_FQBN_VALUE",
                                      "COMPARTMENT_ID"});
constexpr auto kConnect = FieldsNamed({"ALE_EFFECTIVE_NAME",
                                       "ALE_PACKAGE_FAMILY_NAME",
                                       "ALE_APP_ID",
                                       "ALE_REMOTE_MACHINE_ID",
                                       "ALE_REMOTE_USER_ID",
                                       "ALE_USER_ID",
                                       "FLAGS",
                                       "INTERFACE_TYPE",
                                       "IP_DESTINATION_ADDRESS_TYPE",
                                       "IP_LOCAL_ADDRESS",
                                       "IP_LOCAL_ADDRESS_TYPE",
                                       "IP_LOCAL_INTERFACE",
                                       "IP_LOCAL_PORT",
                                       "IP_PROTOCOL",
                                       "IP_REMOTE_ADDRESS",
                                       "IP_REMOTE_PORT",
                                       "SUB_INTERFACE_INDEX",
                                       "TUNNEL_TYPE",
                                       "IP_ARRIVAL_INTERFACE",
                                       "ARRIVAL_INTERFACE_TYPE",
                                       "ARRIVAL_TUNNEL_TYPE",
                                       "ARRIVAL_INTERFACE_INDEX",
                                       "INTERFACE_INDEX",
                                       "NEXTHOP_SUB_INTERFACE_INDEX",
                                       "IP_NEXTHOP_INTERFACE",
                                       "NEXTHOP_INTERFACE_TYPE",
                                       "NEXTHOP_TUNNEL_TYPE",
                                       "NEXTHOP_INTERFACE_INDEX",
                                       "ORIGINAL_PROFILE_ID",
                                       "CURRENT_PROFILE_ID",
                                       "REAUTHORIZE_REASON",
                                       "PEER_NAME",
                                       "ORIGINAL_ICMP_TYPE",
                                       "INTERFACE_QUARANTINE_EPOCH",
                                       "ALE_REAUTH_REASON",
                                       "ALE_PACKAGE_ID",
                                       "ALE_ORIGINAL_APP_ID",
                                       "ALE_SECURITY_ATTRIBUTE_FQBN_VALUE",
                                       "COMPARTMENT_ID"});
constexpr auto kFlow = FieldsNamed({"ALE_PACKAGE_FAMILY_NAME",
                                    "ALE_APP_ID",
                                    "ALE_REMOTE_MACHINE_ID",
                                    "ALE_REMOTE_USER_ID",
                                    "ALE_USER_ID",
                                    "DIRECTION",
                                    "FLAGS",
                                    "INTERFACE_TYPE",
                                    "IP_DESTINATION_ADDRESS_TYPE",
                                    "IP_LOCAL_ADDRESS",
                                    "IP_LOCAL_ADDRESS_TYPE",
                                    "IP_LOCAL_INTERFACE",
                                    "IP_LOCAL_PORT",
                                    "IP_PROTOCOL",
                                    "IP_REMOTE_ADDRESS",
                                    "IP_REMOTE_PORT",
                                    "TUNNEL_TYPE",
                                    "ALE_PACKAGE_ID",
                                    "ALE_ORIGINAL_APP_ID",
                                    "ALE_SECURITY_ATTRIBUTE_FQBN_VALUE",
                                    "COMPARTMENT_ID"});

constexpr auto kV4 = IpVersion::V4;
constexpr auto kV6 = IpVersion::V6;

constexpr auto kLayers = std::to_array<Layer>({
    {"INBOUND_IPPACKET_V4", "c86fd1bf-21cd-497e-a0bb-17425c885c58"_guid, kV4, 0, kPacketIn},
    {"INBOUND_IPPACKET_V4_DISCARD", "b5a230d0-a8c0-44f2-916e-991b53ded1f7"_guid, kV4, 1, kPacketIn},
    {"INBOUND_IPPACKET_V6", "f52032cb-991c-46e7-971d-2601459a91ca"_guid, kV6, 2, kPacketIn},
    {"INBOUND_IPPACKET_V6_DISCARD", "bb24c279-93b4-47a2-83ad-ae1698b50885"_guid, kV6, 3, kPacketIn},
    {"OUTBOUND_IPPACKET_V4", "1e5c9fae-8a84-4135-a331-950b54229ecd"_guid, kV4, 4, kPacketOut},
    {"OUTBOUND_IPPACKET_V4_DISCARD", "08e4bcb5-b647-48f3-953c-e5ddbd03937e"_guid, kV4, 5, kPacketOut},
    {"OUTBOUND_IPPACKET_V6", "a3b3ab6b-3564-488c-9117-f34e82142763"_guid, kV6, 6, kPacketOut},
    {"OUTBOUND_IPPACKET_V6_DISCARD", "9513d7c4-a934-49dc-91a7-6ccb80cc02e3"_guid, kV6, 7, kPacketOut},
    {"IPFORWARD_V4", "a82acc24-4ee1-4ee1-b465-fd1d25cb10a4"_guid, kV4, 8, kForward},
    {"IPFORWARD_V4_DISCARD", "9e9ea773-2fae-4210-8f17-34129ef369eb"_guid, kV4, 9, kForward},
    {"IPFORWARD_V6", "7b964818-19c7-493a-b71f-832c3684d28c"_guid, kV6, 10, kForward},
    {"IPFORWARD_V6_DISCARD", "31524a5d-1dfe-472f-bb93-518ee945d8a2"_guid, kV6, 11, kForward},
    {"INBOUND_TRANSPORT_V4", "5926dfc8-e3cf-4426-a283-dc393f5d0f9d"_guid, kV4, 12, kTransportIn},
    {"INBOUND_TRANSPORT_V4_DISCARD", "ac4a9833-f69d-4648-b261-6dc84835ef39"_guid, kV4, 13, kTransportIn},
    {"INBOUND_TRANSPORT_V6", "634a869f-fc23-4b90-b0c1-bf620a36ae6f"_guid, kV6, 14, kTransportIn},
    {"INBOUND_TRANSPORT_V6_DISCARD", "2a6ff955-3b2b-49d2-9848-ad9d72dcaab7"_guid, kV6, 15, kTransportIn},
    {"OUTBOUND_TRANSPORT_V4", "09e61aea-d214-46e2-9b21-b26b0b2f28c8"_guid, kV4, 16, kTransportOut},
    {"OUTBOUND_TRANSPORT_V4_DISCARD", "c5f10551-bdb0-43d7-a313-50e211f4d68a"_guid, kV4, 17, kTransportOut},
    {"OUTBOUND_TRANSPORT_V6", "e1735bde-013f-4655-b351-a49e15762df0"_guid, kV6, 18, kTransportOut},
    {"OUTBOUND_TRANSPORT_V6_DISCARD", "f433df69-ccbd-482e-b9b2-57165658c3b3"_guid, kV6, 19, kTransportOut},
    {"INBOUND_ICMP_ERROR_V4", "61499990-3cb6-4e84-b950-53b94b6964f3"_guid, kV4, 28, kIcmpIn},
    {"INBOUND_ICMP_ERROR_V4_DISCARD", "a6b17075-ebaf-4053-a4e7-213c8121ede5"_guid, kV4, 29, kIcmpIn},
    {"INBOUND_ICMP_ERROR_V6", "65f9bdff-3b2d-4e5d-b8c6-c720651fe898"_guid, kV6, 30, kIcmpIn},
    {"INBOUND_ICMP_ERROR_V6_DISCARD", "a6e7ccc0-08fb-468d-a472-9771d5595e09"_guid, kV6, 31, kIcmpIn},
    {"OUTBOUND_ICMP_ERROR_V4", "41390100-564c-4b32-bc1d-718048354d7c"_guid, kV4, 32, kIcmpOut},
    {"OUTBOUND_ICMP_ERROR_V4_DISCARD", "b3598d36-0561-4588-a6bf-e955e3f6264b"_guid, kV4, 33, kIcmpOut},
    {"OUTBOUND_ICMP_ERROR_V6", "7fb03b60-7b8d-4dfa-badd-980176fc4e12"_guid, kV6, 34, kIcmpOut},
    {"OUTBOUND_ICMP_ERROR_V6_DISCARD", "65f2e647-8d0c-4f47-b19b-33a4d3f1357c"_guid, kV6, 35, kIcmpOut},
    {"ALE_RESOURCE_ASSIGNMENT_V4", kAleResourceAssignmentV4LayerKey, kV4, 36, kAssign},
    {"ALE_RESOURCE_ASSIGNMENT_V4_DISCARD", "0b5812a2-c3ff-4eca-b88d-c79e20ac6322"_guid, kV4, 37, kAssign},
    {"ALE_RESOURCE_ASSIGNMENT_V6", kAleResourceAssignmentV6LayerKey, kV6, 38, kAssign},
    {"ALE_RESOURCE_ASSIGNMENT_V6_DISCARD", "cbc998bb-c51f-4c1a-bb4f-9775fcacab2f"_guid, kV6, 39, kAssign},
    {"ALE_RESOURCE_RELEASE_V4", "74365cce-ccb0-401a-bfc1-b89934ad7e15"_guid, kV4, std::nullopt, kRelease},
    {"ALE_RESOURCE_RELEASE_V6", "f4e5ce80-edcc-4e13-8a2f-b91454bb057b"_guid, kV6, std::nullopt, kRelease},
    {"ALE_AUTH_LISTEN_V4", kAleAuthListenV4LayerKey, kV4, 40, kListen},
    {"ALE_AUTH_LISTEN_V4_DISCARD", "371dfada-9f26-45fd-b4eb-c29eb212893f"_guid, kV4, 41, kListen},
    {"ALE_AUTH_LISTEN_V6", kAleAuthListenV6LayerKey, kV6, 42, kListen},
    {"ALE_AUTH_LISTEN_V6_DISCARD", "60703b07-63c8-48e9-ada3-12b1af40a617"_guid, kV6, 43, kListen},
    {"ALE_AUTH_RECV_ACCEPT_V4", kAleAuthRecvAcceptV4LayerKey, kV4, 44, kAccept},
    {"ALE_AUTH_RECV_ACCEPT_V4_DISCARD", "9eeaa99b-bd22-4227-919f-0073c63357b1"_guid, kV4, 45, kAccept},
    {"ALE_AUTH_RECV_ACCEPT_V6", kAleAuthRecvAcceptV6LayerKey, kV6, 46, kAccept},
    {"ALE_AUTH_RECV_ACCEPT_V6_DISCARD", "89455b97-dbe1-453f-a224-13da895af396"_guid, kV6, 47, kAccept},
    {"ALE_AUTH_CONNECT_V4", kAleAuthConnectV4LayerKey, kV4, 48, kConnect},
    {"ALE_AUTH_CONNECT_V4_DISCARD", "d632a801-f5ba-4ad6-96e3-607017d9836a"_guid, kV4, 49, kConnect},
    {"ALE_AUTH_CONNECT_V6", kAleAuthConnectV6LayerKey, kV6, 50, kConnect},
    {"ALE_AUTH_CONNECT_V6_DISCARD", "c97bc3b8-c9a3-4e33-8695-8e17aad4de09"_guid, kV6, 51, kConnect},
    {"ALE_FLOW_ESTABLISHED_V4", kAleFlowEstablishedV4LayerKey, kV4, 52, kFlow},
    {"ALE_FLOW_ESTABLISHED_V4_DISCARD", kAleFlowEstablishedV4DiscardLayerKey, kV4, 53, kFlow},
    {"ALE_FLOW_ESTABLISHED_V6", kAleFlowEstablishedV6LayerKey, kV6, 54, kFlow},
    {"ALE_FLOW_ESTABLISHED_V6_DISCARD", kAleFlowEstablishedV6DiscardLayerKey, kV6, 55, kFlow},
});

}  // namespace

std::span<const Layer> AllLayers() { return kLayers; }

const Layer* FindLayer(const GUID& key) {
  static constexpr KeyIndex kIndex(kLayers);
  return kIndex.Find(key);
}

const Layer* FindLayer(UINT16 runtimeId) {
  const auto layer = std::ranges::find(kLayers, std::optional(runtimeId), &Layer::runtimeId);
  return layer == kLayers.end() ? nullptr : &*layer;
}

bool IsFlowEstablished(const GUID& layerKey) {
  constexpr GUID kFlowEstablished[]{kAleFlowEstablishedV4LayerKey, kAleFlowEstablishedV4DiscardLayerKey,
                                    kAleFlowEstablishedV6LayerKey, kAleFlowEstablishedV6DiscardLayerKey};
  return std::ranges::find(kFlowEstablished, layerKey) != std::end(kFlowEstablished);
}

bool HasField(const Layer& layer, const Field& field) {
  return std::ranges::find(layer.fields, field.key, &Field::key) != layer.fields.end();
}

ConditionTypes TypesAt(const Layer& layer, const Field& field) {
  if (field.kind != FieldKind::IpAddress) return {field.type, field.alternativeType};
  if (layer.ipVersion == IpVersion::V4) return {FWP_UINT32, FWP_V4_ADDR_MASK};
  return {FWP_BYTE_ARRAY16_TYPE, FWP_V6_ADDR_MASK};
}

}  // namespace Catalog
