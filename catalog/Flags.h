/**
 * @file
 * The flags of the engine's objects, by name.
 */
#pragma once

#include <WfpPlatform.h>

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace Catalog {

/// A flag. Names are less their prefix, such as FWPM_FILTER_FLAG_.
struct Flag {
  std::string_view name;
  std::optional<UINT32> bit;  ///< none: live engines show the name, but no public header gives a value
};

/// FWPM_FILTER_FLAG_*
inline constexpr auto kFilterFlags = std::to_array<Flag>({
    {"PERSISTENT", 0x1},
    {"BOOTTIME", 0x2},
    {"HAS_PROVIDER_CONTEXT", 0x4},
    {"CLEAR_ACTION_RIGHT", 0x8},
    {"PERMIT_IF_CALLOUT_UNREGISTERED", 0x10},
    {"DISABLED", 0x20},
    {"INDEXED", 0x40},
    {"HAS_SECURITY_REALM_PROVIDER_CONTEXT", 0x80},
    {"SYSTEMOS_ONLY", 0x100},
    {"GAMEOS_ONLY", 0x200},
    {"SILENT_MODE", 0x400},
    {"IPSEC_NO_ACQUIRE_INITIATE", 0x800},
    {"RESERVED0", 0x1000},
    {"RESERVED1", 0x2000},
    {"RESERVED2", 0x4000},
    // Very likely two of the three reserved ones.
    {"HAS_FILTER_ORIGIN", std::nullopt},
    {"HAS_PACKAGE_ID_CONDITION_CONVERTED_TO_PFN", std::nullopt},
});

/// FWPM_PROVIDER_FLAG_*
inline constexpr auto kProviderFlags = std::to_array<Flag>({{"PERSISTENT", 0x1}, {"DISABLED", 0x10}});

/// FWPM_SUBLAYER_FLAG_*
inline constexpr auto kSublayerFlags = std::to_array<Flag>({{"PERSISTENT", 0x1}});

/// FWPM_LAYER_FLAG_*, which older headers lack.
inline constexpr UINT32 kKernelLayerFlag = 0x1;
inline constexpr UINT32 kBuiltInLayerFlag = 0x2;
inline constexpr UINT32 kClassifyMostlyLayerFlag = 0x4;
inline constexpr UINT32 kBufferedLayerFlag = 0x8;
inline constexpr auto kLayerFlags = std::to_array<Flag>({
    {"KERNEL", kKernelLayerFlag},
    {"BUILTIN", kBuiltInLayerFlag},
    {"CLASSIFY_MOSTLY", kClassifyMostlyLayerFlag},
    {"BUFFERED", kBufferedLayerFlag},
});

/// FWPM_CALLOUT_FLAG_* from 0x10000 on; below that FWP_CALLOUT_FLAG_*, which its driver gives.
inline constexpr auto kCalloutFlags = std::to_array<Flag>({
    {"CONDITIONAL_ON_FLOW", 0x1},
    {"ALLOW_OFFLOAD", 0x2},
    {"ENABLE_COMMIT_ADD_NOTIFY", 0x4},
    {"ALLOW_MID_STREAM_INSPECTION", 0x8},
    {"ALLOW_RECLASSIFY", 0x10},
    {"RESERVED1", 0x20},
    {"ALLOW_RSC", 0x40},
    {"ALLOW_L2_BATCH_CLASSIFY", 0x80},
    {"ALLOW_USO", 0x100},
    {"ALLOW_URO", 0x200},
    {"RESERVED2", 0x400},
    {"PERSISTENT", 0x10000},
    {"USES_PROVIDER_CONTEXT", 0x20000},
    {"REGISTERED", 0x40000},
});

/// FWP_CONDITION_FLAG_*
inline constexpr auto kConditionFlags = std::to_array<Flag>({
    {"IS_LOOPBACK", 0x1},
    {"IS_IPSEC_SECURED", 0x2},
    {"IS_REAUTHORIZE", 0x4},
    {"IS_WILDCARD_BIND", 0x8},
    {"IS_RAW_ENDPOINT", 0x10},
    {"IS_FRAGMENT", 0x20},
    {"IS_FRAGMENT_GROUP", 0x40},
    {"IS_IPSEC_NATT_RECLASSIFY", 0x80},
    {"REQUIRES_ALE_CLASSIFY", 0x100},
    {"IS_IMPLICIT_BIND", 0x200},
    {"IS_REASSEMBLED", 0x400},
    {"IS_NAME_APP_SPECIFIED", 0x4000},
    {"IS_PROMISCUOUS", 0x8000},
    {"IS_AUTH_FW", 0x10000},
    {"IS_RECLASSIFY", 0x20000},
    {"IS_OUTBOUND_PASS_THRU", 0x40000},
    {"IS_INBOUND_PASS_THRU", 0x80000},
    {"IS_CONNECTION_REDIRECTED", 0x100000},
    {"IS_PROXY_CONNECTION", 0x200000},
    {"IS_APPCONTAINER_LOOPBACK", 0x400000},
    {"IS_NON_APPCONTAINER_LOOPBACK", 0x800000},
    {"IS_RESERVED", 0x1000000},
    {"IS_HONORING_POLICY_AUTHORIZE", 0x2000000},
});

/// All bits that have a name.
constexpr UINT32 NamedBits(std::span<const Flag> flags) {
  UINT32 bits = 0;
  for (const Flag& flag : flags) {
    bits |= flag.bit.value_or(0);
  }
  return bits;
}

/// The flag with a name; null if there is none.
const Flag* FindFlag(std::span<const Flag> flags, std::string_view name);

/// "CLEAR_ACTION_RIGHT|PERSISTENT", from the highest bit to the lowest; bits without a name in hexadecimal at
/// the end; "-" for none.
std::string FlagNames(std::span<const Flag> flags, UINT32 bits);

}  // namespace Catalog
