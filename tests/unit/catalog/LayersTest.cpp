#include "catalog/Layers.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "catalog/Keys.h"
#include "catalog/Names.h"

namespace Catalog {
namespace {

/// Id, name, key, flags, display name.
constexpr const char* kAllLayers =
    R"(0 INBOUND_IPPACKET_V4 c86fd1bf-21cd-497e-a0bb-17425c885c58 7 Inbound IP Packet v4 Layer
1 INBOUND_IPPACKET_V4_DISCARD b5a230d0-a8c0-44f2-916e-991b53ded1f7 7 Inbound IP Packet v4 Discard Layer
2 INBOUND_IPPACKET_V6 f52032cb-991c-46e7-971d-2601459a91ca 7 Inbound IP Packet v6 Layer
3 INBOUND_IPPACKET_V6_DISCARD bb24c279-93b4-47a2-83ad-ae1698b50885 7 Inbound IP Packet v6 Discard Layer
4 OUTBOUND_IPPACKET_V4 1e5c9fae-8a84-4135-a331-950b54229ecd 7 Outbound IP Packet v4 Layer
5 OUTBOUND_IPPACKET_V4_DISCARD 08e4bcb5-b647-48f3-953c-e5ddbd03937e 7 Outbound IP Packet v4 Discard Layer
6 OUTBOUND_IPPACKET_V6 a3b3ab6b-3564-488c-9117-f34e82142763 7 Outbound IP Packet v6 Layer
7 OUTBOUND_IPPACKET_V6_DISCARD 9513d7c4-a934-49dc-91a7-6ccb80cc02e3 7 Outbound IP Packet v6 Discard Layer
8 IPFORWARD_V4 a82acc24-4ee1-4ee1-b465-fd1d25cb10a4 7 IP Forward v4 Layer
9 IPFORWARD_V4_DISCARD 9e9ea773-2fae-4210-8f17-34129ef369eb 7 IP Forward v4 Discard Layer
10 IPFORWARD_V6 7b964818-19c7-493a-b71f-832c3684d28c 7 IP Forward v6 Layer
11 IPFORWARD_V6_DISCARD 31524a5d-1dfe-472f-bb93-518ee945d8a2 7 IP Forward v6 Discard Layer
12 INBOUND_TRANSPORT_V4 5926dfc8-e3cf-4426-a283-dc393f5d0f9d 7 Inbound Transport v4 Layer
13 INBOUND_TRANSPORT_V4_DISCARD ac4a9833-f69d-4648-b261-6dc84835ef39 7 Inbound Transport v4 Discard Layer
14 INBOUND_TRANSPORT_V6 634a869f-fc23-4b90-b0c1-bf620a36ae6f 7 Inbound Transport v6 Layer
15 INBOUND_TRANSPORT_V6_DISCARD 2a6ff955-3b2b-49d2-9848-ad9d72dcaab7 7 Inbound Transport v6 Discard Layer
16 OUTBOUND_TRANSPORT_V4 09e61aea-d214-46e2-9b21-b26b0b2f28c8 7 Outbound Transport v4 Layer
17 OUTBOUND_TRANSPORT_V4_DISCARD c5f10551-bdb0-43d7-a313-50e211f4d68a 7 Outbound Transport v4 Discard Layer
18 OUTBOUND_TRANSPORT_V6 e1735bde-013f-4655-b351-a49e15762df0 7 Outbound Transport v6 Layer
19 OUTBOUND_TRANSPORT_V6_DISCARD f433df69-ccbd-482e-b9b2-57165658c3b3 7 Outbound Transport v6 Discard Layer
20 STREAM_V4 3b89653c-c170-49e4-b1cd-e0eeeee19a3e 15 Stream v4 Layer
21 STREAM_V4_DISCARD 25c4c2c2-25ff-4352-82f9-c54a4a4726dc 15 Stream v4 Discard Layer
22 STREAM_V6 47c9137a-7ec4-46b3-b6e4-48e926b1eda4 15 Stream v6 Layer
23 STREAM_V6_DISCARD 10a59fc7-b628-4c41-9eb8-cf37d55103cf 15 Stream v6 Discard Layer
24 DATAGRAM_DATA_V4 3d08bf4e-45f6-4930-a922-417098e20027 7 Datagram Data v4 Layer
25 DATAGRAM_DATA_V4_DISCARD 18e330c6-7248-4e52-aaab-472ed67704fd 7 Datagram Data v4 Discard Layer
26 DATAGRAM_DATA_V6 fa45fe2f-3cba-4427-87fc-57b9a4b10d00 7 Datagram Data v6 Layer
27 DATAGRAM_DATA_V6_DISCARD 09d1dfe1-9b86-4a42-be9d-8c315b92a5d0 7 Datagram Data v6 Discard Layer
28 INBOUND_ICMP_ERROR_V4 61499990-3cb6-4e84-b950-53b94b6964f3 7 Inbound ICMP Error v4 Layer
29 INBOUND_ICMP_ERROR_V4_DISCARD a6b17075-ebaf-4053-a4e7-213c8121ede5 7 Inbound ICMP Error v4 Discard Layer
30 INBOUND_ICMP_ERROR_V6 65f9bdff-3b2d-4e5d-b8c6-c720651fe898 7 Inbound ICMP Error v6 Layer
31 INBOUND_ICMP_ERROR_V6_DISCARD a6e7ccc0-08fb-468d-a472-9771d5595e09 7 Inbound ICMP Error v6 Discard Layer
32 OUTBOUND_ICMP_ERROR_V4 41390100-564c-4b32-bc1d-718048354d7c 7 Outbound ICMP Error v4 Layer
33 OUTBOUND_ICMP_ERROR_V4_DISCARD b3598d36-0561-4588-a6bf-e955e3f6264b 7 Outbound ICMP Error v4 Discard Layer
34 OUTBOUND_ICMP_ERROR_V6 7fb03b60-7b8d-4dfa-badd-980176fc4e12 7 Outbound ICMP Error v6 Layer
35 OUTBOUND_ICMP_ERROR_V6_DISCARD 65f2e647-8d0c-4f47-b19b-33a4d3f1357c 7 Outbound ICMP Error v6 Discard Layer
36 ALE_RESOURCE_ASSIGNMENT_V4 1247d66d-0b60-4a15-8d44-7155d0f53a0c 7 ALE Resource Assignment v4 Layer
37 ALE_RESOURCE_ASSIGNMENT_V4_DISCARD 0b5812a2-c3ff-4eca-b88d-c79e20ac6322 7 ALE Resource Assignment v4 Discard Layer
38 ALE_RESOURCE_ASSIGNMENT_V6 55a650e1-5f0a-4eca-a653-88f53b26aa8c 7 ALE Resource Assignment v6 Layer
39 ALE_RESOURCE_ASSIGNMENT_V6_DISCARD cbc998bb-c51f-4c1a-bb4f-9775fcacab2f 7 ALE Resource Assignment v6 Discard Layer
40 ALE_AUTH_LISTEN_V4 88bb5dad-76d7-4227-9c71-df0a3ed7be7e 7 ALE Listen v4 Layer
41 ALE_AUTH_LISTEN_V4_DISCARD 371dfada-9f26-45fd-b4eb-c29eb212893f 7 ALE Listen v4 Discard Layer
42 ALE_AUTH_LISTEN_V6 7ac9de24-17dd-4814-b4bd-a9fbc95a321b 7 ALE Listen v6 Layer
43 ALE_AUTH_LISTEN_V6_DISCARD 60703b07-63c8-48e9-ada3-12b1af40a617 7 ALE Listen v6 Discard Layer
44 ALE_AUTH_RECV_ACCEPT_V4 e1cd9fe7-f4b5-4273-96c0-592e487b8650 7 ALE Receive/Accept v4 Layer
45 ALE_AUTH_RECV_ACCEPT_V4_DISCARD 9eeaa99b-bd22-4227-919f-0073c63357b1 7 ALE Receive/Accept v4 Discard Layer
46 ALE_AUTH_RECV_ACCEPT_V6 a3b42c97-9f04-4672-b87e-cee9c483257f 7 ALE Receive/Accept v6 Layer
47 ALE_AUTH_RECV_ACCEPT_V6_DISCARD 89455b97-dbe1-453f-a224-13da895af396 7 ALE Receive/Accept v6 Discard Layer
48 ALE_AUTH_CONNECT_V4 c38d57d1-05a7-4c33-904f-7fbceee60e82 7 ALE Connect v4 Layer
49 ALE_AUTH_CONNECT_V4_DISCARD d632a801-f5ba-4ad6-96e3-607017d9836a 7 ALE Connect v4 Discard Layer
50 ALE_AUTH_CONNECT_V6 4a72393b-319f-44bc-84c3-ba54dcb3b6b4 7 ALE Connect v6 Layer
51 ALE_AUTH_CONNECT_V6_DISCARD c97bc3b8-c9a3-4e33-8695-8e17aad4de09 7 ALE Connect v6 Discard Layer
52 ALE_FLOW_ESTABLISHED_V4 af80470a-5596-4c13-9992-539e6fe57967 7 ALE Flow Established v4 Layer
53 ALE_FLOW_ESTABLISHED_V4_DISCARD 146ae4a9-a1d2-4d43-a31a-4c42682b8e4f 7 ALE Flow Established v4 Discard Layer
54 ALE_FLOW_ESTABLISHED_V6 7021d2b3-dfa4-406e-afeb-6afaf7e70efd 7 ALE Flow Established v6 Layer
55 ALE_FLOW_ESTABLISHED_V6_DISCARD 46928636-bbca-4b76-941d-0fa7f5d7d372 7 ALE Flow Established v6 Discard Layer
56 INBOUND_MAC_FRAME_ETHERNET effb7edb-0055-4f9a-a231-4ff8131ad191 7 Inbound Ethernet Layer
57 OUTBOUND_MAC_FRAME_ETHERNET 694673bc-d6db-4870-adee-0acdbdb7f4b2 7 Outbound Ethernet Layer
58 INBOUND_MAC_FRAME_NATIVE d4220bd3-62ce-4f08-ae88-b56e8526df50 7 Inbound Native MAC Layer
59 OUTBOUND_MAC_FRAME_NATIVE 94c44912-9d6f-4ebf-b995-05ab8a088d1b 7 Outbound Native MAC Layer
60 NAME_RESOLUTION_CACHE_V4 0c2aa681-905b-4ccd-a467-4dd811d07b7b 7 Name Resolution Cache v4 Layer
61 NAME_RESOLUTION_CACHE_V6 92d592fa-6b01-434a-9dea-d1e96ea97da9 7 Name Resolution Cache v6 Layer
62 ALE_RESOURCE_RELEASE_V4 74365cce-ccb0-401a-bfc1-b89934ad7e15 7 ALE Resource Release v4 Layer
63 ALE_RESOURCE_RELEASE_V6 f4e5ce80-edcc-4e13-8a2f-b91454bb057b 7 ALE Resource Release v6 Layer
64 ALE_ENDPOINT_CLOSURE_V4 b4766427-e2a2-467a-bd7e-dbcd1bd85a09 7 ALE Endpoint Closure v4 Layer
65 ALE_ENDPOINT_CLOSURE_V6 bb536ccd-4755-4ba9-9ff7-f9edf8699c7b 7 ALE Endpoint Closure v6 Layer
66 ALE_CONNECT_REDIRECT_V4 c6e63c8c-b784-4562-aa7d-0a67cfcaf9a3 7 ALE Connect Redirect v4 Layer
67 ALE_CONNECT_REDIRECT_V6 587e54a7-8046-42ba-a0aa-b716250fc7fd 7 ALE Connect Redirect v6 Layer
68 ALE_BIND_REDIRECT_V4 66978cad-c704-42ac-86ac-7c1a231bd253 7 ALE Bind Redirect v4 Layer
69 ALE_BIND_REDIRECT_V6 bef02c9c-606b-4536-8c26-1c2fc7b631d4 7 ALE Bind Redirect v6 Layer
70 STREAM_PACKET_V4 af52d8ec-cb2d-44e5-ad92-f8dc38d2eb29 7 Stream Packet v4 Layer
71 STREAM_PACKET_V6 779a8ca3-f099-468f-b5d4-83535c461c02 7 Stream Packet v6 Layer
72 INGRESS_VSWITCH_ETHERNET 7d98577a-9a87-41ec-9718-7cf589c9f32d 7 Ingress vSwitch Ethernet layer
73 EGRESS_VSWITCH_ETHERNET 86c872b0-76fa-4b79-93a4-0750530ae292 7 Egress vSwitch Ethernet layer
74 INGRESS_VSWITCH_TRANSPORT_V4 b2696ff6-774f-4554-9f7d-3da3945f8e85 7 Ingress vSwitch Transport v4 layer
75 INGRESS_VSWITCH_TRANSPORT_V6 5ee314fc-7d8a-47f4-b7e3-291a36da4e12 7 Ingress vSwitch Transport v6 layer
76 EGRESS_VSWITCH_TRANSPORT_V4 b92350b6-91f0-46b6-bdc4-871dfd4a7c98 7 Egress vSwitch Transport v4 layer
77 EGRESS_VSWITCH_TRANSPORT_V6 1b2def23-1881-40bd-82f4-4254e63141cb 7 Egress vSwitch Transport v6 layer
78 INBOUND_TRANSPORT_FAST e41d2719-05c7-40f0-8983-ea8d17bbc2f6 7 Inbound Transport v4 Layer fast
79 OUTBOUND_TRANSPORT_FAST 13ed4388-a070-4815-9935-7a9be6408b78 7 Outbound Transport v4 Layer fast
80 INBOUND_MAC_FRAME_NATIVE_FAST 853aaa8e-2b78-4d24-a804-36db08b29711 7 Inbound Native MAC Layer fast
81 OUTBOUND_MAC_FRAME_NATIVE_FAST 470df946-c962-486f-9446-8293cbc75eb8 7 Outbound Native MAC Layer fast
82 INBOUND_RESERVED2 f4fb8d55-c076-46d8-a2c7-6a4c722ca4ed 7 Inbound HTTP Reserved Layer
83 ALE_ACCEPT_REDIRECT_V4 29243af8-ecaf-4436-a44e-f9fb7070aa04 7 ALE Accept Redirect v4 Layer
84 ALE_ACCEPT_REDIRECT_V6 c9809347-218f-4b7f-a742-b281a3f631b4 7 ALE Accept Redirect v6 Layer
85 OUTBOUND_NETWORK_CONNECTION_POLICY_V4 037f317a-d696-494a-bba5-bffc265e6052 7 Outbound Network Connection Policy V4 Layer
86 OUTBOUND_NETWORK_CONNECTION_POLICY_V6 22a4fdb1-6d7e-48ae-ae77-3742525c3119 7 Outbound Network Connection Policy V6 Layer
87 IPSEC_KM_DEMUX_V4 f02b1526-a459-4a51-b9e3-759de52b9d2c 2 IPsec KM Demux v4 Layer
88 IPSEC_KM_DEMUX_V6 2f755cf6-2fd4-4e88-b3e4-a91bca495235 2 IPsec KM Demux v6 Layer
89 IPSEC_V4 eda65c74-610d-4bc5-948f-3c4f89556867 2 IPsec v4 Layer
90 IPSEC_V6 13c48442-8d87-4261-9a29-59d2abc348b4 2 IPsec v6 Layer
91 IKEEXT_V4 b14b7bdb-dbbd-473e-bed4-8b4708d4f270 6 IKE v4 Layer
92 IKEEXT_V6 b64786b3-f687-4eb9-89d2-8ef32acdabe2 6 IKE v6 Layer
93 RPC_UM 75a89dda-95e4-40f3-adc7-7688a9c847e1 6 RPC UM Layer
94 RPC_EPMAP 9247bc61-eb07-47ee-872c-bfd78bfd1616 6 RPC EPMAP Layer
95 RPC_EP_ADD 618dffc7-c450-4943-95db-99b4c16a55d4 2 RPC EP ADD Layer
96 RPC_PROXY_CONN 94a4b50b-ba5c-4f27-907a-229fac0c2a7a 6 RPC Proxy Connect Layer
97 RPC_PROXY_IF f8a38615-e12c-41ac-98df-121ad981aade 6 RPC Proxy Interface Layer
98 KM_AUTHORIZATION 4aa226e9-9020-45fb-956a-c0249d841195 6 Keying Module Authorization Layer
)";

TEST(Layers, AreNinetyNineInEveryVersionOfWindows) {
  for (const WindowsVersion version : kWindowsVersions) {
    std::ostringstream text;
    for (const Layer& layer : AllLayers(version)) {
      text << layer.id << ' ' << layer.name << ' ' << FormatGuid(layer.key) << ' ' << layer.flags << ' '
           << layer.displayName << '\n';
    }
    EXPECT_EQ(text.str(), kAllLayers) << WindowsVersionName(version);
  }
}

TEST(Layers, EachIsFoundByItsKeyItsIdAndItsName) {
  for (const WindowsVersion version : kWindowsVersions) {
    for (const Layer& layer : AllLayers(version)) {
      EXPECT_EQ(FindLayer(layer.key, version), &layer) << layer.name;
      EXPECT_EQ(FindLayer(layer.id, version), &layer) << layer.name;
      EXPECT_EQ(FindLayer(layer.name, version), &layer) << layer.name;
    }
  }
}

TEST(Layers, WithoutAVersionAreTheNewest) {
  EXPECT_EQ(FindLayer(kAleAuthConnectV4LayerKey),
            FindLayer(kAleAuthConnectV4LayerKey, WindowsVersion::Windows24H2));
  EXPECT_EQ(AllLayers().data(), AllLayers(WindowsVersion::Windows24H2).data());
}

TEST(Layers, AnUnknownKeyIdOrNameIsNoLayer) {
  EXPECT_EQ(FindLayer(GUID{}), nullptr);
  EXPECT_EQ(FindLayer("c38d57d1-05a7-4c33-904f-7fbceee60e83"_guid), nullptr);
  EXPECT_EQ(FindLayer(UINT16{99}), nullptr);
  EXPECT_EQ(FindLayer(std::string_view("ALE_AUTH_CONNECT")), nullptr);
}

TEST(Layers, TwoHaveNoSymbol) {
  std::string names;
  for (const Layer& layer : AllLayers()) {
    if (!layer.hasSymbol) {
      names.append(layer.name).append(" ");
    }
  }
  EXPECT_EQ(names, "ALE_ACCEPT_REDIRECT_V4 ALE_ACCEPT_REDIRECT_V6 ");
}

TEST(Layers, FiltersWithoutSublayerGoToUniversal) {
  for (const Layer& layer : AllLayers()) {
    EXPECT_TRUE(layer.defaultSublayerKey == "eebecc03-ced4-4380-819a-2734397b2b74"_guid) << layer.name;
  }
}

TEST(Layers, HaveTheIpVersionOfTheirName) {
  EXPECT_EQ(FindLayer("STREAM_V4_DISCARD")->ipVersion, IpVersion::V4);
  EXPECT_EQ(FindLayer("STREAM_PACKET_V6")->ipVersion, IpVersion::V6);
  EXPECT_EQ(FindLayer("INBOUND_TRANSPORT_FAST")->ipVersion, std::nullopt);
}

TEST(Layers, OfTheSameKindMakeAFamily) {
  for (const char* name : {"ALE_AUTH_CONNECT_V4", "ALE_AUTH_CONNECT_V4_DISCARD", "ALE_AUTH_CONNECT_V6",
                           "ALE_AUTH_CONNECT_V6_DISCARD"}) {
    EXPECT_EQ(FindLayer(name)->family, LayerFamily::AleAuthConnect) << name;
  }
  EXPECT_EQ(FindLayer("INBOUND_MAC_FRAME_NATIVE")->family, LayerFamily::MacFrameNative);
}

ConditionTypes TypesAt(const char* layer, const char* field, WindowsVersion version = kNewestWindows) {
  return TypesOf(*FieldAt(*FindLayer(layer, version), *FindField(field)));
}

TEST(ConditionTypes, OfAnIpV4AddressAreANumberAndANetwork) {
  const auto [type, alternative] = TypesAt("ALE_AUTH_CONNECT_V4", "IP_REMOTE_ADDRESS");
  EXPECT_EQ(type, FWP_UINT32);
  EXPECT_EQ(alternative, FWP_V4_ADDR_MASK);
}

TEST(ConditionTypes, OfAnIpV6AddressAreSixteenBytesAndANetwork) {
  const auto [type, alternative] = TypesAt("ALE_AUTH_CONNECT_V6_DISCARD", "IP_REMOTE_ADDRESS");
  EXPECT_EQ(type, FWP_BYTE_ARRAY16_TYPE);
  EXPECT_EQ(alternative, FWP_V6_ADDR_MASK);
}

TEST(ConditionTypes, OfOtherFieldsAreTheirOwn) {
  EXPECT_EQ(TypesAt("ALE_AUTH_CONNECT_V4", "IP_REMOTE_PORT").type, FWP_UINT16);
  EXPECT_EQ(TypesAt("ALE_AUTH_CONNECT_V4", "IP_REMOTE_PORT").alternative, std::nullopt);
  EXPECT_EQ(TypesAt("ALE_AUTH_CONNECT_V4", "FLAGS").alternative, std::nullopt);
  EXPECT_EQ(TypesAt("RPC_UM", "RPC_IF_UUID").alternative, std::nullopt);
}

TEST(ConditionTypes, OfWhoSomebodyIsAreSecurityDescriptors) {
  for (const char* field : {"ALE_USER_ID", "ALE_REMOTE_USER_ID", "ALE_PACKAGE_FAMILY_NAME"}) {
    EXPECT_EQ(TypesAt("ALE_AUTH_CONNECT_V6", field).type, FWP_SECURITY_DESCRIPTOR_TYPE) << field;
    EXPECT_EQ(TypesAt("ALE_AUTH_CONNECT_V6", field).alternative, std::nullopt) << field;
  }
  EXPECT_EQ(TypesAt("RPC_UM", "REMOTE_USER_TOKEN").type, FWP_SECURITY_DESCRIPTOR_TYPE);
}

TEST(ConditionTypes, DifferAtAFewLayers) {
  EXPECT_EQ(TypesAt("NAME_RESOLUTION_CACHE_V4", "ALE_USER_ID").type, FWP_SID);
  EXPECT_EQ(TypesAt("ALE_AUTH_CONNECT_V4", "RESERVED0").type, FWP_BYTE_BLOB_TYPE);
  EXPECT_EQ(TypesAt("ALE_RESOURCE_ASSIGNMENT_V4", "RESERVED0").type, FWP_UINT8);
  EXPECT_EQ(TypesAt("ALE_RESOURCE_ASSIGNMENT_V6", "RESERVED0").type, FWP_BYTE_BLOB_TYPE);
  EXPECT_EQ(TypesAt("INBOUND_RESERVED2", "RESERVED1").alternative, FWP_V4_ADDR_MASK);
  EXPECT_EQ(TypesAt("INBOUND_RESERVED2", "RESERVED2").alternative, FWP_V6_ADDR_MASK);
  EXPECT_EQ(TypesAt("INBOUND_RESERVED2", "RESERVED3").type, FWP_UINT16);
}

TEST(ConditionTypes, OfARouteByPolicyWereMistakenBefore24H2) {
  constexpr const char* kLayer = "OUTBOUND_NETWORK_CONNECTION_POLICY_V6";
  EXPECT_EQ(TypesAt(kLayer, "IP_REMOTE_ADDRESS", WindowsVersion::Windows11).type, FWP_UINT32);
  EXPECT_EQ(TypesAt(kLayer, "IP_REMOTE_ADDRESS").type, FWP_BYTE_ARRAY16_TYPE);
}

}  // namespace
}  // namespace Catalog
