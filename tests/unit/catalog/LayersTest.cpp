#include "catalog/Layers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace Catalog {
namespace {

/// What the documentation lists for a layer, its V6 version and their DISCARD twins.
struct Family {
  std::string name;
  std::size_t fieldCount;
  std::string fields;  ///< in alphabetical order
};

const Family kFamilies[]{
    {"INBOUND_IPPACKET", 10,
     "COMPARTMENT_ID FLAGS INTERFACE_INDEX INTERFACE_TYPE IP_LOCAL_ADDRESS IP_LOCAL_ADDRESS_TYPE "
     "IP_LOCAL_INTERFACE IP_REMOTE_ADDRESS SUB_INTERFACE_INDEX TUNNEL_TYPE"},
    {"OUTBOUND_IPPACKET", 10,
     "COMPARTMENT_ID FLAGS INTERFACE_INDEX INTERFACE_TYPE IP_LOCAL_ADDRESS IP_LOCAL_ADDRESS_TYPE "
     "IP_LOCAL_INTERFACE IP_REMOTE_ADDRESS SUB_INTERFACE_INDEX TUNNEL_TYPE"},
    {"IPFORWARD", 15,
     "ARRIVAL_INTERFACE_PROFILE_ID COMPARTMENT_ID DESTINATION_INTERFACE_INDEX "
     "DESTINATION_SUB_INTERFACE_INDEX FLAGS IP_DESTINATION_ADDRESS IP_DESTINATION_ADDRESS_TYPE "
     "IP_FORWARD_INTERFACE IP_LOCAL_INTERFACE IP_PHYSICAL_ARRIVAL_INTERFACE "
     "IP_PHYSICAL_NEXTHOP_INTERFACE IP_SOURCE_ADDRESS NEXTHOP_INTERFACE_PROFILE_ID "
     "SOURCE_INTERFACE_INDEX SOURCE_SUB_INTERFACE_INDEX"},
    {"INBOUND_TRANSPORT", 15,
     "COMPARTMENT_ID CURRENT_PROFILE_ID FLAGS INTERFACE_INDEX INTERFACE_TYPE IPSEC_SECURITY_REALM_ID "
     "IP_LOCAL_ADDRESS IP_LOCAL_ADDRESS_TYPE IP_LOCAL_INTERFACE IP_LOCAL_PORT IP_PROTOCOL "
     "IP_REMOTE_ADDRESS IP_REMOTE_PORT SUB_INTERFACE_INDEX TUNNEL_TYPE"},
    {"OUTBOUND_TRANSPORT", 16,
     "COMPARTMENT_ID CURRENT_PROFILE_ID FLAGS INTERFACE_INDEX INTERFACE_TYPE IPSEC_SECURITY_REALM_ID "
     "IP_DESTINATION_ADDRESS_TYPE IP_LOCAL_ADDRESS IP_LOCAL_ADDRESS_TYPE IP_LOCAL_INTERFACE "
     "IP_LOCAL_PORT IP_PROTOCOL IP_REMOTE_ADDRESS IP_REMOTE_PORT SUB_INTERFACE_INDEX TUNNEL_TYPE"},
    {"INBOUND_ICMP_ERROR", 22,
     "ARRIVAL_INTERFACE_INDEX ARRIVAL_INTERFACE_PROFILE_ID ARRIVAL_INTERFACE_TYPE ARRIVAL_TUNNEL_TYPE "
     "COMPARTMENT_ID EMBEDDED_LOCAL_ADDRESS_TYPE EMBEDDED_LOCAL_PORT EMBEDDED_PROTOCOL "
     "EMBEDDED_REMOTE_ADDRESS EMBEDDED_REMOTE_PORT FLAGS INTERFACE_INDEX INTERFACE_QUARANTINE_EPOCH "
     "INTERFACE_TYPE IP_ARRIVAL_INTERFACE IP_LOCAL_ADDRESS IP_LOCAL_INTERFACE IP_LOCAL_PORT "
     "IP_REMOTE_ADDRESS IP_REMOTE_PORT SUB_INTERFACE_INDEX TUNNEL_TYPE"},
    {"OUTBOUND_ICMP_ERROR", 14,
     "COMPARTMENT_ID FLAGS INTERFACE_INDEX INTERFACE_QUARANTINE_EPOCH INTERFACE_TYPE IP_LOCAL_ADDRESS "
     "IP_LOCAL_ADDRESS_TYPE IP_LOCAL_INTERFACE IP_LOCAL_PORT IP_REMOTE_ADDRESS IP_REMOTE_PORT "
     "NEXTHOP_INTERFACE_PROFILE_ID SUB_INTERFACE_INDEX TUNNEL_TYPE"},
    {"ALE_RESOURCE_ASSIGNMENT", 17,
     "ALE_APP_ID ALE_PACKAGE_FAMILY_NAME ALE_PACKAGE_ID ALE_PROMISCUOUS_MODE "
     "ALE_SECURITY_ATTRIBUTE_FQBN_VALUE ALE_SIO_FIREWALL_SYSTEM_PORT ALE_USER_ID COMPARTMENT_ID FLAGS "
     "INTERFACE_TYPE IP_LOCAL_ADDRESS IP_LOCAL_ADDRESS_TYPE IP_LOCAL_INTERFACE IP_LOCAL_PORT "
     "IP_PROTOCOL LOCAL_INTERFACE_PROFILE_ID TUNNEL_TYPE"},
    {"ALE_RESOURCE_RELEASE", 12,
     "ALE_APP_ID ALE_PACKAGE_FAMILY_NAME ALE_PACKAGE_ID ALE_SECURITY_ATTRIBUTE_FQBN_VALUE ALE_USER_ID "
     "COMPARTMENT_ID FLAGS IP_LOCAL_ADDRESS IP_LOCAL_ADDRESS_TYPE IP_LOCAL_INTERFACE IP_LOCAL_PORT "
     "IP_PROTOCOL"},
    {"ALE_AUTH_LISTEN", 15,
     "ALE_APP_ID ALE_PACKAGE_FAMILY_NAME ALE_PACKAGE_ID ALE_SECURITY_ATTRIBUTE_FQBN_VALUE "
     "ALE_SIO_FIREWALL_SYSTEM_PORT ALE_USER_ID COMPARTMENT_ID FLAGS INTERFACE_TYPE IP_LOCAL_ADDRESS "
     "IP_LOCAL_ADDRESS_TYPE IP_LOCAL_INTERFACE IP_LOCAL_PORT LOCAL_INTERFACE_PROFILE_ID TUNNEL_TYPE"},
    {"ALE_AUTH_RECV_ACCEPT", 37,
     "ALE_APP_ID ALE_NAP_CONTEXT ALE_PACKAGE_FAMILY_NAME ALE_PACKAGE_ID ALE_REAUTH_REASON "
     "ALE_REMOTE_MACHINE_ID ALE_REMOTE_USER_ID ALE_SECURITY_ATTRIBUTE_FQBN_VALUE "
     "ALE_SIO_FIREWALL_SYSTEM_PORT ALE_USER_ID ARRIVAL_INTERFACE_INDEX ARRIVAL_INTERFACE_TYPE "
     "ARRIVAL_TUNNEL_TYPE COMPARTMENT_ID CURRENT_PROFILE_ID FLAGS INTERFACE_INDEX "
     "INTERFACE_QUARANTINE_EPOCH INTERFACE_TYPE IP_ARRIVAL_INTERFACE IP_LOCAL_ADDRESS "
     "IP_LOCAL_ADDRESS_TYPE IP_LOCAL_INTERFACE IP_LOCAL_PORT IP_NEXTHOP_INTERFACE IP_PROTOCOL "
     "IP_REMOTE_ADDRESS IP_REMOTE_PORT NEXTHOP_INTERFACE_INDEX NEXTHOP_INTERFACE_TYPE "
     "NEXTHOP_SUB_INTERFACE_INDEX NEXTHOP_TUNNEL_TYPE ORIGINAL_ICMP_TYPE ORIGINAL_PROFILE_ID "
     "REAUTHORIZE_REASON SUB_INTERFACE_INDEX TUNNEL_TYPE"},
    {"ALE_AUTH_CONNECT", 39,
     "ALE_APP_ID ALE_EFFECTIVE_NAME ALE_ORIGINAL_APP_ID ALE_PACKAGE_FAMILY_NAME ALE_PACKAGE_ID "
     "ALE_REAUTH_REASON ALE_REMOTE_MACHINE_ID ALE_REMOTE_USER_ID ALE_SECURITY_ATTRIBUTE_FQBN_VALUE "
     "ALE_USER_ID ARRIVAL_INTERFACE_INDEX ARRIVAL_INTERFACE_TYPE ARRIVAL_TUNNEL_TYPE COMPARTMENT_ID "
     "CURRENT_PROFILE_ID FLAGS INTERFACE_INDEX INTERFACE_QUARANTINE_EPOCH INTERFACE_TYPE "
     "IP_ARRIVAL_INTERFACE IP_DESTINATION_ADDRESS_TYPE IP_LOCAL_ADDRESS IP_LOCAL_ADDRESS_TYPE "
     "IP_LOCAL_INTERFACE IP_LOCAL_PORT IP_NEXTHOP_INTERFACE IP_PROTOCOL IP_REMOTE_ADDRESS "
     "IP_REMOTE_PORT NEXTHOP_INTERFACE_INDEX NEXTHOP_INTERFACE_TYPE NEXTHOP_SUB_INTERFACE_INDEX "
     "NEXTHOP_TUNNEL_TYPE ORIGINAL_ICMP_TYPE ORIGINAL_PROFILE_ID PEER_NAME REAUTHORIZE_REASON "
     "SUB_INTERFACE_INDEX TUNNEL_TYPE"},
    {"ALE_FLOW_ESTABLISHED", 21,
     "ALE_APP_ID ALE_ORIGINAL_APP_ID ALE_PACKAGE_FAMILY_NAME ALE_PACKAGE_ID ALE_REMOTE_MACHINE_ID "
     "ALE_REMOTE_USER_ID ALE_SECURITY_ATTRIBUTE_FQBN_VALUE ALE_USER_ID COMPARTMENT_ID DIRECTION FLAGS "
     "INTERFACE_TYPE IP_DESTINATION_ADDRESS_TYPE IP_LOCAL_ADDRESS IP_LOCAL_ADDRESS_TYPE "
     "IP_LOCAL_INTERFACE IP_LOCAL_PORT IP_PROTOCOL IP_REMOTE_ADDRESS IP_REMOTE_PORT TUNNEL_TYPE"},
};

const Layer* FindByName(const std::string& name) {
  const auto layer = std::ranges::find(AllLayers(), name, &Layer::name);
  return layer == AllLayers().end() ? nullptr : &*layer;
}

std::string SortedFieldNames(const Layer& layer) {
  std::vector<std::string> names;
  for (const Field* field : layer.fields) names.emplace_back(field->name);
  std::ranges::sort(names);
  std::string text;
  for (const std::string& name : names) text.append(text.empty() ? "" : " ").append(name);
  return text;
}

class LayerFamily : public testing::TestWithParam<Family> {};

TEST_P(LayerFamily, HasTheSameFieldsInEveryVersion) {
  for (const char* version : {"_V4", "_V6", "_V4_DISCARD", "_V6_DISCARD"}) {
    const Layer* layer = FindByName(GetParam().name + version);
    if (layer == nullptr) continue;
    EXPECT_EQ(layer->fields.size(), GetParam().fieldCount) << layer->name;
    EXPECT_EQ(SortedFieldNames(*layer), GetParam().fields) << layer->name;
  }
}

TEST_P(LayerFamily, HasBothIpVersions) {
  const Layer* v4 = FindByName(GetParam().name + "_V4");
  const Layer* v6 = FindByName(GetParam().name + "_V6");
  ASSERT_NE(v4, nullptr);
  ASSERT_NE(v6, nullptr);
  EXPECT_EQ(v4->ipVersion, IpVersion::V4);
  EXPECT_EQ(v6->ipVersion, IpVersion::V6);
}

TEST_P(LayerFamily, HasDiscardTwinsUnlessResourcesAreReleased) {
  const Layer* v4 = FindByName(GetParam().name + "_V4_DISCARD");
  const Layer* v6 = FindByName(GetParam().name + "_V6_DISCARD");
  if (GetParam().name == "ALE_RESOURCE_RELEASE") {
    EXPECT_EQ(v4, nullptr);
    EXPECT_EQ(v6, nullptr);
    return;
  }
  ASSERT_NE(v4, nullptr);
  ASSERT_NE(v6, nullptr);
  EXPECT_EQ(v4->ipVersion, IpVersion::V4);
  EXPECT_EQ(v6->ipVersion, IpVersion::V6);
}

INSTANTIATE_TEST_SUITE_P(Documented, LayerFamily, testing::ValuesIn(kFamilies),
                         [](const auto& family) { return family.param.name; });

TEST(Layers, AreThirteenFamiliesOfFourLessTwoTwins) { EXPECT_EQ(AllLayers().size(), 50u); }

TEST(Layers, EachIsFoundByItsKey) {
  for (const Layer& layer : AllLayers()) EXPECT_EQ(FindLayer(layer.key), &layer) << layer.name;
}

TEST(Layers, KeysAreThoseOfTheHeaders) {
  EXPECT_EQ(FindLayer("c86fd1bf-21cd-497e-a0bb-17425c885c58"_guid)->name, "INBOUND_IPPACKET_V4");
  EXPECT_EQ(FindLayer("a3b3ab6b-3564-488c-9117-f34e82142763"_guid)->name, "OUTBOUND_IPPACKET_V6");
  EXPECT_EQ(FindLayer("7b964818-19c7-493a-b71f-832c3684d28c"_guid)->name, "IPFORWARD_V6");
  EXPECT_EQ(FindLayer("5926dfc8-e3cf-4426-a283-dc393f5d0f9d"_guid)->name, "INBOUND_TRANSPORT_V4");
  EXPECT_EQ(FindLayer("09e61aea-d214-46e2-9b21-b26b0b2f28c8"_guid)->name, "OUTBOUND_TRANSPORT_V4");
  EXPECT_EQ(FindLayer("a6e7ccc0-08fb-468d-a472-9771d5595e09"_guid)->name, "INBOUND_ICMP_ERROR_V6_DISCARD");
  EXPECT_EQ(FindLayer("b3598d36-0561-4588-a6bf-e955e3f6264b"_guid)->name, "OUTBOUND_ICMP_ERROR_V4_DISCARD");
  EXPECT_EQ(FindLayer("55a650e1-5f0a-4eca-a653-88f53b26aa8c"_guid)->name, "ALE_RESOURCE_ASSIGNMENT_V6");
  EXPECT_EQ(FindLayer("74365cce-ccb0-401a-bfc1-b89934ad7e15"_guid)->name, "ALE_RESOURCE_RELEASE_V4");
  EXPECT_EQ(FindLayer("371dfada-9f26-45fd-b4eb-c29eb212893f"_guid)->name, "ALE_AUTH_LISTEN_V4_DISCARD");
  EXPECT_EQ(FindLayer("e1cd9fe7-f4b5-4273-96c0-592e487b8650"_guid)->name, "ALE_AUTH_RECV_ACCEPT_V4");
  EXPECT_EQ(FindLayer("a3b42c97-9f04-4672-b87e-cee9c483257f"_guid)->name, "ALE_AUTH_RECV_ACCEPT_V6");
  EXPECT_EQ(FindLayer("c38d57d1-05a7-4c33-904f-7fbceee60e82"_guid)->name, "ALE_AUTH_CONNECT_V4");
  EXPECT_EQ(FindLayer("4a72393b-319f-44bc-84c3-ba54dcb3b6b4"_guid)->name, "ALE_AUTH_CONNECT_V6");
  EXPECT_EQ(FindLayer("af80470a-5596-4c13-9992-539e6fe57967"_guid)->name, "ALE_FLOW_ESTABLISHED_V4");
  EXPECT_EQ(FindLayer("7021d2b3-dfa4-406e-afeb-6afaf7e70efd"_guid)->name, "ALE_FLOW_ESTABLISHED_V6");
}

TEST(Layers, AnUnknownKeyIsNoLayer) {
  EXPECT_EQ(FindLayer(GUID{}), nullptr);
  EXPECT_EQ(FindLayer("c38d57d1-05a7-4c33-904f-7fbceee60e83"_guid), nullptr);
}

TEST(Layers, RuntimeIdsRunThroughEachFamily) {
  EXPECT_EQ(FindLayer(UINT16{0})->name, "INBOUND_IPPACKET_V4");
  EXPECT_EQ(FindLayer(UINT16{11})->name, "IPFORWARD_V6_DISCARD");
  EXPECT_EQ(FindLayer(UINT16{12})->name, "INBOUND_TRANSPORT_V4");
  EXPECT_EQ(FindLayer(UINT16{19})->name, "OUTBOUND_TRANSPORT_V6_DISCARD");
  EXPECT_EQ(FindLayer(UINT16{28})->name, "INBOUND_ICMP_ERROR_V4");
  EXPECT_EQ(FindLayer(UINT16{44})->name, "ALE_AUTH_RECV_ACCEPT_V4");
  EXPECT_EQ(FindLayer(UINT16{46})->name, "ALE_AUTH_RECV_ACCEPT_V6");
  EXPECT_EQ(FindLayer(UINT16{48})->name, "ALE_AUTH_CONNECT_V4");
  EXPECT_EQ(FindLayer(UINT16{49})->name, "ALE_AUTH_CONNECT_V4_DISCARD");
  EXPECT_EQ(FindLayer(UINT16{50})->name, "ALE_AUTH_CONNECT_V6");
  EXPECT_EQ(FindLayer(UINT16{55})->name, "ALE_FLOW_ESTABLISHED_V6_DISCARD");
}

TEST(Layers, EveryRuntimeIdIsUsedOnceExceptThoseOfTheStreamLayers) {
  for (UINT16 id = 0; id < 70; ++id) {
    const bool known = id < 20 || (id >= 28 && id < 56);
    EXPECT_EQ(std::ranges::count(AllLayers(), std::optional(id), &Layer::runtimeId), known ? 1 : 0) << id;
    EXPECT_EQ(FindLayer(id) != nullptr, known) << id;
  }
}

TEST(Layers, RuntimeIdsOfReleasedResourcesAreNotKnown) {
  EXPECT_EQ(FindByName("ALE_RESOURCE_RELEASE_V4")->runtimeId, std::nullopt);
  EXPECT_EQ(FindByName("ALE_RESOURCE_RELEASE_V6")->runtimeId, std::nullopt);
}

TEST(Layers, FiltersWithoutSublayerGoToUniversal) {
  for (const Layer& layer : AllLayers()) {
    EXPECT_TRUE(layer.defaultSublayerKey == "eebecc03-ced4-4380-819a-2734397b2b74"_guid) << layer.name;
  }
}

TEST(Layers, ListeningHasNeitherProtocolNorRemoteFields) {
  const Layer& layer = *FindByName("ALE_AUTH_LISTEN_V4");
  EXPECT_TRUE(HasField(layer, *FindField("IP_LOCAL_PORT")));
  EXPECT_FALSE(HasField(layer, *FindField("IP_PROTOCOL")));
  EXPECT_FALSE(HasField(layer, *FindField("IP_REMOTE_ADDRESS")));
  EXPECT_FALSE(HasField(layer, *FindField("IP_REMOTE_PORT")));
}

TEST(Layers, AcceptingHasNoDestinationAddressType) {
  EXPECT_TRUE(HasField(*FindByName("ALE_AUTH_CONNECT_V4"), *FindField("IP_DESTINATION_ADDRESS_TYPE")));
  EXPECT_FALSE(HasField(*FindByName("ALE_AUTH_RECV_ACCEPT_V4"), *FindField("IP_DESTINATION_ADDRESS_TYPE")));
}

TEST(Layers, ForwardingHasSourceAndDestinationInsteadOfLocalAndRemote) {
  const Layer& layer = *FindByName("IPFORWARD_V6");
  EXPECT_TRUE(HasField(layer, *FindField("IP_SOURCE_ADDRESS")));
  EXPECT_TRUE(HasField(layer, *FindField("IP_DESTINATION_ADDRESS")));
  EXPECT_FALSE(HasField(layer, *FindField("IP_LOCAL_ADDRESS")));
  EXPECT_FALSE(HasField(layer, *FindField("IP_REMOTE_ADDRESS")));
}

TEST(Layers, AnIcmpErrorsTypeAndCodeAreItsPorts) {
  const Layer& layer = *FindByName("INBOUND_ICMP_ERROR_V4");
  EXPECT_TRUE(HasField(layer, *FindField("ICMP_TYPE")));
  EXPECT_TRUE(HasField(layer, *FindField("ICMP_CODE")));
  EXPECT_TRUE(HasField(layer, *FindField("IP_LOCAL_PORT")));
  EXPECT_FALSE(HasField(layer, *FindField("IP_PROTOCOL")));
}

TEST(Layers, AnIpV4AddressIsANumberOrANetwork) {
  const auto [type, alternative] =
      TypesAt(*FindByName("ALE_AUTH_CONNECT_V4"), *FindField("IP_REMOTE_ADDRESS"));
  EXPECT_EQ(type, FWP_UINT32);
  EXPECT_EQ(alternative, FWP_V4_ADDR_MASK);
}

TEST(Layers, AnIpV6AddressIsSixteenBytesOrANetwork) {
  const auto [type, alternative] =
      TypesAt(*FindByName("ALE_AUTH_CONNECT_V6_DISCARD"), *FindField("IP_REMOTE_ADDRESS"));
  EXPECT_EQ(type, FWP_BYTE_ARRAY16_TYPE);
  EXPECT_EQ(alternative, FWP_V6_ADDR_MASK);
}

TEST(Layers, OtherFieldsHaveTheSameTypesEverywhere) {
  const Field& port = *FindField("IP_REMOTE_PORT");
  for (const char* name : {"ALE_AUTH_CONNECT_V4", "ALE_AUTH_CONNECT_V6"}) {
    EXPECT_EQ(TypesAt(*FindByName(name), port).type, FWP_UINT16);
    EXPECT_EQ(TypesAt(*FindByName(name), port).alternative, std::nullopt);
  }
}

TEST(Layers, APackageFamilyNameHasTwoTypes) {
  const auto [type, alternative] =
      TypesAt(*FindByName("ALE_AUTH_CONNECT_V6"), *FindField("ALE_PACKAGE_FAMILY_NAME"));
  EXPECT_EQ(type, FWP_SECURITY_DESCRIPTOR_TYPE);
  EXPECT_EQ(alternative, FWP_BYTE_BLOB_TYPE);
}

}  // namespace
}  // namespace Catalog
