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

/// A count above this is taken for garbage.
constexpr UINT32 kMostConditions = 100'000;

// FWP_MATCH_PREFIX and FWP_MATCH_NOT_PREFIX, since Windows 10. In spite of the name the engine compares the
// end.
constexpr auto kMatchEnd = static_cast<FWP_MATCH_TYPE>(11);
constexpr auto kMatchNotEnd = static_cast<FWP_MATCH_TYPE>(12);

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

/// The unsigned number that a value holds; none without one.
std::optional<Number> NumberOf(const Value& value) {
  if (const auto* number = std::get_if<UINT64>(&value.data)) {
    return *number;
  }
  const auto* bytes = std::get_if<FWP_BYTE_ARRAY16>(&value.data);
  return bytes == nullptr ? std::nullopt : std::optional(FromBytes(bytes->byteArray16));
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

Test DecodeNumber(FWP_MATCH_TYPE match, const Value& value) {
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

Test DecodeBytes(FWP_MATCH_TYPE match, const Value& value) {
  const auto* bytes = std::get_if<std::string>(&value.data);
  if (bytes == nullptr) {
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

/// RANGE is the documented match for ranges; what EQUAL asks of one has one meaning too.
Test DecodeRange(FWP_MATCH_TYPE match, const std::vector<Value>& ends) {
  const std::optional<Number> low = NumberOf(ends.front());
  const std::optional<Number> high = NumberOf(ends.back());
  const bool isMatch = match == FWP_MATCH_RANGE || match == FWP_MATCH_EQUAL;
  const bool isRange = isMatch && ends.front().type == ends.back().type;
  return isRange && low && high && *low <= *high ? OfInterval(*low, *high) : Test{};
}

Test DecodeTest(FWP_MATCH_TYPE match, const Value& value) {
  if (value.type == FWP_EMPTY) {
    return match == FWP_MATCH_EQUAL ? Test{Test::Kind::Unset, false, {}, {}} : Test{};
  }
  if (const auto* network = std::get_if<FWP_V4_ADDR_AND_MASK>(&value.data)) {
    return DecodeNetwork(match, *network);
  }
  if (const auto* network = std::get_if<FWP_V6_ADDR_AND_MASK>(&value.data)) {
    return DecodeNetwork(match, *network);
  }
  if (const auto* ends = std::get_if<std::vector<Value>>(&value.data)) {
    return DecodeRange(match, *ends);
  }
  const bool isBytes = value.type == FWP_BYTE_BLOB_TYPE || value.type == FWP_SID;
  return isBytes ? DecodeBytes(match, value) : DecodeNumber(match, value);
}

/// Whether a field takes a condition's type, by the documentation.
bool Takes(const Catalog::LayerField& field, const Value& value) {
  if (value.type == FWP_EMPTY) {
    return true;
  }
  const auto [type, alternative] = Catalog::TypesOf(field);
  if (value.type == FWP_RANGE_TYPE) {
    const auto* ends = std::get_if<std::vector<Value>>(&value.data);
    return ends != nullptr && ends->front().type == type;
  }
  return value.type == type || value.type == alternative;
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
  return {GUID{}, nullptr, FWP_MATCH_EQUAL, Value{}, Test{}, std::move(text)};
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
  if (filter.effectiveWeight.type == FWP_UINT64 && filter.effectiveWeight.uint64 != nullptr) {
    return *filter.effectiveWeight.uint64;
  }
  return filter.weight.type == FWP_UINT8 ? UINT64{filter.weight.uint8} << FWPM_AUTO_WEIGHT_BITS : 0;
}

std::optional<GUID> Optional(const GUID* key) { return key == nullptr ? std::nullopt : std::optional(*key); }

}  // namespace

Condition Decode(const FWPM_FILTER_CONDITION0& condition, const Catalog::Layer* layer) {
  const Catalog::Field* field = Catalog::FindField(condition.fieldKey);
  const Catalog::LayerField* fieldAt =
      layer != nullptr && field != nullptr ? Catalog::FieldAt(*layer, *field) : nullptr;
  Value value = ToValue(condition.conditionValue);
  const bool fits = fieldAt != nullptr && Takes(*fieldAt, value);
  const Test test = fits ? DecodeTest(condition.matchType, value) : Test{};
  return {condition.fieldKey,
          field,
          condition.matchType,
          std::move(value),
          test,
          CanBeShown(condition.conditionValue) ? Catalog::DescribeCondition(condition)
                                               : Catalog::FieldName(condition.fieldKey) + " unreadable"};
}

Filter Decode(const FWPM_FILTER0& filter) {
  const bool hasCallout = (filter.action.type & FWP_ACTION_FLAG_CALLOUT) != 0;
  return {filter.filterId,
          filter.filterKey,
          ToText(filter.displayData.name),
          Optional(filter.providerKey),
          filter.layerKey,
          filter.subLayerKey,
          filter.action.type,
          Optional(hasCallout ? &filter.action.calloutKey : nullptr),
          filter.flags,
          ToValue(filter.weight),
          ReportedWeight(filter),
          DecodeConditions(filter, Catalog::FindLayer(filter.layerKey))};
}

Sublayer Decode(const FWPM_SUBLAYER0& sublayer) {
  return {sublayer.subLayerKey,
          ToText(sublayer.displayData.name),
          sublayer.weight,
          true,
          ToText(sublayer.displayData.description),
          Optional(sublayer.providerKey)};
}

Provider Decode(const FWPM_PROVIDER0& provider) {
  return {provider.providerKey, ToText(provider.displayData.name), ToText(provider.displayData.description)};
}

}  // namespace Policy
