/**
 * @file
 * The fields that a filter's conditions can test.
 */
#pragma once

#include <WfpPlatform.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "catalog/Guid.h"
#include "catalog/Keys.h"

namespace Catalog {

/// What a field holds, where its type alone does not tell.
enum class FieldKind {
  Plain,
  IpAddress,  ///< the type depends on the IP version of the layer, see TypesAt
  Flags,      ///< a word of FWP_CONDITION_FLAG_* bits
  Token,      ///< identifies somebody: a condition is a security descriptor that grants access or does not
};

/// A field and the types that a condition on it can have.
struct Field {
  std::string_view name;  ///< less the prefix FWPM_CONDITION_
  GUID key;
  FWP_DATA_TYPE type;  ///< of a condition's value; FWP_EMPTY for an IpAddress
  FieldKind kind = FieldKind::Plain;
  std::optional<FWP_DATA_TYPE> alternativeType = std::nullopt;
};

/// A second name for the key of a field.
struct FieldAlias {
  std::string_view alias;
  std::string_view name;
};

/// FWP_BITMAP_INDEX_TYPE, which older headers lack.
inline constexpr auto kBitmapIndexType = static_cast<FWP_DATA_TYPE>(19);

inline constexpr auto kFields = std::to_array<Field>({
    {"ALE_APP_ID", kAleAppIdFieldKey, FWP_BYTE_BLOB_TYPE},
    {"ALE_EFFECTIVE_NAME", "b1277b9a-b781-40fc-9671-e5f1b989f34e"_guid, FWP_BYTE_BLOB_TYPE},
    {"ALE_NAP_CONTEXT", "46275a9d-c03f-4d77-b784-1c57f4d02753"_guid, FWP_UINT32},
    {"ALE_ORIGINAL_APP_ID", "0e6cd086-e1fb-4212-842f-8a9f993fb3f6"_guid, FWP_BYTE_BLOB_TYPE},
    // Documented with a security descriptor; as the headers describe it, a string in a blob.
    {"ALE_PACKAGE_FAMILY_NAME", "81bc78fb-f28d-4886-a604-6acc261f261b"_guid, FWP_SECURITY_DESCRIPTOR_TYPE,
     FieldKind::Plain, FWP_BYTE_BLOB_TYPE},
    {"ALE_PACKAGE_ID", "71bc78fa-f17c-4997-a602-6abb261f351c"_guid, FWP_SID},
    {"ALE_PROMISCUOUS_MODE", "1c974776-7182-46e9-afd3-b02910e30334"_guid, FWP_UINT32},
    {"ALE_REAUTH_REASON", "b482d227-1979-4a98-8044-18bbe6237542"_guid, FWP_UINT32},
    {"ALE_REMOTE_MACHINE_ID", "1aa47f51-7f93-4508-a271-81abb00c9cab"_guid, FWP_SECURITY_DESCRIPTOR_TYPE,
     FieldKind::Token},
    {"ALE_REMOTE_USER_ID", "f63073b7-0189-4ab0-95a4-6123cbfab862"_guid, FWP_SECURITY_DESCRIPTOR_TYPE,
     FieldKind::Token},
    {"ALE_SECURITY_ATTRIBUTE_FQBN_VALUE", "37a57699-5883-4963-92b8-3e704688b0ad"_guid, FWP_BYTE_BLOB_TYPE},
    {"ALE_SIO_FIREWALL_SYSTEM_PORT", "b9f4e088-cb98-4efb-a2c7-ad07332643db"_guid, FWP_UINT32},
    {"ALE_USER_ID", "af043a0a-b34d-4f86-979c-c90371af6e66"_guid, FWP_SECURITY_DESCRIPTOR_TYPE,
     FieldKind::Token},
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
    {"EMBEDDED_REMOTE_ADDRESS", "77ee4b39-3273-4671-b63b-ab6feb66eeb6"_guid, FWP_EMPTY, FieldKind::IpAddress},
    {"EMBEDDED_REMOTE_PORT", "cae4d6a1-2968-40ed-a4ce-547160dda88d"_guid, FWP_UINT16},
    {"FLAGS", kFlagsFieldKey, FWP_UINT32, FieldKind::Flags},
    {"INTERFACE_INDEX", "667fd755-d695-434a-8af5-d3835a1259bc"_guid, FWP_UINT32},
    {"INTERFACE_QUARANTINE_EPOCH", "cce68d5e-053b-43a8-9a6f-33384c28e4f6"_guid, FWP_UINT64},
    {"INTERFACE_TYPE", "daf8cd14-e09e-4c93-a5ae-c5c13b73ffca"_guid, FWP_UINT32},
    {"IPSEC_SECURITY_REALM_ID", "37a57700-5884-4964-92b8-3e704688b0ad"_guid, FWP_BYTE_BLOB_TYPE},
    {"IP_ARRIVAL_INTERFACE", kIpArrivalInterfaceFieldKey, FWP_UINT64},
    {"IP_DESTINATION_ADDRESS", "2d79133b-b390-45c6-8699-acaceaafed33"_guid, FWP_EMPTY, FieldKind::IpAddress},
    {"IP_DESTINATION_ADDRESS_TYPE", "1ec1b7c9-4eea-4f5e-b9ef-76beaaaf17ee"_guid, FWP_UINT8},
    {"IP_FORWARD_INTERFACE", "1076b8a5-6323-4c5e-9810-e8d3fc9e6136"_guid, FWP_UINT64},
    {"IP_LOCAL_ADDRESS", kIpLocalAddressFieldKey, FWP_EMPTY, FieldKind::IpAddress},
    {"IP_LOCAL_ADDRESS_TYPE", "6ec7f6c4-376b-45d7-9e9c-d337cedcd237"_guid, FWP_UINT8},
    {"IP_LOCAL_INTERFACE", kIpLocalInterfaceFieldKey, FWP_UINT64},
    {"IP_LOCAL_PORT", kIpLocalPortFieldKey, FWP_UINT16},
    {"IP_NEXTHOP_INTERFACE", kIpNextHopInterfaceFieldKey, FWP_UINT64},
    {"IP_PHYSICAL_ARRIVAL_INTERFACE", "da50d5c8-fa0d-4c89-b032-6e62136d1e96"_guid, FWP_UINT64},
    {"IP_PHYSICAL_NEXTHOP_INTERFACE", "f09bd5ce-5150-48be-b098-c25152fb1f92"_guid, FWP_UINT64},
    {"IP_PROTOCOL", kIpProtocolFieldKey, FWP_UINT8},
    {"IP_REMOTE_ADDRESS", kIpRemoteAddressFieldKey, FWP_EMPTY, FieldKind::IpAddress},
    {"IP_REMOTE_PORT", kIpRemotePortFieldKey, FWP_UINT16},
    {"IP_SOURCE_ADDRESS", "ae96897e-2e94-4bc9-b313-b27ee80e574d"_guid, FWP_EMPTY, FieldKind::IpAddress},
    {"LOCAL_INTERFACE_PROFILE_ID", "4ebf7562-9f18-4d06-9941-a7a625744d71"_guid, FWP_UINT32},
    {"NEXTHOP_INTERFACE_INDEX", "138e6888-7ab8-4d65-9ee8-0591bcf6a494"_guid, FWP_UINT32},
    {"NEXTHOP_INTERFACE_PROFILE_ID", "d7ff9a56-cdaa-472b-84db-d23963c1d1bf"_guid, FWP_UINT32},
    {"NEXTHOP_INTERFACE_TYPE", "97537c6c-d9a3-4767-a381-e942675cd920"_guid, FWP_UINT32},
    {"NEXTHOP_SUB_INTERFACE_INDEX", "ef8a6122-0577-45a7-9aaf-825fbeb4fb95"_guid, FWP_UINT32},
    {"NEXTHOP_TUNNEL_TYPE", "72b1a111-987b-4720-99dd-c7c576fa2d4c"_guid, FWP_UINT32},
    {"ORIGINAL_ICMP_TYPE", "076dfdbe-c56c-4f72-ae8a-2cfe7e5c8286"_guid, FWP_UINT16},
    {"ORIGINAL_PROFILE_ID", "46ea1551-2255-492b-8019-aabeee349f40"_guid, FWP_UINT32},
    {"PEER_NAME", "9b539082-eb90-4186-a6cc-de5b63235016"_guid, FWP_BYTE_BLOB_TYPE},
    {"REAUTHORIZE_REASON", "11205e8c-11ae-457a-8a44-477026dd764a"_guid, FWP_UINT32},
    {"SOURCE_INTERFACE_INDEX", "2311334d-c92d-45bf-9496-edf447820e2d"_guid, FWP_UINT32},
    {"SOURCE_SUB_INTERFACE_INDEX", "055edd9d-acd2-4361-8dab-f9525d97662f"_guid, FWP_UINT32},
    {"SUB_INTERFACE_INDEX", "0cd42473-d621-4be3-ae8c-72a348d283e1"_guid, FWP_UINT32},
    {"TUNNEL_TYPE", "77a40437-8779-4868-a261-f5a902f1c0cd"_guid, FWP_UINT32},
    // In recent headers, but not in the documentation of any layer.
    {"BITMAP_IP_LOCAL_ADDRESS", "16ebc3df-957a-452e-a1fc-3d2ff6a730ba"_guid, kBitmapIndexType},
    {"BITMAP_IP_LOCAL_PORT", "9f90a920-c3b5-4569-ba31-8bd3910dc656"_guid, kBitmapIndexType},
    {"BITMAP_IP_REMOTE_ADDRESS", "33f00e25-8eec-4531-a005-41b911f62452"_guid, kBitmapIndexType},
    {"BITMAP_IP_REMOTE_PORT", "2663d549-aaf2-46a2-8666-1e7667f86985"_guid, kBitmapIndexType},
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
