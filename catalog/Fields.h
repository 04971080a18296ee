/**
 * @file
 * The fields that a filter's conditions can test.
 */
#pragma once

#include <WfpPlatform.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "catalog/Guid.h"
#include "catalog/Keys.h"

namespace Catalog {

/// A field. What the same field holds differs between some layers: there LayerField in Layers.h counts.
struct Field {
  std::string_view name;  ///< less the prefix FWPM_CONDITION_
  GUID key;
  FWP_DATA_TYPE dataType;  ///< of what it holds; FWP_EMPTY for an IP address of the layer's IP version
  FWPM_FIELD_TYPE type = FWPM_FIELD_RAW_DATA;
};

/// A second name for the key of a field.
struct FieldAlias {
  std::string_view alias;
  std::string_view name;
};

/// FWP_BITMAP_INDEX_TYPE, which older headers lack.
inline constexpr auto kBitmapIndexType = static_cast<FWP_DATA_TYPE>(19);

inline constexpr auto kFields = std::to_array<Field>({
    // These keys were compared with a second list.
    {"ALE_APP_ID", kAleAppIdFieldKey, FWP_BYTE_BLOB_TYPE},
    {"ALE_EFFECTIVE_NAME", "b1277b9a-b781-40fc-9671-e5f1b989f34e"_guid, FWP_BYTE_BLOB_TYPE},
    {"ALE_NAP_CONTEXT", "46275a9d-c03f-4d77-b784-1c57f4d02753"_guid, FWP_UINT32},
    {"ALE_ORIGINAL_APP_ID", "0e6cd086-e1fb-4212-842f-8a9f993fb3f6"_guid, FWP_BYTE_BLOB_TYPE},
    {"ALE_PACKAGE_FAMILY_NAME", "81bc78fb-f28d-4886-a604-6acc261f261b"_guid,
     FWP_TOKEN_ACCESS_INFORMATION_TYPE},
    {"ALE_PACKAGE_ID", "71bc78fa-f17c-4997-a602-6abb261f351c"_guid, FWP_SID},
    {"ALE_PROMISCUOUS_MODE", "1c974776-7182-46e9-afd3-b02910e30334"_guid, FWP_UINT32},
    {"ALE_REMOTE_MACHINE_ID", "1aa47f51-7f93-4508-a271-81abb00c9cab"_guid, FWP_TOKEN_ACCESS_INFORMATION_TYPE},
    {"ALE_REMOTE_USER_ID", "f63073b7-0189-4ab0-95a4-6123cbfab862"_guid, FWP_TOKEN_ACCESS_INFORMATION_TYPE},
    {"ALE_SECURITY_ATTRIBUTE_FQBN_VALUE", "37a57699-5883-4963-92b8-3e704688b0ad"_guid, FWP_BYTE_BLOB_TYPE},
    {"ALE_SIO_FIREWALL_SYSTEM_PORT", "b9f4e088-cb98-4efb-a2c7-ad07332643db"_guid, FWP_UINT32,
     FWPM_FIELD_FLAGS},
    {"ALE_USER_ID", "af043a0a-b34d-4f86-979c-c90371af6e66"_guid, FWP_TOKEN_ACCESS_INFORMATION_TYPE},
    {"ARRIVAL_INTERFACE_INDEX", "cc088db3-1792-4a71-b0f9-037d21cd828b"_guid, FWP_UINT32},
    {"ARRIVAL_INTERFACE_PROFILE_ID", "cdfe6aab-c083-4142-8679-c08f95329c61"_guid, FWP_UINT32},
    {"ARRIVAL_INTERFACE_TYPE", "89f990de-e798-4e6d-ab76-7c9558292e6f"_guid, FWP_UINT32},
    {"ARRIVAL_TUNNEL_TYPE", "511166dc-7a8c-4aa7-b533-95ab59fb0340"_guid, FWP_UINT32},
    {"COMPARTMENT_ID", "35a791ab-04ac-4ff2-a6bb-da6cfac71806"_guid, FWP_UINT32},
    {"CURRENT_PROFILE_ID", "ab3033c9-c0e3-4759-937d-5758c65d4ae3"_guid, FWP_UINT32},
    {"DESTINATION_INTERFACE_INDEX", "35cf6522-4139-45ee-a0d5-67b80949d879"_guid, FWP_UINT32},
    {"DESTINATION_SUB_INTERFACE_INDEX", "2b7d4399-d4c7-4738-a2f5-e994b43da388"_guid, FWP_UINT32},
    {"DIRECTION", kDirectionFieldKey, FWP_UINT32},
    {"EMBEDDED_LOCAL_ADDRESS_TYPE", "4672a468-8a0a-4202-abb4-849e92e66809"_guid, FWP_UINT8},
    {"EMBEDDED_LOCAL_PORT", "bfca394d-acdb-484e-b8e6-2aff79757345"_guid, FWP_UINT16},
    {"EMBEDDED_PROTOCOL", "07784107-a29e-4c7b-9ec7-29c44afafdbc"_guid, FWP_UINT8},
    {"EMBEDDED_REMOTE_ADDRESS", "77ee4b39-3273-4671-b63b-ab6feb66eeb6"_guid, FWP_EMPTY,
     FWPM_FIELD_IP_ADDRESS},
    {"EMBEDDED_REMOTE_PORT", "cae4d6a1-2968-40ed-a4ce-547160dda88d"_guid, FWP_UINT16},
    {"FLAGS", kFlagsFieldKey, FWP_UINT32, FWPM_FIELD_FLAGS},
    {"INTERFACE_INDEX", "667fd755-d695-434a-8af5-d3835a1259bc"_guid, FWP_UINT32},
    {"INTERFACE_QUARANTINE_EPOCH", "cce68d5e-053b-43a8-9a6f-33384c28e4f6"_guid, FWP_UINT64},
    {"INTERFACE_TYPE", "daf8cd14-e09e-4c93-a5ae-c5c13b73ffca"_guid, FWP_UINT32},
    {"IPSEC_SECURITY_REALM_ID", "37a57700-5884-4964-92b8-3e704688b0ad"_guid, FWP_BYTE_BLOB_TYPE},
    {"IP_ARRIVAL_INTERFACE", kIpArrivalInterfaceFieldKey, FWP_UINT64},
    {"IP_DESTINATION_ADDRESS", "2d79133b-b390-45c6-8699-acaceaafed33"_guid, FWP_EMPTY, FWPM_FIELD_IP_ADDRESS},
    {"IP_DESTINATION_ADDRESS_TYPE", "1ec1b7c9-4eea-4f5e-b9ef-76beaaaf17ee"_guid, FWP_UINT8},
    {"IP_FORWARD_INTERFACE", "1076b8a5-6323-4c5e-9810-e8d3fc9e6136"_guid, FWP_UINT64},
    {"IP_LOCAL_ADDRESS", kIpLocalAddressFieldKey, FWP_EMPTY, FWPM_FIELD_IP_ADDRESS},
    {"IP_LOCAL_ADDRESS_TYPE", "6ec7f6c4-376b-45d7-9e9c-d337cedcd237"_guid, FWP_UINT8},
    {"IP_LOCAL_INTERFACE", kIpLocalInterfaceFieldKey, FWP_UINT64},
    {"IP_LOCAL_PORT", kIpLocalPortFieldKey, FWP_UINT16},
    {"IP_NEXTHOP_INTERFACE", kIpNextHopInterfaceFieldKey, FWP_UINT64},
    {"IP_PHYSICAL_ARRIVAL_INTERFACE", "da50d5c8-fa0d-4c89-b032-6e62136d1e96"_guid, FWP_UINT64},
    {"IP_PHYSICAL_NEXTHOP_INTERFACE", "f09bd5ce-5150-48be-b098-c25152fb1f92"_guid, FWP_UINT64},
    {"IP_PROTOCOL", kIpProtocolFieldKey, FWP_UINT8},
    {"IP_REMOTE_ADDRESS", kIpRemoteAddressFieldKey, FWP_EMPTY, FWPM_FIELD_IP_ADDRESS},
    {"IP_REMOTE_PORT", kIpRemotePortFieldKey, FWP_UINT16},
    {"IP_SOURCE_ADDRESS", "ae96897e-2e94-4bc9-b313-b27ee80e574d"_guid, FWP_EMPTY, FWPM_FIELD_IP_ADDRESS},
    {"LOCAL_INTERFACE_PROFILE_ID", "4ebf7562-9f18-4d06-9941-a7a625744d71"_guid, FWP_UINT32},
    {"NEXTHOP_INTERFACE_INDEX", "138e6888-7ab8-4d65-9ee8-0591bcf6a494"_guid, FWP_UINT32},
    {"NEXTHOP_INTERFACE_PROFILE_ID", "d7ff9a56-cdaa-472b-84db-d23963c1d1bf"_guid, FWP_UINT32},
    {"NEXTHOP_INTERFACE_TYPE", "97537c6c-d9a3-4767-a381-e942675cd920"_guid, FWP_UINT32},
    {"NEXTHOP_SUB_INTERFACE_INDEX", "ef8a6122-0577-45a7-9aaf-825fbeb4fb95"_guid, FWP_UINT32},
    {"NEXTHOP_TUNNEL_TYPE", "72b1a111-987b-4720-99dd-c7c576fa2d4c"_guid, FWP_UINT32},
    {"ORIGINAL_ICMP_TYPE", "076dfdbe-c56c-4f72-ae8a-2cfe7e5c8286"_guid, FWP_UINT16},
    {"ORIGINAL_PROFILE_ID", "46ea1551-2255-492b-8019-aabeee349f40"_guid, FWP_UINT32},
    {"PEER_NAME", "9b539082-eb90-4186-a6cc-de5b63235016"_guid, FWP_BYTE_BLOB_TYPE},
    {"REAUTHORIZE_REASON", "11205e8c-11ae-457a-8a44-477026dd764a"_guid, FWP_UINT32, FWPM_FIELD_FLAGS},
    {"SOURCE_INTERFACE_INDEX", "2311334d-c92d-45bf-9496-edf447820e2d"_guid, FWP_UINT32},
    {"SOURCE_SUB_INTERFACE_INDEX", "055edd9d-acd2-4361-8dab-f9525d97662f"_guid, FWP_UINT32},
    {"SUB_INTERFACE_INDEX", "0cd42473-d621-4be3-ae8c-72a348d283e1"_guid, FWP_UINT32},
    {"TUNNEL_TYPE", "77a40437-8779-4868-a261-f5a902f1c0cd"_guid, FWP_UINT32},
    // As the public headers have them; these keys were not compared with a second list.
    {"AUTHENTICATION_TYPE", "eb458cd5-da7b-4ef9-8d43-7b0a840332f2"_guid, FWP_UINT32},
    {"CLIENT_CERT_KEY_LENGTH", "a3ec00c7-05f4-4df7-91f2-5f60d91ff443"_guid, FWP_UINT32},
    {"CLIENT_CERT_OID", "c491ad5e-f882-4283-b916-436b103ff4ad"_guid, FWP_BYTE_BLOB_TYPE},
    {"CLIENT_TOKEN", "c228fc1e-403a-4478-be05-c9baa4c05ace"_guid, FWP_TOKEN_INFORMATION_TYPE},
    {"DCOM_APP_ID", "ff2e7b4d-3112-4770-b636-4d24ae3a6af2"_guid, FWP_BYTE_ARRAY16_TYPE},
    {"ETHER_TYPE", "fd08948d-a219-4d52-bb98-1a5540ee7b4e"_guid, FWP_UINT16},
    {"IMAGE_NAME", "d024de4d-deaa-4317-9c85-e40ef6e140c3"_guid, FWP_BYTE_BLOB_TYPE},
    {"INTERFACE_MAC_ADDRESS", "f6e63dce-1f4b-4c6b-b6ef-1165e71f8ee7"_guid, FWP_BYTE_ARRAY6_TYPE},
    {"IPSEC_POLICY_KEY", "ad37dee3-722f-45cc-a4e3-068048124452"_guid, FWP_BYTE_ARRAY16_TYPE},
    {"IP_DESTINATION_PORT", "ce6def45-60fb-4a7b-a304-af30a117000e"_guid, FWP_UINT16},
    {"IP_LOCAL_ADDRESS_V4", "03a629cb-6e52-49f8-9c41-5709633c09cf"_guid, FWP_UINT32, FWPM_FIELD_IP_ADDRESS},
    {"IP_LOCAL_ADDRESS_V6", "2381be84-7524-45b3-a05b-1e637d9c7a6a"_guid, FWP_BYTE_ARRAY16_TYPE,
     FWPM_FIELD_IP_ADDRESS},
    {"IP_REMOTE_ADDRESS_V4", "1febb610-3bcc-45e1-bc36-2e067e2cb186"_guid, FWP_UINT32, FWPM_FIELD_IP_ADDRESS},
    {"IP_REMOTE_ADDRESS_V6", "246e1d8c-8bee-4018-9b98-31d4582f3361"_guid, FWP_BYTE_ARRAY16_TYPE,
     FWPM_FIELD_IP_ADDRESS},
    {"IP_SOURCE_PORT", "a6afef91-3df4-4730-a214-f5426aebf821"_guid, FWP_UINT16},
    {"KM_AUTH_NAP_CONTEXT", "35d0ea0e-15ca-492b-900e-97fd46352cce"_guid, FWP_UINT32},
    {"KM_MODE", "feef4582-ef8f-4f7b-858b-9077d122de47"_guid, FWP_UINT32},
    {"KM_TYPE", "ff0f5f49-0ceb-481b-8638-1479791f3f2c"_guid, FWP_UINT32},
    {"L2_FLAGS", "7bc43cbf-37ba-45f1-b74a-82ff518eeb10"_guid, FWP_UINT32, FWPM_FIELD_FLAGS},
    {"MAC_DESTINATION_ADDRESS", "04ea2a93-858c-4027-b613-b43180c7859e"_guid, FWP_BYTE_ARRAY6_TYPE},
    {"MAC_DESTINATION_ADDRESS_TYPE", "ae052932-ef42-4e99-b129-f3b3139e34f7"_guid, FWP_UINT8},
    {"MAC_LOCAL_ADDRESS", "d999e981-7948-4c83-b742-c84e3b678f8f"_guid, FWP_BYTE_ARRAY6_TYPE},
    {"MAC_LOCAL_ADDRESS_TYPE", "cc31355c-3073-4ffb-a14f-79415cb1ead1"_guid, FWP_UINT8},
    {"MAC_REMOTE_ADDRESS", "408f2ed4-3a70-4b4d-92a6-415ac20e2f12"_guid, FWP_BYTE_ARRAY6_TYPE},
    {"MAC_REMOTE_ADDRESS_TYPE", "027fedb4-f1c1-4030-b564-ee777fd867ea"_guid, FWP_UINT8},
    {"MAC_SOURCE_ADDRESS", "7b795451-f1f6-4d05-b7cb-21779d802336"_guid, FWP_BYTE_ARRAY6_TYPE},
    {"MAC_SOURCE_ADDRESS_TYPE", "5c1b72e4-299e-4437-a298-bc3f014b3dc2"_guid, FWP_UINT8},
    {"NDIS_MEDIA_TYPE", "cb31cef1-791d-473b-89d1-61c5984304a0"_guid, FWP_UINT32},
    {"NDIS_PHYSICAL_MEDIA_TYPE", "34c79823-c229-44f2-b83c-74020882ae77"_guid, FWP_UINT32},
    {"NDIS_PORT", "db7bb42b-2dac-4cd4-a59a-e0bdce1e6834"_guid, FWP_UINT32},
    {"PIPE", "1bd0741d-e3df-4e24-8634-762046eef6eb"_guid, FWP_BYTE_BLOB_TYPE},
    {"PROCESS_WITH_RPC_IF_UUID", "e31180a8-bbbd-4d14-a65e-7157b06233bb"_guid, FWP_BYTE_ARRAY16_TYPE},
    {"QM_MODE", "f64fc6d1-f9cb-43d2-8a5f-e13bc894f265"_guid, FWP_UINT32},
    {"REMOTE_ID", "f68166fd-0682-4c89-b8f5-86436c7ef9b7"_guid, FWP_TOKEN_INFORMATION_TYPE},
    {"REMOTE_USER_TOKEN", "9bf0ee66-06c9-41b9-84da-288cb43af51f"_guid, FWP_TOKEN_INFORMATION_TYPE},
    {"RESERVED0", "678f4deb-45af-4882-93fe-19d4729d9834"_guid, FWP_BYTE_BLOB_TYPE},
    {"RESERVED1", "d818f827-5c69-48eb-bf80-d86b17755f97"_guid, FWP_BYTE_BLOB_TYPE},
    {"RESERVED2", "53d4123d-e15b-4e84-b7a8-dce16f7b62d9"_guid, FWP_BYTE_BLOB_TYPE},
    {"RESERVED3", "7f6e8ca3-6606-4932-97c7-e1f20710af3b"_guid, FWP_BYTE_BLOB_TYPE},
    {"RESERVED4", "5f58e642-b937-495e-a94b-f6b051a49250"_guid, FWP_UINT32, FWPM_FIELD_IP_ADDRESS},
    {"RESERVED5", "9ba8f6cd-f77c-43e6-8847-11939dc5db5a"_guid, FWP_BYTE_ARRAY16_TYPE, FWPM_FIELD_IP_ADDRESS},
    {"RESERVED6", "f13d84bd-59d5-44c4-8817-5ecdae1805bd"_guid, FWP_UINT16},
    {"RESERVED7", "65a0f930-45dd-4983-aa33-efc7b611af08"_guid, FWP_BYTE_BLOB_TYPE},
    {"RESERVED8", "4f424974-0c12-4816-9b47-9a547db39a32"_guid, FWP_UINT16},
    {"RESERVED9", "ce78e10f-13ff-4c70-8643-36ad1879afa3"_guid, FWP_BYTE_BLOB_TYPE},
    {"RESERVED10", "b979e282-d621-4c8c-b184-b105a61c36ce"_guid, FWP_BYTE_BLOB_TYPE},
    {"RESERVED11", "2d62ee4d-023d-411f-9582-43acbb795975"_guid, FWP_UINT8},
    {"RESERVED12", "a3677c32-7e35-4ddc-93da-e8c33fc923c7"_guid, FWP_UINT64},
    {"RESERVED13", "335a3e90-84aa-42f5-9e6f-59309536a44c"_guid, FWP_UINT8},
    {"RESERVED14", "30e44da2-2f1a-4116-a559-f907de83604a"_guid, FWP_BYTE_BLOB_TYPE},
    {"RESERVED15", "bab8340f-afe0-43d1-80d8-5ca456962de3"_guid, FWP_BYTE_BLOB_TYPE},
    {"RPC_AUTH_LEVEL", "e5a0aed5-59ac-46ea-be05-a5f05ecf446e"_guid, FWP_UINT8},
    {"RPC_AUTH_TYPE", "daba74ab-0d67-43e7-986e-75b84f82f594"_guid, FWP_UINT8},
    {"RPC_EP_FLAGS", "218b814a-0a39-49b8-8e71-c20c39c7dd2e"_guid, FWP_UINT32, FWPM_FIELD_FLAGS},
    {"RPC_EP_VALUE", "dccea0b9-0886-4360-9c6a-ab043a24fba9"_guid, FWP_BYTE_BLOB_TYPE},
    {"RPC_IF_FLAG", "238a8a32-3199-467d-871c-272621ab3896"_guid, FWP_UINT32},
    {"RPC_IF_UUID", "7c9c7d9f-0075-4d35-a0d1-8311c4cf6af1"_guid, FWP_BYTE_ARRAY16_TYPE},
    {"RPC_IF_VERSION", "eabfd9b7-1262-4a2e-adaa-5f96f6fe326d"_guid, FWP_UINT16},
    {"RPC_OPNUM", "d58efb76-aab7-4148-a87e-9581134129b9"_guid, FWP_UINT16},
    {"RPC_PROTOCOL", "2717bc74-3a35-4ce7-b7ef-c838fabdec45"_guid, FWP_UINT8},
    {"RPC_PROXY_AUTH_TYPE", "40953fe2-8565-4759-8488-1771b4b4b5db"_guid, FWP_BYTE_BLOB_TYPE},
    {"RPC_SERVER_NAME", "b605a225-c3b3-48c7-9833-7aefa9527546"_guid, FWP_BYTE_BLOB_TYPE},
    {"RPC_SERVER_PORT", "8090f645-9ad5-4e3b-9f9f-8023ca097909"_guid, FWP_UINT16},
    {"SEC_ENCRYPT_ALGORITHM", "0d306ef0-e974-4f74-b5c7-591b0da7d562"_guid, FWP_UINT32},
    {"SEC_KEY_SIZE", "4772183b-ccf8-4aeb-bce1-c6c6161c8fe4"_guid, FWP_UINT32},
    {"VLAN_ID", "938eab21-3618-4e64-9ca5-2141ebda1ca2"_guid, FWP_UINT16},
    {"VSWITCH_DESTINATION_INTERFACE_ID", "8ed48be4-c926-49f6-a4f6-ef3030e3fc16"_guid, FWP_BYTE_BLOB_TYPE},
    {"VSWITCH_DESTINATION_INTERFACE_TYPE", "fa9b3f06-2f1a-4c57-9e68-a7098b28dbfe"_guid, FWP_UINT8},
    {"VSWITCH_DESTINATION_VM_ID", "6106aace-4de1-4c84-9671-3637f8bcf731"_guid, FWP_BYTE_BLOB_TYPE},
    {"VSWITCH_ID", "c4a414ba-437b-4de6-9946-d99c1b95b312"_guid, FWP_BYTE_BLOB_TYPE},
    {"VSWITCH_NETWORK_TYPE", "11d48b4b-e77a-40b4-9155-392c906c2608"_guid, FWP_UINT8},
    {"VSWITCH_SOURCE_INTERFACE_ID", "7f4ef24b-b2c1-4938-ba33-a1ecbed512ba"_guid, FWP_BYTE_BLOB_TYPE},
    {"VSWITCH_SOURCE_INTERFACE_TYPE", "e6b040a2-edaf-4c36-908b-f2f58ae43807"_guid, FWP_UINT8},
    {"VSWITCH_SOURCE_VM_ID", "9c2a9ec2-9fc6-42bc-bdd8-406d4da0be64"_guid, FWP_BYTE_BLOB_TYPE},
    {"VSWITCH_TENANT_NETWORK_ID", "dc04843c-79e6-4e44-a025-65b9bb0f9f94"_guid, FWP_UINT32},
    // Very likely what Windows 10 has beyond the other versions.
    {"BITMAP_IP_LOCAL_ADDRESS", "16ebc3df-957a-452e-a1fc-3d2ff6a730ba"_guid, kBitmapIndexType},
    {"BITMAP_IP_LOCAL_PORT", "9f90a920-c3b5-4569-ba31-8bd3910dc656"_guid, kBitmapIndexType},
    {"BITMAP_IP_REMOTE_ADDRESS", "33f00e25-8eec-4531-a005-41b911f62452"_guid, kBitmapIndexType},
    {"BITMAP_IP_REMOTE_PORT", "2663d549-aaf2-46a2-8666-1e7667f86985"_guid, kBitmapIndexType},
    // In the documentation, but at no layer of a live engine.
    {"ALE_REAUTH_REASON", "b482d227-1979-4a98-8044-18bbe6237542"_guid, FWP_UINT32},
});

inline constexpr auto kFieldAliases = std::to_array<FieldAlias>({
    {"ALE_SIO_FIREWALL_SOCKET_PROPERTY", "ALE_SIO_FIREWALL_SYSTEM_PORT"},
    {"ARRIVAL_SUB_INTERFACE_INDEX", "SUB_INTERFACE_INDEX"},
    {"ICMP_CODE", "IP_REMOTE_PORT"},
    {"ICMP_TYPE", "IP_LOCAL_PORT"},
    {"LOCAL_INTERFACE_INDEX", "INTERFACE_INDEX"},
    {"LOCAL_INTERFACE_TYPE", "INTERFACE_TYPE"},
    {"LOCAL_TUNNEL_TYPE", "TUNNEL_TYPE"},
});

/// The field of a name or alias; null if there is none.
constexpr const Field* FindField(std::string_view name) {
  const auto alias = std::ranges::find(kFieldAliases, name, &FieldAlias::alias);
  const auto field =
      std::ranges::find(kFields, alias == kFieldAliases.end() ? name : alias->name, &Field::name);
  return field == kFields.end() ? nullptr : &*field;
}

/// The field with a key; null if there is none.
const Field* FindField(const GUID& key);

}  // namespace Catalog
