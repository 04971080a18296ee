#include "catalog/Fields.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace Catalog {
namespace {

using ::testing::ElementsAre;

std::vector<std::string_view> NamesOfKind(FWPM_FIELD_TYPE type) {
  std::vector<std::string_view> names;
  for (const Field& field : kFields) {
    if (field.type == type) {
      names.push_back(field.name);
    }
  }
  return names;
}

std::vector<std::string_view> NamesOfType(FWP_DATA_TYPE type) {
  std::vector<std::string_view> names;
  for (const Field& field : kFields) {
    if (field.dataType == type) {
      names.push_back(field.name);
    }
  }
  return names;
}

TEST(Fields, EachIsFoundByItsNameAndByItsKey) {
  for (const Field& field : kFields) {
    EXPECT_EQ(FindField(field.name), &field) << field.name;
    EXPECT_EQ(FindField(field.key), &field) << field.name;
  }
}

TEST(Fields, AreThoseOfLiveEnginesAndFiveMore) { EXPECT_EQ(kFields.size(), 140u); }

TEST(Fields, KeysAreThoseOfTheHeaders) {
  EXPECT_EQ(FindField("d78e1e87-8644-4ea5-9437-d809ecefc971"_guid)->name, "ALE_APP_ID");
  EXPECT_EQ(FindField("632ce23b-5167-435c-86d7-e903684aa80c"_guid)->name, "FLAGS");
  EXPECT_EQ(FindField("667fd755-d695-434a-8af5-d3835a1259bc"_guid)->name, "INTERFACE_INDEX");
  EXPECT_EQ(FindField("618a9b6d-386b-4136-ad6e-b51587cfb1cd"_guid)->name, "IP_ARRIVAL_INTERFACE");
  EXPECT_EQ(FindField("2d79133b-b390-45c6-8699-acaceaafed33"_guid)->name, "IP_DESTINATION_ADDRESS");
  EXPECT_EQ(FindField("d9ee00de-c1ef-4617-bfe3-ffd8f5a08957"_guid)->name, "IP_LOCAL_ADDRESS");
  EXPECT_EQ(FindField("6ec7f6c4-376b-45d7-9e9c-d337cedcd237"_guid)->name, "IP_LOCAL_ADDRESS_TYPE");
  EXPECT_EQ(FindField("4cd62a49-59c3-4969-b7f3-bda5d32890a4"_guid)->name, "IP_LOCAL_INTERFACE");
  EXPECT_EQ(FindField("0c1ba1af-5765-453f-af22-a8f791ac775b"_guid)->name, "IP_LOCAL_PORT");
  EXPECT_EQ(FindField("3971ef2b-623e-4f9a-8cb1-6e79b806b9a7"_guid)->name, "IP_PROTOCOL");
  EXPECT_EQ(FindField("b235ae9a-1d64-49b8-a44c-5ff3d9095045"_guid)->name, "IP_REMOTE_ADDRESS");
  EXPECT_EQ(FindField("c35a604d-d22b-4e1a-91b4-68f674ee674b"_guid)->name, "IP_REMOTE_PORT");
  EXPECT_EQ(FindField("ae96897e-2e94-4bc9-b313-b27ee80e574d"_guid)->name, "IP_SOURCE_ADDRESS");
  EXPECT_EQ(FindField("0cd42473-d621-4be3-ae8c-72a348d283e1"_guid)->name, "SUB_INTERFACE_INDEX");
}

TEST(Fields, AnUnknownNameOrKeyIsNoField) {
  EXPECT_EQ(FindField("IP_REMOTE"), nullptr);
  EXPECT_EQ(FindField(""), nullptr);
  EXPECT_EQ(FindField(GUID{}), nullptr);
  EXPECT_EQ(FindField("ffffffff-ffff-ffff-ffff-ffffffffffff"_guid), nullptr);
}

TEST(Fields, AnAliasLeadsToTheFieldOfTheSameKey) {
  EXPECT_EQ(kFieldAliases.size(), 7u);
  EXPECT_EQ(FindField("ALE_SIO_FIREWALL_SOCKET_PROPERTY")->name, "ALE_SIO_FIREWALL_SYSTEM_PORT");
  EXPECT_EQ(FindField("ARRIVAL_SUB_INTERFACE_INDEX")->name, "SUB_INTERFACE_INDEX");
  EXPECT_EQ(FindField("ICMP_CODE")->name, "IP_REMOTE_PORT");
  EXPECT_EQ(FindField("ICMP_TYPE")->name, "IP_LOCAL_PORT");
  EXPECT_EQ(FindField("LOCAL_INTERFACE_INDEX")->name, "INTERFACE_INDEX");
  EXPECT_EQ(FindField("LOCAL_INTERFACE_TYPE")->name, "INTERFACE_TYPE");
  EXPECT_EQ(FindField("LOCAL_TUNNEL_TYPE")->name, "TUNNEL_TYPE");
}

TEST(Fields, AddressesOfTheLayersIpVersionHaveNoTypeOfTheirOwn) {
  EXPECT_THAT(NamesOfType(FWP_EMPTY),
              ElementsAre("EMBEDDED_REMOTE_ADDRESS", "IP_DESTINATION_ADDRESS", "IP_LOCAL_ADDRESS",
                          "IP_REMOTE_ADDRESS", "IP_SOURCE_ADDRESS"));
}

TEST(Fields, AddressesAndWordsOfFlagsAreKnown) {
  EXPECT_THAT(
      NamesOfKind(FWPM_FIELD_IP_ADDRESS),
      ElementsAre("EMBEDDED_REMOTE_ADDRESS", "IP_DESTINATION_ADDRESS", "IP_LOCAL_ADDRESS",
                  "IP_REMOTE_ADDRESS", "IP_SOURCE_ADDRESS", "IP_LOCAL_ADDRESS_V4", "IP_LOCAL_ADDRESS_V6",
                  "IP_REMOTE_ADDRESS_V4", "IP_REMOTE_ADDRESS_V6", "RESERVED4", "RESERVED5"));
  EXPECT_THAT(NamesOfKind(FWPM_FIELD_FLAGS), ElementsAre("ALE_SIO_FIREWALL_SYSTEM_PORT", "FLAGS",
                                                         "REAUTHORIZE_REASON", "L2_FLAGS", "RPC_EP_FLAGS"));
}

TEST(Fields, TypesOfUpToSixteenBits) {
  EXPECT_THAT(NamesOfType(FWP_UINT8),
              ElementsAre("EMBEDDED_LOCAL_ADDRESS_TYPE", "EMBEDDED_PROTOCOL", "IP_DESTINATION_ADDRESS_TYPE",
                          "IP_LOCAL_ADDRESS_TYPE", "IP_PROTOCOL", "MAC_DESTINATION_ADDRESS_TYPE",
                          "MAC_LOCAL_ADDRESS_TYPE", "MAC_REMOTE_ADDRESS_TYPE", "MAC_SOURCE_ADDRESS_TYPE",
                          "RESERVED11", "RESERVED13", "RPC_AUTH_LEVEL", "RPC_AUTH_TYPE", "RPC_PROTOCOL",
                          "VSWITCH_DESTINATION_INTERFACE_TYPE", "VSWITCH_NETWORK_TYPE",
                          "VSWITCH_SOURCE_INTERFACE_TYPE"));
  EXPECT_THAT(
      NamesOfType(FWP_UINT16),
      ElementsAre("EMBEDDED_LOCAL_PORT", "EMBEDDED_REMOTE_PORT", "IP_LOCAL_PORT", "IP_REMOTE_PORT",
                  "ORIGINAL_ICMP_TYPE", "ETHER_TYPE", "IP_DESTINATION_PORT", "IP_SOURCE_PORT", "RESERVED6",
                  "RESERVED8", "RPC_IF_VERSION", "RPC_OPNUM", "RPC_SERVER_PORT", "VLAN_ID"));
}

TEST(Fields, TypesOfThirtyTwoBits) {
  EXPECT_THAT(
      NamesOfType(FWP_UINT32),
      ElementsAre("ALE_NAP_CONTEXT", "ALE_PROMISCUOUS_MODE", "ALE_SIO_FIREWALL_SYSTEM_PORT",
                  "ARRIVAL_INTERFACE_INDEX", "ARRIVAL_INTERFACE_PROFILE_ID", "ARRIVAL_INTERFACE_TYPE",
                  "ARRIVAL_TUNNEL_TYPE", "COMPARTMENT_ID", "CURRENT_PROFILE_ID",
                  "DESTINATION_INTERFACE_INDEX", "DESTINATION_SUB_INTERFACE_INDEX", "DIRECTION", "FLAGS",
                  "INTERFACE_INDEX", "INTERFACE_TYPE", "LOCAL_INTERFACE_PROFILE_ID",
                  "NEXTHOP_INTERFACE_INDEX", "NEXTHOP_INTERFACE_PROFILE_ID", "NEXTHOP_INTERFACE_TYPE",
                  "NEXTHOP_SUB_INTERFACE_INDEX", "NEXTHOP_TUNNEL_TYPE", "ORIGINAL_PROFILE_ID",
                  "REAUTHORIZE_REASON", "SOURCE_INTERFACE_INDEX", "SOURCE_SUB_INTERFACE_INDEX",
                  "SUB_INTERFACE_INDEX", "TUNNEL_TYPE", "AUTHENTICATION_TYPE", "CLIENT_CERT_KEY_LENGTH",
                  "IP_LOCAL_ADDRESS_V4", "IP_REMOTE_ADDRESS_V4", "KM_AUTH_NAP_CONTEXT", "KM_MODE", "KM_TYPE",
                  "L2_FLAGS", "NDIS_MEDIA_TYPE", "NDIS_PHYSICAL_MEDIA_TYPE", "NDIS_PORT", "QM_MODE",
                  "RESERVED4", "RPC_EP_FLAGS", "RPC_IF_FLAG", "SEC_ENCRYPT_ALGORITHM", "SEC_KEY_SIZE",
                  "VSWITCH_TENANT_NETWORK_ID", "ALE_REAUTH_REASON"));
}

TEST(Fields, TypesOfSixtyFourBits) {
  EXPECT_THAT(NamesOfType(FWP_UINT64),
              ElementsAre("INTERFACE_QUARANTINE_EPOCH", "IP_ARRIVAL_INTERFACE", "IP_FORWARD_INTERFACE",
                          "IP_LOCAL_INTERFACE", "IP_NEXTHOP_INTERFACE", "IP_PHYSICAL_ARRIVAL_INTERFACE",
                          "IP_PHYSICAL_NEXTHOP_INTERFACE", "RESERVED12"));
}

TEST(Fields, TypesByPointerToOtherData) {
  EXPECT_THAT(NamesOfType(FWP_BYTE_ARRAY6_TYPE),
              ElementsAre("INTERFACE_MAC_ADDRESS", "MAC_DESTINATION_ADDRESS", "MAC_LOCAL_ADDRESS",
                          "MAC_REMOTE_ADDRESS", "MAC_SOURCE_ADDRESS"));
  EXPECT_THAT(NamesOfType(FWP_BYTE_ARRAY16_TYPE),
              ElementsAre("DCOM_APP_ID", "IPSEC_POLICY_KEY", "IP_LOCAL_ADDRESS_V6", "IP_REMOTE_ADDRESS_V6",
                          "PROCESS_WITH_RPC_IF_UUID", "RESERVED5", "RPC_IF_UUID"));
  EXPECT_THAT(NamesOfType(FWP_BYTE_BLOB_TYPE),
              ElementsAre("ALE_APP_ID", "ALE_EFFECTIVE_NAME", "ALE_ORIGINAL_APP_ID",
                          "ALE_SECURITY_ATTRIBUTE_FQBN_VALUE", "IPSEC_SECURITY_REALM_ID", "PEER_NAME",
                          "CLIENT_CERT_OID", "IMAGE_NAME", "PIPE", "RESERVED0", "RESERVED1", "RESERVED2",
                          "RESERVED3", "RESERVED7", "RESERVED9", "RESERVED10", "RESERVED14", "RESERVED15",
                          "RPC_EP_VALUE", "RPC_PROXY_AUTH_TYPE", "RPC_SERVER_NAME",
                          "VSWITCH_DESTINATION_INTERFACE_ID", "VSWITCH_DESTINATION_VM_ID", "VSWITCH_ID",
                          "VSWITCH_SOURCE_INTERFACE_ID", "VSWITCH_SOURCE_VM_ID"));
  EXPECT_THAT(NamesOfType(FWP_SID), ElementsAre("ALE_PACKAGE_ID"));
}

TEST(Fields, WhoSomebodyIsIsAToken) {
  EXPECT_THAT(NamesOfType(FWP_TOKEN_INFORMATION_TYPE),
              ElementsAre("CLIENT_TOKEN", "REMOTE_ID", "REMOTE_USER_TOKEN"));
  EXPECT_THAT(
      NamesOfType(FWP_TOKEN_ACCESS_INFORMATION_TYPE),
      ElementsAre("ALE_PACKAGE_FAMILY_NAME", "ALE_REMOTE_MACHINE_ID", "ALE_REMOTE_USER_ID", "ALE_USER_ID"));
}

TEST(Fields, BitmapsHaveTheTypeOfRecentHeaders) {
  EXPECT_THAT(NamesOfType(static_cast<FWP_DATA_TYPE>(19)),
              ElementsAre("BITMAP_IP_LOCAL_ADDRESS", "BITMAP_IP_LOCAL_PORT", "BITMAP_IP_REMOTE_ADDRESS",
                          "BITMAP_IP_REMOTE_PORT"));
}

}  // namespace
}  // namespace Catalog
