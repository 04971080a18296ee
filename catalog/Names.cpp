#include "catalog/Names.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

#include "catalog/Fields.h"
#include "catalog/Format.h"
#include "catalog/Layers.h"
#include "catalog/Sublayers.h"

namespace Catalog {
namespace {

struct NamedNumber {
  UINT32 number;
  std::string_view name;
};

constexpr auto kActions = std::to_array<NamedNumber>({
    {0x1001, "BLOCK"},
    {0x1002, "PERMIT"},
    {0x5003, "CALLOUT_TERMINATING"},
    {0x6004, "CALLOUT_INSPECTION"},
    {0x4005, "CALLOUT_UNKNOWN"},
    {0x2006, "CONTINUE"},
    {0x0007, "NONE"},
    {0x0008, "NONE_NO_MATCH"},
});

constexpr auto kMatches = std::to_array<NamedNumber>({
    {0, "EQUAL"},
    {1, "GREATER"},
    {2, "LESS"},
    {3, "GREATER_OR_EQUAL"},
    {4, "LESS_OR_EQUAL"},
    {5, "RANGE"},
    {6, "FLAGS_ALL_SET"},
    {7, "FLAGS_ANY_SET"},
    {8, "FLAGS_NONE_SET"},
    {9, "EQUAL_CASE_INSENSITIVE"},
    {10, "NOT_EQUAL"},
    {11, "PREFIX"},
    {12, "NOT_PREFIX"},
});

constexpr auto kDataTypes = std::to_array<NamedNumber>({
    {0, "EMPTY"},
    {1, "UINT8"},
    {2, "UINT16"},
    {3, "UINT32"},
    {4, "UINT64"},
    {5, "INT8"},
    {6, "INT16"},
    {7, "INT32"},
    {8, "INT64"},
    {9, "FLOAT"},
    {10, "DOUBLE"},
    {11, "BYTE_ARRAY16"},
    {12, "BYTE_BLOB"},
    {13, "SID"},
    {14, "SECURITY_DESCRIPTOR"},
    {15, "TOKEN_INFORMATION"},
    {16, "TOKEN_ACCESS_INFORMATION"},
    {17, "UNICODE_STRING"},
    {18, "BYTE_ARRAY6"},
    {19, "BITMAP_INDEX"},
    {20, "BITMAP_ARRAY64"},
    {0x100, "V4_ADDR_MASK"},
    {0x101, "V6_ADDR_MASK"},
    {0x102, "RANGE"},
});

constexpr auto kFilterFlags = std::to_array<NamedNumber>({
    {0x40, "INDEXED"},
    {0x20, "DISABLED"},
    {0x10, "PERMIT_IF_CALLOUT_UNREGISTERED"},
    {0x8, "CLEAR_ACTION_RIGHT"},
    {0x4, "HAS_PROVIDER_CONTEXT"},
    {0x2, "BOOTTIME"},
    {0x1, "PERSISTENT"},
});

constexpr auto kConditionFlags = std::to_array<NamedNumber>({
    {0x2000000, "IS_HONORING_POLICY_AUTHORIZE"},
    {0x1000000, "IS_RESERVED"},
    {0x800000, "IS_NON_APPCONTAINER_LOOPBACK"},
    {0x400000, "IS_APPCONTAINER_LOOPBACK"},
    {0x200000, "IS_PROXY_CONNECTION"},
    {0x100000, "IS_CONNECTION_REDIRECTED"},
    {0x80000, "IS_INBOUND_PASS_THRU"},
    {0x40000, "IS_OUTBOUND_PASS_THRU"},
    {0x20000, "IS_RECLASSIFY"},
    {0x10000, "IS_AUTH_FW"},
    {0x8000, "IS_PROMISCUOUS"},
    {0x4000, "IS_NAME_APP_SPECIFIED"},
    {0x400, "IS_REASSEMBLED"},
    {0x200, "IS_IMPLICIT_BIND"},
    {0x100, "REQUIRES_ALE_CLASSIFY"},
    {0x80, "IS_IPSEC_NATT_RECLASSIFY"},
    {0x40, "IS_FRAGMENT_GROUP"},
    {0x20, "IS_FRAGMENT"},
    {0x10, "IS_RAW_ENDPOINT"},
    {0x8, "IS_WILDCARD_BIND"},
    {0x4, "IS_REAUTHORIZE"},
    {0x2, "IS_IPSEC_SECURED"},
    {0x1, "IS_LOOPBACK"},
});

template <class Entry>
std::string NameOrKey(const Entry* entry, const GUID& key) {
  return entry == nullptr ? FormatGuid(key) : std::string(entry->name);
}

std::string NameOrNumber(std::span<const NamedNumber> table, UINT32 number) {
  const auto known = std::ranges::find(table, number, &NamedNumber::number);
  return known == table.end() ? FormatNumber(number) : std::string(known->name);
}

std::string BitNames(std::span<const NamedNumber> table, UINT32 bits) {
  std::string names;
  for (const auto& [bit, name] : table) {
    if ((bits & bit) == 0) continue;
    names.append(names.empty() ? "" : "|").append(name);
    bits &= ~bit;
  }
  if (bits != 0) names.append(names.empty() ? "" : "|").append(FormatHex(bits));
  return names.empty() ? "-" : names;
}

}  // namespace

std::string FormatGuid(const GUID& key) {
  const std::string digits = FormatHex(static_cast<UINT32>(key.Data1)).substr(2) +
                             FormatHex(UINT32{key.Data2} << 16 | key.Data3).substr(2) +
                             FormatBytes(key.Data4);
  return digits.substr(0, 8) + '-' + digits.substr(8, 4) + '-' + digits.substr(12, 4) + '-' +
         digits.substr(16, 4) + '-' + digits.substr(20);
}

std::string LayerName(const GUID& key) { return NameOrKey(FindLayer(key), key); }

std::string FieldName(const GUID& key) { return NameOrKey(FindField(key), key); }

std::string SublayerName(const GUID& key) { return NameOrKey(FindBuiltInSublayer(key), key); }

std::string ActionName(FWP_ACTION_TYPE action) { return NameOrNumber(kActions, action); }

std::string MatchName(FWP_MATCH_TYPE match) { return NameOrNumber(kMatches, static_cast<UINT32>(match)); }

std::string DataTypeName(FWP_DATA_TYPE type) { return NameOrNumber(kDataTypes, static_cast<UINT32>(type)); }

std::string FilterFlagNames(UINT32 flags) { return BitNames(kFilterFlags, flags); }

std::string ConditionFlagNames(UINT32 flags) { return BitNames(kConditionFlags, flags); }

}  // namespace Catalog
