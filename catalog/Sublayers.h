/**
 * @file
 * The sublayers that come with the system.
 */
#pragma once

#include <WfpPlatform.h>

#include <array>
#include <string_view>

#include "catalog/Guid.h"
#include "catalog/Keys.h"

namespace Catalog {

/// A sublayer that nobody can delete.
struct BuiltInSublayer {
  std::string_view name;  ///< less the prefix FWPM_SUBLAYER_
  GUID key;
};

inline constexpr auto kBuiltInSublayers = std::to_array<BuiltInSublayer>({
    {"UNIVERSAL", kUniversalSublayerKey},
    {"INSPECTION", kInspectionSublayerKey},
    {"RPC_AUDIT", "758c84f4-fb48-4de9-9aeb-3ed9551ab1fd"_guid},
    {"IPSEC_TUNNEL", "83f299ed-9ff4-4967-aff4-c309f4dab827"_guid},
    {"IPSEC_FORWARD_OUTBOUND_TUNNEL", "a5082e73-8f71-4559-8a9a-101cea04ef87"_guid},
    {"IPSEC_DOSP", "e076d572-5d3d-48ef-802b-909eddb098bd"_guid},
    {"IPSEC_SECURITY_REALM", "37a57701-5884-4964-92b8-3e704688b0ad"_guid},
    {"LIPS", "1b75c0ce-ff60-4711-a70f-b4958cc3b2d0"_guid},
    {"SECURE_SOCKET", "15a66e17-3f3c-4f7b-aa6c-812aa613dd82"_guid},
    {"TCP_CHIMNEY_OFFLOAD", "337608b9-b7d5-4d5f-82f9-3618618bc058"_guid},
    {"TCP_TEMPLATES", "24421dcf-0ac5-4caa-9e14-50f6e3636af0"_guid},
    // Also named EDGE_TRAVERSAL.
    {"TEREDO", "ba69dc66-5176-4979-9c89-26a7b46a8327"_guid},
    {"MPSSVC_WSH", "b3cdd441-af90-41ba-a745-7c6008ff2300"_guid},
    {"MPSSVC_WF", "b3cdd441-af90-41ba-a745-7c6008ff2301"_guid},
    {"MPSSVC_QUARANTINE", "b3cdd441-af90-41ba-a745-7c6008ff2302"_guid},
    {"MPSSVC_EDP", "09a47e38-fa97-471b-b123-18bcd7e65071"_guid},
    {"MPSSVC_TENANT_RESTRICTIONS", "1ec6c7e1-fdd9-478a-b55f-ff8ba1d2c17d"_guid},
    {"MPSSVC_APP_ISOLATION", "ffe221c3-92a8-4564-a59f-dafb70756020"_guid},
});

/// The built-in sublayer with a key; null if there is none.
const BuiltInSublayer* FindBuiltInSublayer(const GUID& key);

}  // namespace Catalog
