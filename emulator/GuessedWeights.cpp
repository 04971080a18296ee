#include "emulator/GuessedWeights.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <optional>
#include <vector>

#include "catalog/Keys.h"

namespace EngineEmulator {
namespace {

constexpr UINT64 kRemoteAddressExact = UINT64{1} << 57;
constexpr UINT64 kRemoteAddressRange = UINT64{1} << 55;

/// How much a condition leaves open, from most to least.
enum class Narrowness { Everything, Range, Exact };

template <class Number>
Narrowness OfNumbers(Number low, Number high) {
  if (low == high) {
    return Narrowness::Exact;
  }
  const bool everything =
      low == std::numeric_limits<Number>::min() && high == std::numeric_limits<Number>::max();
  return everything ? Narrowness::Everything : Narrowness::Range;
}

Narrowness OfAddresses(const FWP_BYTE_ARRAY16& low, const FWP_BYTE_ARRAY16& high) {
  if (std::memcmp(&low, &high, sizeof(low)) == 0) {
    return Narrowness::Exact;
  }
  const bool everything = std::ranges::count(low.byteArray16, 0) == std::ssize(low.byteArray16) &&
                          std::ranges::count(high.byteArray16, 0xFF) == std::ssize(high.byteArray16);
  return everything ? Narrowness::Everything : Narrowness::Range;
}

Narrowness OfRange(const FWP_RANGE0& range) {
  switch (range.valueLow.type) {
    case FWP_UINT8:
      return OfNumbers(range.valueLow.uint8, range.valueHigh.uint8);
    case FWP_UINT16:
      return OfNumbers(range.valueLow.uint16, range.valueHigh.uint16);
    case FWP_UINT32:
      return OfNumbers(range.valueLow.uint32, range.valueHigh.uint32);
    case FWP_UINT64:
      return OfNumbers(*range.valueLow.uint64, *range.valueHigh.uint64);
    case FWP_BYTE_ARRAY16_TYPE:
      return OfAddresses(*range.valueLow.byteArray16, *range.valueHigh.byteArray16);
    default:
      return Narrowness::Range;
  }
}

Narrowness OfPrefix(UINT32 length, UINT32 longest) {
  if (length == 0) {
    return Narrowness::Everything;
  }
  return length < longest ? Narrowness::Range : Narrowness::Exact;
}

Narrowness OfMask(UINT32 mask) {
  if (mask == 0) {
    return Narrowness::Everything;
  }
  return mask == 0xFFFFFFFF ? Narrowness::Exact : Narrowness::Range;
}

Narrowness OfCondition(const FWPM_FILTER_CONDITION0& condition) {
  const FWP_CONDITION_VALUE0& value = condition.conditionValue;
  switch (value.type) {
    case FWP_RANGE_TYPE:
      return OfRange(*value.rangeValue);
    case FWP_V4_ADDR_MASK:
      return OfMask(value.v4AddrMask->mask);
    case FWP_V6_ADDR_MASK:
      return OfPrefix(value.v6AddrMask->prefixLength, 128);
    default:
      return condition.matchType == FWP_MATCH_EQUAL ? Narrowness::Exact : Narrowness::Range;
  }
}

/// The neighbouring shares overlap by a bit: two bits for each field of a layer do not fit.
UINT64 ShareOf(const GUID& field, std::size_t position, Narrowness narrowness) {
  switch (narrowness) {
    case Narrowness::Everything:
      return 0;
    case Narrowness::Range:
      return field == Catalog::kIpRemoteAddressFieldKey ? kRemoteAddressRange : UINT64{1} << position;
    case Narrowness::Exact:
      return field == Catalog::kIpRemoteAddressFieldKey ? kRemoteAddressExact : UINT64{2} << position;
  }
  return 0;
}

}  // namespace

UINT64 GuessedWeight(std::span<const FWPM_FILTER_CONDITION0> conditions, const Catalog::Layer& layer) {
  // Of several conditions on a field, one is enough for a match: the widest counts.
  std::vector<std::optional<Narrowness>> narrowness(layer.fields.size());
  for (const FWPM_FILTER_CONDITION0& condition : conditions) {
    const Catalog::LayerField* field = Catalog::FieldAt(layer, *Catalog::FindField(condition.fieldKey));
    auto& known = narrowness[static_cast<std::size_t>(field - layer.fields.data())];
    known = std::min(known.value_or(Narrowness::Exact), OfCondition(condition));
  }
  UINT64 weight = 0;
  for (std::size_t position = 0; position < layer.fields.size(); ++position) {
    weight += ShareOf(layer.fields[position].field->key, position,
                      narrowness[position].value_or(Narrowness::Everything));
  }
  return weight;
}

}  // namespace EngineEmulator
