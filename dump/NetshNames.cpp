#include "dump/NetshNames.h"

#include <algorithm>
#include <array>

#include "catalog/Names.h"
#include "dump/Numbers.h"

namespace Dump {
namespace {

constexpr std::string_view kTypeSuffix = "_TYPE";

constexpr auto kFieldTypeNames =
    std::to_array<std::string_view>({"FWPM_FIELD_RAW_DATA", "FWPM_FIELD_IP_ADDRESS", "FWPM_FIELD_FLAGS"});

constexpr auto kContextTypeNames = std::to_array<std::string_view>({
    "FWPM_IPSEC_KEYING_CONTEXT",
    "FWPM_IPSEC_IKE_QM_TRANSPORT_CONTEXT",
    "FWPM_IPSEC_IKE_QM_TUNNEL_CONTEXT",
    "FWPM_IPSEC_AUTHIP_QM_TRANSPORT_CONTEXT",
    "FWPM_IPSEC_AUTHIP_QM_TUNNEL_CONTEXT",
    "FWPM_IPSEC_IKE_MM_CONTEXT",
    "FWPM_IPSEC_AUTHIP_MM_CONTEXT",
    "FWPM_CLASSIFY_OPTIONS_CONTEXT",
    "FWPM_GENERAL_CONTEXT",
    "FWPM_IPSEC_IKEV2_QM_TUNNEL_CONTEXT",
    "FWPM_IPSEC_IKEV2_MM_CONTEXT",
    "FWPM_IPSEC_DOSP_CONTEXT",
    "FWPM_IPSEC_IKEV2_QM_TRANSPORT_CONTEXT",
    "FWPM_NETWORK_CONNECTION_POLICY_CONTEXT",
});

constexpr auto kProviderContextFlagTable =
    std::to_array<Catalog::Flag>({{"PERSISTENT", 0x1}, {"DOWNLEVEL", 0x2}});

/// The text behind a prefix; empty if it does not begin so.
std::string_view Behind(std::string_view prefix, std::string_view text) {
  return text.starts_with(prefix) ? text.substr(prefix.size()) : std::string_view();
}

/// A name of the catalogue with its prefix. For what has none, the catalogue gives a number.
std::string Prefixed(std::string_view prefix, const std::string& name) {
  return IsDigit(name[0]) ? name : std::string(prefix).append(name);
}

std::optional<UINT32> FindAction(std::string_view name) {
  return Catalog::FindAction(Behind("FWP_ACTION_", name));
}
std::string ActionText(UINT32 action) { return Prefixed("FWP_ACTION_", Catalog::ActionName(action)); }

std::optional<UINT32> FindMatch(std::string_view name) {
  return Catalog::FindMatch(Behind("FWP_MATCH_", name));
}
std::string MatchText(UINT32 match) {
  return Prefixed("FWP_MATCH_", Catalog::MatchName(static_cast<FWP_MATCH_TYPE>(match)));
}

/// Whether the platform's headers end the name of a type with _TYPE: of those that are no plain numbers,
/// most.
bool HasSuffix(UINT32 type) {
  return (type >= FWP_BYTE_ARRAY16_TYPE && type < FWP_SINGLE_DATA_TYPE_MAX && type != FWP_SID) ||
         type == FWP_RANGE_TYPE;
}

std::optional<UINT32> FindDataType(std::string_view name) {
  std::string_view bare = Behind("FWP_", name);
  if (bare.ends_with(kTypeSuffix)) {
    bare.remove_suffix(kTypeSuffix.size());
  }
  return Catalog::FindDataType(bare);
}
std::string DataTypeText(UINT32 type) {
  std::string text = Prefixed("FWP_", Catalog::DataTypeName(static_cast<FWP_DATA_TYPE>(type)));
  if (!IsDigit(text[0]) && HasSuffix(type)) {
    text += kTypeSuffix;
  }
  return text;
}

/// The place of a name.
template <const auto& kNames>
std::optional<UINT32> FindPlace(std::string_view name) {
  const auto known = std::ranges::find(kNames, name);
  return known == kNames.end() ? std::nullopt : std::optional(static_cast<UINT32>(known - kNames.begin()));
}
template <const auto& kNames>
std::string NameAt(UINT32 place) {
  return place < kNames.size() ? std::string(kNames[place]) : std::to_string(place);
}

}  // namespace

constexpr NumberNames kDataTypes{"a type of value like FWP_UINT8", FindDataType, DataTypeText};
constexpr NumberNames kMatches{"a type of match like FWP_MATCH_EQUAL", FindMatch, MatchText};
constexpr NumberNames kActions{"an action like FWP_ACTION_BLOCK", FindAction, ActionText};
constexpr NumberNames kFieldTypes{"a type of field like FWPM_FIELD_RAW_DATA", FindPlace<kFieldTypeNames>,
                                  NameAt<kFieldTypeNames>};
constexpr NumberNames kContextTypes{"a type of context like FWPM_GENERAL_CONTEXT",
                                    FindPlace<kContextTypeNames>, NameAt<kContextTypeNames>};

constexpr FlagNames kLayerFlags{"a flag like FWPM_LAYER_FLAG_KERNEL", "_LAYER_FLAG_", Catalog::kLayerFlags};
constexpr FlagNames kProviderFlags{"a flag like FWPM_PROVIDER_FLAG_PERSISTENT", "_PROVIDER_FLAG_",
                                   Catalog::kProviderFlags};
constexpr FlagNames kProviderContextFlags{"a flag like FWPM_PROVIDER_CONTEXT_FLAG_PERSISTENT",
                                          "_PROVIDER_CONTEXT_FLAG_", kProviderContextFlagTable};
constexpr FlagNames kSublayerFlags{"a flag like FWPM_SUBLAYER_FLAG_PERSISTENT", "_SUBLAYER_FLAG_",
                                   Catalog::kSublayerFlags};
constexpr FlagNames kCalloutFlags{"a flag like FWPM_CALLOUT_FLAG_REGISTERED", "_CALLOUT_FLAG_",
                                  Catalog::kCalloutFlags, 0x7FC, 0xFFFF};
constexpr FlagNames kFilterFlags{"a flag like FWPM_FILTER_FLAG_INDEXED", "_FILTER_FLAG_",
                                 Catalog::kFilterFlags, 0x7000};

bool IsFlagName(const FlagNames& names, std::string_view name) {
  const std::string_view rest = Behind("FWP", name);
  return (rest.starts_with(names.mark) || Behind("M", rest).starts_with(names.mark)) &&
         std::ranges::all_of(name, IsSymbolCharacter);
}

std::optional<UINT32> FindFlagBit(const FlagNames& names, std::string_view name) {
  if (!IsFlagName(names, name)) {
    return std::nullopt;
  }
  const std::string_view bare = name.substr(name.find(names.mark) + names.mark.size());
  const Catalog::Flag* flag = Catalog::FindFlag(names.flags, bare);
  return flag == nullptr ? std::nullopt : flag->bit;
}

std::string FlagName(const FlagNames& names, const Catalog::Flag& flag) {
  const bool isDrivers = (flag.bit.value_or(0) & names.drivers) != 0;
  return std::string(isDrivers ? "FWP" : "FWPM").append(names.mark).append(flag.name);
}

}  // namespace Dump
