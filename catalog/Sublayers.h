/**
 * @file
 * The sublayers that come with the system.
 */
#pragma once

#include <WfpPlatform.h>

#include <array>
#include <optional>
#include <string_view>

#include "catalog/Guid.h"
#include "catalog/Keys.h"

namespace Catalog {

/// A sublayer that nobody can delete.
struct BuiltInSublayer {
  std::string_view name;  ///< less the prefix FWPM_SUBLAYER_
  GUID key;
  UINT16 weight;
  std::optional<GUID> providerKey = std::nullopt;
};

/// By rising weight: in the engine's order.
inline constexpr auto kBuiltInSublayers = std::to_array<BuiltInSublayer>({
    {"INSPECTION", kInspectionSublayerKey, 0},
    // Also named EDGE_TRAVERSAL.
    {"TEREDO", "ba69dc66-5176-4979-9c89-26a7b46a8327"_guid, 1},
    {"MPSSVC_WF", "b3cdd441-af90-41ba-a745-7c6008ff2301"_guid, 2, kWindowsFirewallProviderKey},
    {"MPSSVC_WSH", "b3cdd441-af90-41ba-a745-7c6008ff2300"_guid, 3, kServiceHardeningProviderKey},
    {"MPSSVC_QUARANTINE", "b3cdd441-af90-41ba-a745-7c6008ff2302"_guid, 4, kServiceHardeningProviderKey},
    {"MPSSVC_EDP", "09a47e38-fa97-471b-b123-18bcd7e65071"_guid, 5, kDataProtectionProviderKey},
    {"MPSSVC_TENANT_RESTRICTIONS", "1ec6c7e1-fdd9-478a-b55f-ff8ba1d2c17d"_guid, 6,
     kTenantRestrictionsProviderKey},
    {"MPSSVC_APP_ISOLATION", "ffe221c3-92a8-4564-a59f-dafb70756020"_guid, 7, kAppIsolationProviderKey},
    {"TCP_CHIMNEY_OFFLOAD", "337608b9-b7d5-4d5f-82f9-3618618bc058"_guid, 8192},
    {"TCP_TEMPLATES", "24421dcf-0ac5-4caa-9e14-50f6e3636af0"_guid, 8704},
    {"IPSEC_SECURITY_REALM", "37a57701-5884-4964-92b8-3e704688b0ad"_guid, 12288},
    {"SECURE_SOCKET", "15a66e17-3f3c-4f7b-aa6c-812aa613dd82"_guid, 16384},
    {"LIPS", "1b75c0ce-ff60-4711-a70f-b4958cc3b2d0"_guid, 32767},
    {"UNIVERSAL", kUniversalSublayerKey, 32768},
    {"IPSEC_DOSP", "e076d572-5d3d-48ef-802b-909eddb098bd"_guid, 34816},
    {"IPSEC_FORWARD_OUTBOUND_TUNNEL", "a5082e73-8f71-4559-8a9a-101cea04ef87"_guid, 36864},
    {"IPSEC_TUNNEL", "83f299ed-9ff4-4967-aff4-c309f4dab827"_guid, 40960},
    {"RPC_AUDIT", "758c84f4-fb48-4de9-9aeb-3ed9551ab1fd"_guid, 49152},
});

/// The built-in sublayer with a key; null if there is none.
const BuiltInSublayer* FindBuiltInSublayer(const GUID& key);

/// The built-in sublayer with a name; null if there is none.
const BuiltInSublayer* FindBuiltInSublayer(std::string_view name);

}  // namespace Catalog
