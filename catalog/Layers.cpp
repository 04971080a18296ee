#include "catalog/Layers.h"

#include <algorithm>
#include <array>
#include <vector>

#include "catalog/Flags.h"
#include "catalog/KeyIndex.h"
#include "catalog/Keys.h"
#include "catalog/LayerFields.h"

namespace Catalog {
namespace {

/// What is the same in all versions of Windows.
struct LayerRow {
  UINT16 id;
  std::string_view name;
  GUID key;
  std::string_view displayName;
  std::optional<IpVersion> ipVersion;
  UINT32 flags;
  const FieldLists& lists;
  bool hasSymbol = true;
};

constexpr auto kV4 = IpVersion::V4;
constexpr auto kV6 = IpVersion::V6;
constexpr std::nullopt_t kNoIp = std::nullopt;
constexpr UINT32 kUser = kBuiltInLayerFlag;
constexpr UINT32 kUserMostly = kUser | kClassifyMostlyLayerFlag;
constexpr UINT32 kKernel = kUserMostly | kKernelLayerFlag;
constexpr UINT32 kKernelBuffered = kKernel | kBufferedLayerFlag;

constexpr auto kRows = std::to_array<LayerRow>({
    {0, "INBOUND_IPPACKET_V4", "c86fd1bf-21cd-497e-a0bb-17425c885c58"_guid, "Inbound IP Packet v4 Layer", kV4,
     kKernel, kInboundIpPacket},
    {1, "INBOUND_IPPACKET_V4_DISCARD", "b5a230d0-a8c0-44f2-916e-991b53ded1f7"_guid,
     "Inbound IP Packet v4 Discard Layer", kV4, kKernel, kInboundIpPacket},
    {2, "INBOUND_IPPACKET_V6", "f52032cb-991c-46e7-971d-2601459a91ca"_guid, "Inbound IP Packet v6 Layer", kV6,
     kKernel, kInboundIpPacket},
    {3, "INBOUND_IPPACKET_V6_DISCARD", "bb24c279-93b4-47a2-83ad-ae1698b50885"_guid,
     "Inbound IP Packet v6 Discard Layer", kV6, kKernel, kInboundIpPacket},
    {4, "OUTBOUND_IPPACKET_V4", "1e5c9fae-8a84-4135-a331-950b54229ecd"_guid, "Outbound IP Packet v4 Layer",
     kV4, kKernel, kOutboundIpPacket},
    {5, "OUTBOUND_IPPACKET_V4_DISCARD", "08e4bcb5-b647-48f3-953c-e5ddbd03937e"_guid,
     "Outbound IP Packet v4 Discard Layer", kV4, kKernel, kOutboundIpPacket},
    {6, "OUTBOUND_IPPACKET_V6", "a3b3ab6b-3564-488c-9117-f34e82142763"_guid, "Outbound IP Packet v6 Layer",
     kV6, kKernel, kOutboundIpPacket},
    {7, "OUTBOUND_IPPACKET_V6_DISCARD", "9513d7c4-a934-49dc-91a7-6ccb80cc02e3"_guid,
     "Outbound IP Packet v6 Discard Layer", kV6, kKernel, kOutboundIpPacket},
    {8, "IPFORWARD_V4", "a82acc24-4ee1-4ee1-b465-fd1d25cb10a4"_guid, "IP Forward v4 Layer", kV4, kKernel,
     kIpForward},
    {9, "IPFORWARD_V4_DISCARD", "9e9ea773-2fae-4210-8f17-34129ef369eb"_guid, "IP Forward v4 Discard Layer",
     kV4, kKernel, kIpForward},
    {10, "IPFORWARD_V6", "7b964818-19c7-493a-b71f-832c3684d28c"_guid, "IP Forward v6 Layer", kV6, kKernel,
     kIpForward},
    {11, "IPFORWARD_V6_DISCARD", "31524a5d-1dfe-472f-bb93-518ee945d8a2"_guid, "IP Forward v6 Discard Layer",
     kV6, kKernel, kIpForward},
    {12, "INBOUND_TRANSPORT_V4", "5926dfc8-e3cf-4426-a283-dc393f5d0f9d"_guid, "Inbound Transport v4 Layer",
     kV4, kKernel, kInboundTransport},
    {13, "INBOUND_TRANSPORT_V4_DISCARD", "ac4a9833-f69d-4648-b261-6dc84835ef39"_guid,
     "Inbound Transport v4 Discard Layer", kV4, kKernel, kInboundTransport},
    {14, "INBOUND_TRANSPORT_V6", "634a869f-fc23-4b90-b0c1-bf620a36ae6f"_guid, "Inbound Transport v6 Layer",
     kV6, kKernel, kInboundTransport},
    {15, "INBOUND_TRANSPORT_V6_DISCARD", "2a6ff955-3b2b-49d2-9848-ad9d72dcaab7"_guid,
     "Inbound Transport v6 Discard Layer", kV6, kKernel, kInboundTransport},
    {16, "OUTBOUND_TRANSPORT_V4", "09e61aea-d214-46e2-9b21-b26b0b2f28c8"_guid, "Outbound Transport v4 Layer",
     kV4, kKernel, kOutboundTransport},
    {17, "OUTBOUND_TRANSPORT_V4_DISCARD", "c5f10551-bdb0-43d7-a313-50e211f4d68a"_guid,
     "Outbound Transport v4 Discard Layer", kV4, kKernel, kOutboundTransport},
    {18, "OUTBOUND_TRANSPORT_V6", "e1735bde-013f-4655-b351-a49e15762df0"_guid, "Outbound Transport v6 Layer",
     kV6, kKernel, kOutboundTransport},
    {19, "OUTBOUND_TRANSPORT_V6_DISCARD", "f433df69-ccbd-482e-b9b2-57165658c3b3"_guid,
     "Outbound Transport v6 Discard Layer", kV6, kKernel, kOutboundTransport},
    {20, "STREAM_V4", "3b89653c-c170-49e4-b1cd-e0eeeee19a3e"_guid, "Stream v4 Layer", kV4, kKernelBuffered,
     kStream},
    {21, "STREAM_V4_DISCARD", "25c4c2c2-25ff-4352-82f9-c54a4a4726dc"_guid, "Stream v4 Discard Layer", kV4,
     kKernelBuffered, kStream},
    {22, "STREAM_V6", "47c9137a-7ec4-46b3-b6e4-48e926b1eda4"_guid, "Stream v6 Layer", kV6, kKernelBuffered,
     kStream},
    {23, "STREAM_V6_DISCARD", "10a59fc7-b628-4c41-9eb8-cf37d55103cf"_guid, "Stream v6 Discard Layer", kV6,
     kKernelBuffered, kStream},
    {24, "DATAGRAM_DATA_V4", "3d08bf4e-45f6-4930-a922-417098e20027"_guid, "Datagram Data v4 Layer", kV4,
     kKernel, kDatagramData},
    {25, "DATAGRAM_DATA_V4_DISCARD", "18e330c6-7248-4e52-aaab-472ed67704fd"_guid,
     "Datagram Data v4 Discard Layer", kV4, kKernel, kDatagramData},
    {26, "DATAGRAM_DATA_V6", "fa45fe2f-3cba-4427-87fc-57b9a4b10d00"_guid, "Datagram Data v6 Layer", kV6,
     kKernel, kDatagramData},
    {27, "DATAGRAM_DATA_V6_DISCARD", "09d1dfe1-9b86-4a42-be9d-8c315b92a5d0"_guid,
     "Datagram Data v6 Discard Layer", kV6, kKernel, kDatagramData},
    {28, "INBOUND_ICMP_ERROR_V4", "61499990-3cb6-4e84-b950-53b94b6964f3"_guid, "Inbound ICMP Error v4 Layer",
     kV4, kKernel, kInboundIcmpError},
    {29, "INBOUND_ICMP_ERROR_V4_DISCARD", "a6b17075-ebaf-4053-a4e7-213c8121ede5"_guid,
     "Inbound ICMP Error v4 Discard Layer", kV4, kKernel, kInboundIcmpError},
    {30, "INBOUND_ICMP_ERROR_V6", "65f9bdff-3b2d-4e5d-b8c6-c720651fe898"_guid, "Inbound ICMP Error v6 Layer",
     kV6, kKernel, kInboundIcmpError},
    {31, "INBOUND_ICMP_ERROR_V6_DISCARD", "a6e7ccc0-08fb-468d-a472-9771d5595e09"_guid,
     "Inbound ICMP Error v6 Discard Layer", kV6, kKernel, kInboundIcmpError},
    {32, "OUTBOUND_ICMP_ERROR_V4", "41390100-564c-4b32-bc1d-718048354d7c"_guid,
     "Outbound ICMP Error v4 Layer", kV4, kKernel, kOutboundIcmpError},
    {33, "OUTBOUND_ICMP_ERROR_V4_DISCARD", "b3598d36-0561-4588-a6bf-e955e3f6264b"_guid,
     "Outbound ICMP Error v4 Discard Layer", kV4, kKernel, kOutboundIcmpError},
    {34, "OUTBOUND_ICMP_ERROR_V6", "7fb03b60-7b8d-4dfa-badd-980176fc4e12"_guid,
     "Outbound ICMP Error v6 Layer", kV6, kKernel, kOutboundIcmpError},
    {35, "OUTBOUND_ICMP_ERROR_V6_DISCARD", "65f2e647-8d0c-4f47-b19b-33a4d3f1357c"_guid,
     "Outbound ICMP Error v6 Discard Layer", kV6, kKernel, kOutboundIcmpError},
    {36, "ALE_RESOURCE_ASSIGNMENT_V4", kAleResourceAssignmentV4LayerKey, "ALE Resource Assignment v4 Layer",
     kV4, kKernel, kResourceAssignment},
    {37, "ALE_RESOURCE_ASSIGNMENT_V4_DISCARD", "0b5812a2-c3ff-4eca-b88d-c79e20ac6322"_guid,
     "ALE Resource Assignment v4 Discard Layer", kV4, kKernel, kResourceAssignment},
    {38, "ALE_RESOURCE_ASSIGNMENT_V6", kAleResourceAssignmentV6LayerKey, "ALE Resource Assignment v6 Layer",
     kV6, kKernel, kResourceAssignment},
    {39, "ALE_RESOURCE_ASSIGNMENT_V6_DISCARD", "cbc998bb-c51f-4c1a-bb4f-9775fcacab2f"_guid,
     "ALE Resource Assignment v6 Discard Layer", kV6, kKernel, kResourceAssignment},
    {40, "ALE_AUTH_LISTEN_V4", kAleAuthListenV4LayerKey, "ALE Listen v4 Layer", kV4, kKernel, kAuthListen},
    {41, "ALE_AUTH_LISTEN_V4_DISCARD", "371dfada-9f26-45fd-b4eb-c29eb212893f"_guid,
     "ALE Listen v4 Discard Layer", kV4, kKernel, kAuthListen},
    {42, "ALE_AUTH_LISTEN_V6", kAleAuthListenV6LayerKey, "ALE Listen v6 Layer", kV6, kKernel, kAuthListen},
    {43, "ALE_AUTH_LISTEN_V6_DISCARD", "60703b07-63c8-48e9-ada3-12b1af40a617"_guid,
     "ALE Listen v6 Discard Layer", kV6, kKernel, kAuthListen},
    {44, "ALE_AUTH_RECV_ACCEPT_V4", kAleAuthRecvAcceptV4LayerKey, "ALE Receive/Accept v4 Layer", kV4, kKernel,
     kAuthRecvAccept},
    {45, "ALE_AUTH_RECV_ACCEPT_V4_DISCARD", "9eeaa99b-bd22-4227-919f-0073c63357b1"_guid,
     "ALE Receive/Accept v4 Discard Layer", kV4, kKernel, kAuthRecvAccept},
    {46, "ALE_AUTH_RECV_ACCEPT_V6", kAleAuthRecvAcceptV6LayerKey, "ALE Receive/Accept v6 Layer", kV6, kKernel,
     kAuthRecvAccept},
    {47, "ALE_AUTH_RECV_ACCEPT_V6_DISCARD", "89455b97-dbe1-453f-a224-13da895af396"_guid,
     "ALE Receive/Accept v6 Discard Layer", kV6, kKernel, kAuthRecvAcceptV6Discard},
    {48, "ALE_AUTH_CONNECT_V4", kAleAuthConnectV4LayerKey, "ALE Connect v4 Layer", kV4, kKernel,
     kAuthConnect},
    {49, "ALE_AUTH_CONNECT_V4_DISCARD", "d632a801-f5ba-4ad6-96e3-607017d9836a"_guid,
     "ALE Connect v4 Discard Layer", kV4, kKernel, kAuthConnect},
    {50, "ALE_AUTH_CONNECT_V6", kAleAuthConnectV6LayerKey, "ALE Connect v6 Layer", kV6, kKernel,
     kAuthConnect},
    {51, "ALE_AUTH_CONNECT_V6_DISCARD", "c97bc3b8-c9a3-4e33-8695-8e17aad4de09"_guid,
     "ALE Connect v6 Discard Layer", kV6, kKernel, kAuthConnect},
    {52, "ALE_FLOW_ESTABLISHED_V4", kAleFlowEstablishedV4LayerKey, "ALE Flow Established v4 Layer", kV4,
     kKernel, kFlowEstablished},
    {53, "ALE_FLOW_ESTABLISHED_V4_DISCARD", "146ae4a9-a1d2-4d43-a31a-4c42682b8e4f"_guid,
     "ALE Flow Established v4 Discard Layer", kV4, kKernel, kFlowEstablished},
    {54, "ALE_FLOW_ESTABLISHED_V6", kAleFlowEstablishedV6LayerKey, "ALE Flow Established v6 Layer", kV6,
     kKernel, kFlowEstablished},
    {55, "ALE_FLOW_ESTABLISHED_V6_DISCARD", "46928636-bbca-4b76-941d-0fa7f5d7d372"_guid,
     "ALE Flow Established v6 Discard Layer", kV6, kKernel, kFlowEstablished},
    {56, "INBOUND_MAC_FRAME_ETHERNET", "effb7edb-0055-4f9a-a231-4ff8131ad191"_guid, "Inbound Ethernet Layer",
     kNoIp, kKernel, kMacFrameEthernet},
    {57, "OUTBOUND_MAC_FRAME_ETHERNET", "694673bc-d6db-4870-adee-0acdbdb7f4b2"_guid,
     "Outbound Ethernet Layer", kNoIp, kKernel, kMacFrameEthernet},
    {58, "INBOUND_MAC_FRAME_NATIVE", "d4220bd3-62ce-4f08-ae88-b56e8526df50"_guid, "Inbound Native MAC Layer",
     kNoIp, kKernel, kMacFrameNative},
    {59, "OUTBOUND_MAC_FRAME_NATIVE", "94c44912-9d6f-4ebf-b995-05ab8a088d1b"_guid,
     "Outbound Native MAC Layer", kNoIp, kKernel, kMacFrameNative},
    {60, "NAME_RESOLUTION_CACHE_V4", "0c2aa681-905b-4ccd-a467-4dd811d07b7b"_guid,
     "Name Resolution Cache v4 Layer", kV4, kKernel, kNameResolutionCache},
    {61, "NAME_RESOLUTION_CACHE_V6", "92d592fa-6b01-434a-9dea-d1e96ea97da9"_guid,
     "Name Resolution Cache v6 Layer", kV6, kKernel, kNameResolutionCache},
    {62, "ALE_RESOURCE_RELEASE_V4", "74365cce-ccb0-401a-bfc1-b89934ad7e15"_guid,
     "ALE Resource Release v4 Layer", kV4, kKernel, kResourceRelease},
    {63, "ALE_RESOURCE_RELEASE_V6", "f4e5ce80-edcc-4e13-8a2f-b91454bb057b"_guid,
     "ALE Resource Release v6 Layer", kV6, kKernel, kResourceRelease},
    {64, "ALE_ENDPOINT_CLOSURE_V4", "b4766427-e2a2-467a-bd7e-dbcd1bd85a09"_guid,
     "ALE Endpoint Closure v4 Layer", kV4, kKernel, kEndpointClosure},
    {65, "ALE_ENDPOINT_CLOSURE_V6", "bb536ccd-4755-4ba9-9ff7-f9edf8699c7b"_guid,
     "ALE Endpoint Closure v6 Layer", kV6, kKernel, kEndpointClosure},
    {66, "ALE_CONNECT_REDIRECT_V4", "c6e63c8c-b784-4562-aa7d-0a67cfcaf9a3"_guid,
     "ALE Connect Redirect v4 Layer", kV4, kKernel, kConnectRedirect},
    {67, "ALE_CONNECT_REDIRECT_V6", "587e54a7-8046-42ba-a0aa-b716250fc7fd"_guid,
     "ALE Connect Redirect v6 Layer", kV6, kKernel, kConnectRedirect},
    {68, "ALE_BIND_REDIRECT_V4", "66978cad-c704-42ac-86ac-7c1a231bd253"_guid, "ALE Bind Redirect v4 Layer",
     kV4, kKernel, kBindRedirect},
    {69, "ALE_BIND_REDIRECT_V6", "bef02c9c-606b-4536-8c26-1c2fc7b631d4"_guid, "ALE Bind Redirect v6 Layer",
     kV6, kKernel, kBindRedirect},
    {70, "STREAM_PACKET_V4", "af52d8ec-cb2d-44e5-ad92-f8dc38d2eb29"_guid, "Stream Packet v4 Layer", kV4,
     kKernel, kStreamPacket},
    {71, "STREAM_PACKET_V6", "779a8ca3-f099-468f-b5d4-83535c461c02"_guid, "Stream Packet v6 Layer", kV6,
     kKernel, kStreamPacket},
    {72, "INGRESS_VSWITCH_ETHERNET", "7d98577a-9a87-41ec-9718-7cf589c9f32d"_guid,
     "Ingress vSwitch Ethernet layer", kNoIp, kKernel, kIngressVswitchEthernet},
    {73, "EGRESS_VSWITCH_ETHERNET", "86c872b0-76fa-4b79-93a4-0750530ae292"_guid,
     "Egress vSwitch Ethernet layer", kNoIp, kKernel, kEgressVswitchEthernet},
    {74, "INGRESS_VSWITCH_TRANSPORT_V4", "b2696ff6-774f-4554-9f7d-3da3945f8e85"_guid,
     "Ingress vSwitch Transport v4 layer", kV4, kKernel, kIngressVswitchTransport},
    {75, "INGRESS_VSWITCH_TRANSPORT_V6", "5ee314fc-7d8a-47f4-b7e3-291a36da4e12"_guid,
     "Ingress vSwitch Transport v6 layer", kV6, kKernel, kIngressVswitchTransport},
    {76, "EGRESS_VSWITCH_TRANSPORT_V4", "b92350b6-91f0-46b6-bdc4-871dfd4a7c98"_guid,
     "Egress vSwitch Transport v4 layer", kV4, kKernel, kEgressVswitchTransport},
    {77, "EGRESS_VSWITCH_TRANSPORT_V6", "1b2def23-1881-40bd-82f4-4254e63141cb"_guid,
     "Egress vSwitch Transport v6 layer", kV6, kKernel, kEgressVswitchTransport},
    {78, "INBOUND_TRANSPORT_FAST", "e41d2719-05c7-40f0-8983-ea8d17bbc2f6"_guid,
     "Inbound Transport v4 Layer fast", kNoIp, kKernel, kFast},
    {79, "OUTBOUND_TRANSPORT_FAST", "13ed4388-a070-4815-9935-7a9be6408b78"_guid,
     "Outbound Transport v4 Layer fast", kNoIp, kKernel, kFast},
    {80, "INBOUND_MAC_FRAME_NATIVE_FAST", "853aaa8e-2b78-4d24-a804-36db08b29711"_guid,
     "Inbound Native MAC Layer fast", kNoIp, kKernel, kFast},
    {81, "OUTBOUND_MAC_FRAME_NATIVE_FAST", "470df946-c962-486f-9446-8293cbc75eb8"_guid,
     "Outbound Native MAC Layer fast", kNoIp, kKernel, kFast},
    {82, "INBOUND_RESERVED2", "f4fb8d55-c076-46d8-a2c7-6a4c722ca4ed"_guid, "Inbound HTTP Reserved Layer",
     kNoIp, kKernel, kReserved2},
    {83, "ALE_ACCEPT_REDIRECT_V4", "29243af8-ecaf-4436-a44e-f9fb7070aa04"_guid,
     "ALE Accept Redirect v4 Layer", kV4, kKernel, kAcceptRedirect, false},
    {84, "ALE_ACCEPT_REDIRECT_V6", "c9809347-218f-4b7f-a742-b281a3f631b4"_guid,
     "ALE Accept Redirect v6 Layer", kV6, kKernel, kAcceptRedirect, false},
    {85, "OUTBOUND_NETWORK_CONNECTION_POLICY_V4", "037f317a-d696-494a-bba5-bffc265e6052"_guid,
     "Outbound Network Connection Policy V4 Layer", kV4, kKernel, kNetworkConnectionPolicy},
    {86, "OUTBOUND_NETWORK_CONNECTION_POLICY_V6", "22a4fdb1-6d7e-48ae-ae77-3742525c3119"_guid,
     "Outbound Network Connection Policy V6 Layer", kV6, kKernel, kNetworkConnectionPolicy},
    {87, "IPSEC_KM_DEMUX_V4", "f02b1526-a459-4a51-b9e3-759de52b9d2c"_guid, "IPsec KM Demux v4 Layer", kV4,
     kUser, kIpsecKmDemux},
    {88, "IPSEC_KM_DEMUX_V6", "2f755cf6-2fd4-4e88-b3e4-a91bca495235"_guid, "IPsec KM Demux v6 Layer", kV6,
     kUser, kIpsecKmDemux},
    {89, "IPSEC_V4", "eda65c74-610d-4bc5-948f-3c4f89556867"_guid, "IPsec v4 Layer", kV4, kUser, kIpsec},
    {90, "IPSEC_V6", "13c48442-8d87-4261-9a29-59d2abc348b4"_guid, "IPsec v6 Layer", kV6, kUser, kIpsec},
    {91, "IKEEXT_V4", "b14b7bdb-dbbd-473e-bed4-8b4708d4f270"_guid, "IKE v4 Layer", kV4, kUserMostly, kIkeext},
    {92, "IKEEXT_V6", "b64786b3-f687-4eb9-89d2-8ef32acdabe2"_guid, "IKE v6 Layer", kV6, kUserMostly, kIkeext},
    {93, "RPC_UM", "75a89dda-95e4-40f3-adc7-7688a9c847e1"_guid, "RPC UM Layer", kNoIp, kUserMostly, kRpcUm},
    {94, "RPC_EPMAP", "9247bc61-eb07-47ee-872c-bfd78bfd1616"_guid, "RPC EPMAP Layer", kNoIp, kUserMostly,
     kRpcEpmap},
    {95, "RPC_EP_ADD", "618dffc7-c450-4943-95db-99b4c16a55d4"_guid, "RPC EP ADD Layer", kNoIp, kUser,
     kRpcEpAdd},
    {96, "RPC_PROXY_CONN", "94a4b50b-ba5c-4f27-907a-229fac0c2a7a"_guid, "RPC Proxy Connect Layer", kNoIp,
     kUserMostly, kRpcProxyConn},
    {97, "RPC_PROXY_IF", "f8a38615-e12c-41ac-98df-121ad981aade"_guid, "RPC Proxy Interface Layer", kNoIp,
     kUserMostly, kRpcProxyIf},
    {98, "KM_AUTHORIZATION", "4aa226e9-9020-45fb-956a-c0249d841195"_guid, "Keying Module Authorization Layer",
     kNoIp, kUserMostly, kKmAuthorization},
});

constexpr bool IdsAreThePlaces() {
  for (std::size_t i = 0; i < kRows.size(); ++i) {
    if (kRows[i].id != i) {
      return false;
    }
  }
  return true;
}
static_assert(IdsAreThePlaces());

/// A field that holds something else at some layers than elsewhere.
struct OtherType {
  LayerFamily family;
  std::optional<IpVersion> ipVersion;  ///< none: any
  const Field* field;
  FWPM_FIELD_TYPE type;
  FWP_DATA_TYPE dataType;
};
constexpr OtherType kOtherTypes[]{
    {LayerFamily::NameResolutionCache, {}, FindField("ALE_USER_ID"), FWPM_FIELD_RAW_DATA, FWP_SID},
    {LayerFamily::AleResourceAssignment, kV4, FindField("RESERVED0"), FWPM_FIELD_RAW_DATA, FWP_UINT8},
    {LayerFamily::AleResourceAssignment, kV4, FindField("RESERVED1"), FWPM_FIELD_RAW_DATA, FWP_UINT8},
    {LayerFamily::Reserved, {}, FindField("RESERVED0"), FWPM_FIELD_RAW_DATA, FWP_UINT8},
    {LayerFamily::Reserved, {}, FindField("RESERVED1"), FWPM_FIELD_IP_ADDRESS, FWP_UINT32},
    {LayerFamily::Reserved, {}, FindField("RESERVED2"), FWPM_FIELD_IP_ADDRESS, FWP_BYTE_ARRAY16_TYPE},
    {LayerFamily::Reserved, {}, FindField("RESERVED3"), FWPM_FIELD_RAW_DATA, FWP_UINT16},
};

/// The IP version whose addresses a layer holds.
std::optional<IpVersion> AddressesOf(const LayerRow& row, WindowsVersion version) {
  // A slip in the engine, which 24H2 mends.
  const bool isMistaken =
      row.lists.family == LayerFamily::NetworkConnectionPolicy && version != WindowsVersion::Windows24H2;
  return isMistaken ? kV4 : row.ipVersion;
}

LayerField MakeField(const LayerRow& row, WindowsVersion version, const Field& field) {
  const auto isMeant = [&](const OtherType& other) {
    return other.family == row.lists.family && other.field == &field &&
           (!other.ipVersion || other.ipVersion == row.ipVersion);
  };
  if (const auto* other = std::ranges::find_if(kOtherTypes, isMeant); other != std::end(kOtherTypes)) {
    return {&field, other->type, other->dataType};
  }
  if (field.dataType != FWP_EMPTY) {
    return {&field, field.type, field.dataType};
  }
  return {&field, field.type, AddressesOf(row, version) == kV6 ? FWP_BYTE_ARRAY16_TYPE : FWP_UINT32};
}

std::vector<LayerField> MakeFields(const LayerRow& row, WindowsVersion version) {
  std::vector<LayerField> fields;
  const auto add = [&](const FieldList& list) {
    for (std::size_t i = 0; i < list.Count(); ++i) {
      fields.push_back(MakeField(row, version, list[i]));
    }
  };
  add(row.lists.common);
  if (version == WindowsVersion::Windows10) {
    add(row.lists.windows10);
  } else if (version == WindowsVersion::Windows24H2) {
    add(row.lists.windows24H2);
  }
  return fields;
}

/// The layers of one version, with their fields.
class LayerTable {
 public:
  explicit LayerTable(WindowsVersion version) {
    fields_.reserve(kRows.size());
    for (const LayerRow& row : kRows) {
      const auto& fields = fields_.emplace_back(MakeFields(row, version));
      layers_.push_back({row.name, row.hasSymbol, row.key, row.id, row.displayName, row.flags,
                         row.lists.family, row.ipVersion, fields, kUniversalSublayerKey});
    }
  }

  [[nodiscard]] std::span<const Layer> Layers() const { return layers_; }

 private:
  std::vector<std::vector<LayerField>> fields_;
  std::vector<Layer> layers_;
};

}  // namespace

std::span<const Layer> AllLayers(WindowsVersion version) {
  static const std::array kTables{LayerTable(WindowsVersion::Windows10),
                                  LayerTable(WindowsVersion::Windows11),
                                  LayerTable(WindowsVersion::Windows24H2)};
  return kTables[static_cast<std::size_t>(version)].Layers();
}

const Layer* FindLayer(const GUID& key, WindowsVersion version) {
  static constexpr KeyIndex kIndex(kRows);
  const LayerRow* row = kIndex.Find(key);
  return row == nullptr ? nullptr : FindLayer(row->id, version);
}

const Layer* FindLayer(UINT16 id, WindowsVersion version) {
  return id < kRows.size() ? &AllLayers(version)[id] : nullptr;
}

const Layer* FindLayer(std::string_view name, WindowsVersion version) {
  const auto row = std::ranges::find(kRows, name, &LayerRow::name);
  return row == kRows.end() ? nullptr : FindLayer(row->id, version);
}

bool IsFlowEstablished(const GUID& layerKey) {
  const Layer* layer = FindLayer(layerKey);
  return layer != nullptr && layer->family == LayerFamily::AleFlowEstablished;
}

const LayerField* FieldAt(const Layer& layer, const Field& field) {
  const auto found = std::ranges::find(layer.fields, &field, &LayerField::field);
  return found == layer.fields.end() ? nullptr : &*found;
}

ConditionTypes TypesOf(const LayerField& field) {
  switch (field.dataType) {
    case FWP_TOKEN_INFORMATION_TYPE:
    case FWP_TOKEN_ACCESS_INFORMATION_TYPE:
      return {FWP_SECURITY_DESCRIPTOR_TYPE, std::nullopt};
    case FWP_UINT32:
      return {field.dataType,
              field.type == FWPM_FIELD_IP_ADDRESS ? std::optional(FWP_V4_ADDR_MASK) : std::nullopt};
    case FWP_BYTE_ARRAY16_TYPE:
      return {field.dataType,
              field.type == FWPM_FIELD_IP_ADDRESS ? std::optional(FWP_V6_ADDR_MASK) : std::nullopt};
    default:
      return {field.dataType, std::nullopt};
  }
}

}  // namespace Catalog
