// Decodes the engine's native records. Whatever is in them, decoding does not fail.
#include <algorithm>
#include <array>
#include <bit>
#include <span>

#include "catalog/Describe.h"
#include "catalog/Format.h"
#include "catalog/Names.h"
#include "policy/Address.h"
#include "policy/Snapshot.h"

namespace Policy {
namespace {

/// A count or size above these is taken for garbage.
constexpr UINT32 kMostConditions = 100'000;
constexpr UINT32 kMostBytes = 16 * 1024 * 1024;

// FWP_MATCH_PREFIX and FWP_MATCH_NOT_PREFIX, since Windows 10. In spite of the name the engine compares the
// end.
constexpr auto kMatchEnd = static_cast<FWP_MATCH_TYPE>(11);
constexpr auto kMatchNotEnd = static_cast<FWP_MATCH_TYPE>(12);

std::string Text(const wchar_t* text) { return text == nullptr ? std::string() : Catalog::FormatText(text); }

/// The bits of an unsigned type that a connection's fields have; 0 for all other types.
unsigned BitsOf(FWP_DATA_TYPE type) {
  switch (type) {
    case FWP_UINT8:
      return 8;
    case FWP_UINT16:
      return 16;
    case FWP_UINT32:
      return 32;
    case FWP_UINT64:
      return 64;
    case FWP_BYTE_ARRAY16_TYPE:
      return 128;
    default:
      return 0;
  }
}

/// The number that a value holds; none without one.
template <class Value>
std::optional<Number> NumberOf(const Value& value) {
  switch (value.type) {
    case FWP_UINT8:
      return value.uint8;
    case FWP_UINT16:
      return value.uint16;
    case FWP_UINT32:
      return value.uint32;
    case FWP_UINT64:
      return value.uint64 == nullptr ? std::nullopt : std::optional<Number>(*value.uint64);
    case FWP_BYTE_ARRAY16_TYPE:
      return value.byteArray16 == nullptr ? std::nullopt
                                          : std::optional(FromBytes(value.byteArray16->byteArray16));
    default:
      return std::nullopt;
  }
}

std::optional<std::string> BytesOf(const FWP_BYTE_BLOB* blob) {
  if (blob == nullptr || blob->size > kMostBytes || (blob->size != 0 && blob->data == nullptr)) {
    return std::nullopt;
  }
  return std::string(blob->data, blob->data + blob->size);
}

std::optional<std::string> BytesOf(const FWP_CONDITION_VALUE0& value) {
  if (value.type == FWP_BYTE_BLOB_TYPE) {
    return BytesOf(value.byteBlob);
  }
  if (value.type == FWP_SID && value.sid != nullptr &&
      value.sid->SubAuthorityCount <= SID_MAX_SUB_AUTHORITIES) {
    const auto* bytes = reinterpret_cast<const UINT8*>(value.sid);
    return std::string(bytes,
                       bytes + offsetof(SID, SubAuthority) + value.sid->SubAuthorityCount * sizeof(DWORD));
  }
  return std::nullopt;
}

Test OfInterval(Number first, Number last, bool negated = false) {
  return {Test::Kind::InInterval, negated, {first, last}, {}};
}

/// Compares a number with all numbers of its type.
Test CompareNumber(FWP_MATCH_TYPE match, Number number, Number greatest) {
  switch (match) {
    case FWP_MATCH_EQUAL:
      return OfInterval(number, number);
    case FWP_MATCH_NOT_EQUAL:
      return OfInterval(number, number, true);
    // An interval that ends before it begins holds nothing.
    case FWP_MATCH_GREATER:
      return number == greatest ? OfInterval(1, 0) : OfInterval(Next(number), greatest);
    case FWP_MATCH_LESS:
      return number == 0 ? OfInterval(1, 0) : OfInterval(0, Previous(number));
    case FWP_MATCH_GREATER_OR_EQUAL:
      return OfInterval(number, greatest);
    case FWP_MATCH_LESS_OR_EQUAL:
      return OfInterval(0, number);
    default:
      return {};
  }
}

Test TestFlags(Test::Kind kind, Number bits) {
  // No field of flags has more than 64 bits.
  return bits.high == 0 ? Test{kind, false, {bits, bits}, {}} : Test{};
}

Test DecodeNumber(FWP_MATCH_TYPE match, const FWP_CONDITION_VALUE0& value) {
  const std::optional<Number> number = NumberOf(value);
  if (!number) {
    return {};
  }
  switch (match) {
    case FWP_MATCH_FLAGS_ALL_SET:
      return TestFlags(Test::Kind::AllSet, *number);
    case FWP_MATCH_FLAGS_ANY_SET:
      return TestFlags(Test::Kind::AnySet, *number);
    case FWP_MATCH_FLAGS_NONE_SET:
      return TestFlags(Test::Kind::NoneSet, *number);
    default:
      return CompareNumber(match, *number, GreatestOfBits(BitsOf(value.type)));
  }
}

Test DecodeBytes(FWP_MATCH_TYPE match, const FWP_CONDITION_VALUE0& value) {
  const std::optional<std::string> bytes = BytesOf(value);
  if (!bytes) {
    return {};
  }
  // A string in UTF-16.
  const bool hasEnd = value.type == FWP_BYTE_BLOB_TYPE && bytes->size() % 2 == 0;
  switch (static_cast<UINT32>(match)) {
    case FWP_MATCH_EQUAL:
    case FWP_MATCH_NOT_EQUAL:
      return {Test::Kind::IsBytes, match == FWP_MATCH_NOT_EQUAL, {}, *bytes};
    case kMatchEnd:
    case kMatchNotEnd:
      return hasEnd ? Test{Test::Kind::EndsWith, match == kMatchNotEnd, {}, *bytes} : Test{};
    default:
      return {};
  }
}

/// EQUAL is the documented match for networks; NOT_EQUAL has one meaning too.
Test DecodeNetwork(FWP_MATCH_TYPE match, const Interval& network) {
  const bool negated = match == FWP_MATCH_NOT_EQUAL;
  return match == FWP_MATCH_EQUAL || negated ? OfInterval(network.first, network.last, negated) : Test{};
}

Test DecodeNetwork(FWP_MATCH_TYPE match, const FWP_V4_ADDR_AND_MASK& network) {
  const auto hostBits = static_cast<unsigned>(std::countr_zero(network.mask));
  const bool hasHoles = static_cast<unsigned>(std::countl_one(network.mask)) + hostBits != 32;
  return hasHoles ? Test{} : DecodeNetwork(match, NetworkOf(network.addr, hostBits));
}

Test DecodeNetwork(FWP_MATCH_TYPE match, const FWP_V6_ADDR_AND_MASK& network) {
  return network.prefixLength > 128
             ? Test{}
             : DecodeNetwork(match, NetworkOf(FromBytes(network.addr), 128U - network.prefixLength));
}

Test DecodeRange(FWP_MATCH_TYPE match, const FWP_RANGE0& range) {
  const std::optional<Number> low = NumberOf(range.valueLow);
  const std::optional<Number> high = NumberOf(range.valueHigh);
  const bool isRange = match == FWP_MATCH_RANGE && range.valueLow.type == range.valueHigh.type;
  return isRange && low && high && *low <= *high ? OfInterval(*low, *high) : Test{};
}

template <class Pointee, class Decode>
Test DecodePointee(const Pointee* pointee, Decode decode) {
  return pointee == nullptr ? Test{} : decode(*pointee);
}

Test DecodeTest(FWP_MATCH_TYPE match, const FWP_CONDITION_VALUE0& value) {
  const auto network = [match](const auto& pointee) { return DecodeNetwork(match, pointee); };
  switch (value.type) {
    case FWP_EMPTY:
      return match == FWP_MATCH_EQUAL ? Test{Test::Kind::Unset, false, {}, {}} : Test{};
    case FWP_BYTE_BLOB_TYPE:
    case FWP_SID:
      return DecodeBytes(match, value);
    case FWP_V4_ADDR_MASK:
      return DecodePointee(value.v4AddrMask, network);
    case FWP_V6_ADDR_MASK:
      return DecodePointee(value.v6AddrMask, network);
    case FWP_RANGE_TYPE:
      return DecodePointee(value.rangeValue,
                           [match](const FWP_RANGE0& range) { return DecodeRange(match, range); });
    default:
      return DecodeNumber(match, value);
  }
}

/// Whether a field takes a condition's type, by the rules of the documentation.
bool Takes(const Catalog::LayerField& field, const FWP_CONDITION_VALUE0& value) {
  const bool isRange = value.type == FWP_RANGE_TYPE;
  if (value.type == FWP_EMPTY || (isRange && value.rangeValue == nullptr)) {
    return value.type == FWP_EMPTY;
  }
  const auto [type, alternative] = Catalog::TypesOf(field);
  return isRange ? value.rangeValue->valueLow.type == type : value.type == type || value.type == alternative;
}

/// Whether the sizes of its blobs are plausible, so that its data can be read.
bool CanBeShown(const FWP_CONDITION_VALUE0& value) {
  const auto blobIsSane = [](const FWP_BYTE_BLOB* blob) {
    return blob == nullptr || blob->size <= kMostBytes;
  };
  const auto isSane = [&](const auto& datum) {
    switch (datum.type) {
      case FWP_BYTE_BLOB_TYPE:
        return blobIsSane(datum.byteBlob);
      case FWP_SECURITY_DESCRIPTOR_TYPE:
        return blobIsSane(datum.sd);
      case FWP_TOKEN_ACCESS_INFORMATION_TYPE:
        return blobIsSane(datum.tokenAccessInformation);
      default:
        return true;
    }
  };
  const bool isRange = value.type == FWP_RANGE_TYPE && value.rangeValue != nullptr;
  return isSane(value) &&
         (!isRange || (isSane(value.rangeValue->valueLow) && isSane(value.rangeValue->valueHigh)));
}

Condition UnreadableCondition(std::string text) {
  return {GUID{}, nullptr, FWP_MATCH_EQUAL, FWP_EMPTY, Test{}, std::move(text)};
}

std::vector<Condition> DecodeConditions(const FWPM_FILTER0& filter, const Catalog::Layer* layer) {
  std::vector<Condition> conditions;
  if (filter.numFilterConditions > kMostConditions ||
      (filter.numFilterConditions != 0 && filter.filterCondition == nullptr)) {
    conditions.push_back(UnreadableCondition("unreadable conditions"));
    return conditions;
  }
  conditions.reserve(filter.numFilterConditions);
  for (const auto& condition : std::span(filter.filterCondition, filter.numFilterConditions)) {
    conditions.push_back(Decode(condition, layer));
  }
  return conditions;
}

UINT64 ReportedWeight(const FWPM_FILTER0& filter) {
  const auto number = NumberOf(filter.effectiveWeight);
  if (filter.effectiveWeight.type == FWP_UINT64 && number) {
    return number->low;
  }
  return filter.weight.type == FWP_UINT8 ? UINT64{filter.weight.uint8} << FWPM_AUTO_WEIGHT_BITS : 0;
}

}  // namespace

Condition Decode(const FWPM_FILTER_CONDITION0& condition, const Catalog::Layer* layer) {
  const Catalog::Field* field = Catalog::FindField(condition.fieldKey);
  const Catalog::LayerField* fieldAt =
      layer != nullptr && field != nullptr ? Catalog::FieldAt(*layer, *field) : nullptr;
  const bool fits = fieldAt != nullptr && Takes(*fieldAt, condition.conditionValue);
  return {condition.fieldKey,
          field,
          condition.matchType,
          condition.conditionValue.type,
          fits ? DecodeTest(condition.matchType, condition.conditionValue) : Test{},
          CanBeShown(condition.conditionValue) ? Catalog::DescribeCondition(condition)
                                               : Catalog::FieldName(condition.fieldKey) + " unreadable"};
}

Filter Decode(const FWPM_FILTER0& filter) {
  return {filter.filterId,
          filter.filterKey,
          Text(filter.displayData.name),
          filter.providerKey == nullptr ? std::nullopt : std::optional(*filter.providerKey),
          filter.layerKey,
          filter.subLayerKey,
          filter.action.type,
          filter.flags,
          ReportedWeight(filter),
          filter.weight.type != FWP_UINT64,
          DecodeConditions(filter, Catalog::FindLayer(filter.layerKey))};
}

Sublayer Decode(const FWPM_SUBLAYER0& sublayer) {
  return {sublayer.subLayerKey, Text(sublayer.displayData.name), sublayer.weight};
}

}  // namespace Policy
