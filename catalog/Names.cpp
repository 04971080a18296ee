#include "catalog/Names.h"

#include <algorithm>
#include <array>
#include <span>

#include "catalog/Callouts.h"
#include "catalog/Fields.h"
#include "catalog/Flags.h"
#include "catalog/Format.h"
#include "catalog/Layers.h"
#include "catalog/Providers.h"
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

template <class Entry>
std::string NameOrKey(const Entry* entry, const GUID& key) {
  return entry == nullptr ? FormatGuid(key) : std::string(entry->name);
}

template <class Number>
std::optional<Number> NumberOfName(std::span<const NamedNumber> table, std::string_view name) {
  const auto known = std::ranges::find(table, name, &NamedNumber::name);
  return known == table.end() ? std::nullopt : std::optional(static_cast<Number>(known->number));
}

std::string NameOrNumber(std::span<const NamedNumber> table, UINT32 number) {
  const auto known = std::ranges::find(table, number, &NamedNumber::number);
  return known == table.end() ? FormatNumber(number) : std::string(known->name);
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

std::string ProviderName(const GUID& key) { return NameOrKey(FindBuiltInProvider(key), key); }

std::string CalloutName(const GUID& key) { return NameOrKey(FindBuiltInCallout(key), key); }

std::string ActionName(FWP_ACTION_TYPE action) { return NameOrNumber(kActions, action); }

std::string MatchName(FWP_MATCH_TYPE match) { return NameOrNumber(kMatches, static_cast<UINT32>(match)); }

std::string DataTypeName(FWP_DATA_TYPE type) { return NameOrNumber(kDataTypes, static_cast<UINT32>(type)); }

std::optional<FWP_ACTION_TYPE> FindAction(std::string_view name) {
  return NumberOfName<FWP_ACTION_TYPE>(kActions, name);
}

std::optional<FWP_MATCH_TYPE> FindMatch(std::string_view name) {
  return NumberOfName<FWP_MATCH_TYPE>(kMatches, name);
}

std::optional<FWP_DATA_TYPE> FindDataType(std::string_view name) {
  return NumberOfName<FWP_DATA_TYPE>(kDataTypes, name);
}

std::string FilterFlagNames(UINT32 flags) { return FlagNames(kFilterFlags, flags); }

std::string ConditionFlagNames(UINT32 flags) { return FlagNames(kConditionFlags, flags); }

}  // namespace Catalog
