#include <algorithm>
#include <cstring>
#include <span>
#include <string_view>

#include "catalog/Names.h"
#include "emulator/Checks.h"
#include "emulator/SecurityDescriptor.h"

namespace EngineEmulator {
namespace {

// MinGW-w64's enumeration lacks these.
constexpr int kMatchPrefix = 11;
constexpr int kMatchNotPrefix = 12;
constexpr int kMatchTypes = 13;

constexpr ULONG kMostSids = 10'000;
constexpr int kLongestPrefix = 128;

bool IsKnown(FWP_DATA_TYPE type) {
  return (type >= FWP_EMPTY && type <= FWP_BYTE_ARRAY6_TYPE) ||
         (type >= FWP_V4_ADDR_MASK && type <= FWP_RANGE_TYPE);
}

bool IsInline(FWP_DATA_TYPE type) {
  return type <= FWP_UINT32 || (type >= FWP_INT8 && type <= FWP_INT32) || type == FWP_FLOAT;
}

bool IsUnsigned(FWP_DATA_TYPE type) { return type >= FWP_UINT8 && type <= FWP_UINT64; }

bool IsNetwork(FWP_DATA_TYPE type) { return type == FWP_V4_ADDR_MASK || type == FWP_V6_ADDR_MASK; }

/// Whether the engine knows which of two values is the greater.
bool IsSortable(FWP_DATA_TYPE type) {
  return (type >= FWP_UINT8 && type <= FWP_INT64) || type == FWP_BYTE_ARRAY16_TYPE ||
         type == FWP_BYTE_BLOB_TYPE || type == FWP_UNICODE_STRING_TYPE;
}

Refusal CheckSids(const SID_AND_ATTRIBUTES* sids, ULONG count) {
  if (count != 0 && sids == nullptr) {
    return {FWP_E_NULL_POINTER, "a token has a number of SIDs but no array of them"};
  }
  if (count > kMostSids) {
    return {FWP_E_INVALID_PARAMETER, std::to_string(count) + " SIDs are too many to be meant"};
  }
  for (const SID_AND_ATTRIBUTES& entry : std::span(sids, count)) {
    if (Refusal refusal = CheckSid(static_cast<const SID*>(entry.Sid))) {
      return refusal;
    }
  }
  return {};
}

/// That the data which the type promises are there.
template <class Value>
Refusal CheckData(const Value& value) {
  if (!IsKnown(value.type)) {
    return {FWP_E_INVALID_ENUMERATOR, "there is no data type " + std::to_string(int{value.type})};
  }
  if (IsInline(value.type)) {
    return {};
  }
  if (value.byteBlob == nullptr) {
    return {FWP_E_NULL_POINTER, "a value of type " + Catalog::DataTypeName(value.type) + " is null"};
  }
  switch (value.type) {
    case FWP_BYTE_BLOB_TYPE:
    case FWP_SECURITY_DESCRIPTOR_TYPE:
    case FWP_TOKEN_ACCESS_INFORMATION_TYPE:
      return CheckBlob(*value.byteBlob);
    case FWP_SID:
      return CheckSid(value.sid);
    case FWP_TOKEN_INFORMATION_TYPE: {
      Refusal refusal = CheckSids(value.tokenInformation->sids, value.tokenInformation->sidCount);
      return refusal ? refusal
                     : CheckSids(value.tokenInformation->restrictedSids,
                                 value.tokenInformation->restrictedSidCount);
    }
    default:
      return {};
  }
}

template <class Number>
bool IsAbove(Number left, Number right) {
  return left > right;
}

bool IsAbove(const FWP_BYTE_BLOB& left, const FWP_BYTE_BLOB& right) {
  return std::ranges::lexicographical_compare(std::span(right.data, right.size),
                                              std::span(left.data, left.size));
}

/// For two sound values of one type.
bool IsAbove(const FWP_VALUE0& left, const FWP_VALUE0& right) {
  switch (left.type) {
    case FWP_UINT8:
      return IsAbove(left.uint8, right.uint8);
    case FWP_UINT16:
      return IsAbove(left.uint16, right.uint16);
    case FWP_UINT32:
      return IsAbove(left.uint32, right.uint32);
    case FWP_UINT64:
      return IsAbove(*left.uint64, *right.uint64);
    case FWP_INT8:
      return IsAbove(left.int8, right.int8);
    case FWP_INT16:
      return IsAbove(left.int16, right.int16);
    case FWP_INT32:
      return IsAbove(left.int32, right.int32);
    case FWP_INT64:
      return IsAbove(*left.int64, *right.int64);
    case FWP_BYTE_ARRAY16_TYPE:
      return std::memcmp(left.byteArray16, right.byteArray16, sizeof(FWP_BYTE_ARRAY16)) > 0;
    case FWP_BYTE_BLOB_TYPE:
      return IsAbove(*left.byteBlob, *right.byteBlob);
    case FWP_UNICODE_STRING_TYPE:
      return IsAbove(std::wstring_view(left.unicodeString), std::wstring_view(right.unicodeString));
    default:
      return false;
  }
}

Refusal CheckRange(const FWP_RANGE0& range) {
  if (range.valueLow.type != range.valueHigh.type || range.valueLow.type > FWP_SINGLE_DATA_TYPE_MAX) {
    return {FWP_E_INVALID_RANGE, "a range goes from " + Catalog::DataTypeName(range.valueLow.type) + " to " +
                                     Catalog::DataTypeName(range.valueHigh.type)};
  }
  if (Refusal refusal = CheckData(range.valueLow)) {
    return refusal;
  }
  if (Refusal refusal = CheckData(range.valueHigh)) {
    return refusal;
  }
  return IsAbove(range.valueLow, range.valueHigh)
             ? Refusal(FWP_E_INVALID_RANGE, "a range ends below its beginning")
             : Refusal();
}

/// What is in the data, beyond being there.
Refusal CheckContents(const FWP_CONDITION_VALUE0& value, const Switches& switches) {
  switch (value.type) {
    case FWP_RANGE_TYPE:
      return CheckRange(*value.rangeValue);
    case FWP_V4_ADDR_MASK: {
      const UINT32 holes = ~value.v4AddrMask->mask;
      return (holes & (holes + 1)) != 0 && switches.refuseNetMasksWithHoles != 0
                 ? Refusal(FWP_E_INVALID_NET_MASK, "the network mask has holes")
                 : Refusal();
    }
    case FWP_V6_ADDR_MASK:
      return value.v6AddrMask->prefixLength <= kLongestPrefix
                 ? Refusal()
                 : Refusal(FWP_E_OUT_OF_BOUNDS, "the prefix length " +
                                                    std::to_string(value.v6AddrMask->prefixLength) +
                                                    " is above 128");
    case FWP_BYTE_BLOB_TYPE:
      return value.byteBlob->size == 0 && switches.refuseEmptyBlobs != 0
                 ? Refusal(FWP_E_ZERO_LENGTH_ARRAY, "a blob has no bytes")
                 : Refusal();
    case FWP_SECURITY_DESCRIPTOR_TYPE:
      return IsSelfRelative({value.sd->data, value.sd->size})
                 ? Refusal()
                 : Refusal(static_cast<HRESULT>(ERROR_INVALID_SECURITY_DESCR),
                           "the security descriptor is not a self-relative one");
    default:
      return {};
  }
}

bool FitsField(const FWP_CONDITION_VALUE0& value, const Catalog::ConditionTypes& types) {
  if (value.type == FWP_RANGE_TYPE) {
    return value.rangeValue->valueLow.type == types.type;
  }
  return value.type == FWP_EMPTY || value.type == types.type || value.type == types.alternative;
}

bool MayBeUnequal(FWP_DATA_TYPE type, const Switches& switches) {
  if (IsNetwork(type)) {
    return switches.refuseComparedNetworks == 0;
  }
  // Not in the documentation, but in the system's own filters.
  return IsSortable(type) || type == FWP_SID ||
         (type != FWP_EMPTY && type != FWP_RANGE_TYPE && switches.refuseNotEqualOfOpaqueData == 0);
}

bool IsLegal(FWP_MATCH_TYPE match, const FWP_CONDITION_VALUE0& value, const Switches& switches) {
  const FWP_DATA_TYPE type = value.type;
  const bool isText = type == FWP_BYTE_BLOB_TYPE || type == FWP_UNICODE_STRING_TYPE;
  switch (int{match}) {
    case FWP_MATCH_EQUAL:
      return type != FWP_RANGE_TYPE ||
             (switches.refuseRangesInEqual == 0 && IsSortable(value.rangeValue->valueLow.type));
    case FWP_MATCH_GREATER:
    case FWP_MATCH_LESS:
    case FWP_MATCH_GREATER_OR_EQUAL:
    case FWP_MATCH_LESS_OR_EQUAL:
      return IsSortable(type) || (IsNetwork(type) && switches.refuseComparedNetworks == 0);
    case FWP_MATCH_RANGE:
      return type == FWP_RANGE_TYPE && IsSortable(value.rangeValue->valueLow.type);
    case FWP_MATCH_FLAGS_ALL_SET:
    case FWP_MATCH_FLAGS_ANY_SET:
    case FWP_MATCH_FLAGS_NONE_SET:
      return IsUnsigned(type);
    case FWP_MATCH_EQUAL_CASE_INSENSITIVE:
      return type == FWP_UNICODE_STRING_TYPE;
    case FWP_MATCH_NOT_EQUAL:
      return MayBeUnequal(type, switches);
    case kMatchPrefix:
    case kMatchNotPrefix:
      return isText;
    default:
      return false;
  }
}

std::string NameOfType(const FWP_CONDITION_VALUE0& value) {
  return value.type == FWP_RANGE_TYPE ? "RANGE of " + Catalog::DataTypeName(value.rangeValue->valueLow.type)
                                      : Catalog::DataTypeName(value.type);
}

/// That field, type and match go together.
Refusal CheckCombination(const FWPM_FILTER_CONDITION0& condition, const Catalog::Layer& layer,
                         const Switches& switches) {
  const FWP_CONDITION_VALUE0& value = condition.conditionValue;
  const Catalog::Field* known = Catalog::FindField(condition.fieldKey);
  const Catalog::LayerField* field = known == nullptr ? nullptr : Catalog::FieldAt(layer, *known);
  if (field == nullptr) {
    return {FWP_E_CONDITION_NOT_FOUND,
            Catalog::FieldName(condition.fieldKey) + " is not a field of " + std::string(layer.name)};
  }
  const Catalog::ConditionTypes types = Catalog::TypesOf(*field);
  if (!FitsField(value, types)) {
    return {FWP_E_TYPE_MISMATCH, std::string(known->name) + " at " + std::string(layer.name) +
                                     " is of type " + Catalog::DataTypeName(types.type) + ", not " +
                                     NameOfType(value)};
  }
  return CheckMatch(condition, known->name, switches);
}

}  // namespace

Refusal CheckSid(const SID* sid) {
  return sid != nullptr && sid->SubAuthorityCount <= SID_MAX_SUB_AUTHORITIES
             ? Refusal()
             : Refusal(FWP_E_INVALID_PARAMETER, "a SID is none");
}

Refusal CheckSoundness(const FWPM_FILTER_CONDITION0& condition, const Switches& switches) {
  if (condition.matchType < 0 || condition.matchType >= kMatchTypes) {
    return {FWP_E_INVALID_ENUMERATOR, "there is no match type " + std::to_string(int{condition.matchType})};
  }
  if (Refusal refusal = CheckData(condition.conditionValue)) {
    return refusal;
  }
  return CheckContents(condition.conditionValue, switches);
}

Refusal CheckMatch(const FWPM_FILTER_CONDITION0& condition, std::string_view field,
                   const Switches& switches) {
  return IsLegal(condition.matchType, condition.conditionValue, switches)
             ? Refusal()
             : Refusal(FWP_E_MATCH_TYPE_MISMATCH,
                       Catalog::MatchName(condition.matchType) + " does not go with the type " +
                           NameOfType(condition.conditionValue) + " of " + std::string(field));
}

Refusal CheckCondition(const FWPM_FILTER_CONDITION0& condition, const Catalog::Layer& layer,
                       const Switches& switches) {
  if (Refusal refusal = CheckSoundness(condition, switches)) {
    return refusal;
  }
  return CheckCombination(condition, layer, switches);
}

bool IsReadable(const FWPM_FILTER0& filter) {
  const auto isReadable = [](const auto& value) {
    return CheckData(value).Code() != static_cast<DWORD>(FWP_E_INVALID_PARAMETER);
  };
  const auto isReadableCondition = [&](const FWPM_FILTER_CONDITION0& condition) {
    const FWP_CONDITION_VALUE0& value = condition.conditionValue;
    const bool isRange = value.type == FWP_RANGE_TYPE && value.rangeValue != nullptr;
    return isReadable(value) &&
           (!isRange || (isReadable(value.rangeValue->valueLow) && isReadable(value.rangeValue->valueHigh)));
  };
  if (!isReadable(filter.weight) || filter.numFilterConditions > kMostConditions) {
    return false;
  }
  const std::span conditions(filter.filterCondition,
                             filter.filterCondition == nullptr ? 0 : filter.numFilterConditions);
  return std::ranges::all_of(conditions, isReadableCondition);
}

}  // namespace EngineEmulator
