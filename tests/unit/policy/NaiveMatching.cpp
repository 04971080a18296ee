#include "unit/policy/NaiveMatching.h"

#include <algorithm>

#include "catalog/Names.h"
#include "unit/policy/NaiveCircumstances.h"

namespace {

using Policy::Assumption;
using Policy::Connection;
using Policy::Direction;
using Policy::Number;
using Policy::World;

Number Bytes(const UINT8* bytes) {
  Number number;
  for (int i = 0; i < 16; ++i) {
    UINT64& half = i < 8 ? number.high : number.low;
    half = half * 256 + bytes[i];
  }
  return number;
}

template <class Value>
Number Plain(const Value& value) {
  switch (value.type) {
    case FWP_UINT8:
      return value.uint8;
    case FWP_UINT16:
      return value.uint16;
    case FWP_UINT32:
      return value.uint32;
    case FWP_UINT64:
      return *value.uint64;
    default:
      return Bytes(value.byteArray16->byteArray16);
  }
}

bool InNetwork(Number number, const FWP_CONDITION_VALUE0& value) {
  if (value.type == FWP_V4_ADDR_MASK) {
    return (number.low & value.v4AddrMask->mask) == (value.v4AddrMask->addr & value.v4AddrMask->mask);
  }
  const Number network = Bytes(value.v6AddrMask->addr);
  for (int bit = 0; bit < value.v6AddrMask->prefixLength; ++bit) {
    const int shift = 63 - bit % 64;
    const UINT64 left = bit < 64 ? number.high : number.low;
    const UINT64 right = bit < 64 ? network.high : network.low;
    if ((left >> shift & 1) != (right >> shift & 1)) {
      return false;
    }
  }
  return true;
}

Matching Of(bool holds) { return holds ? Yes : No; }

Matching CompareNumbers(const FWPM_FILTER_CONDITION0& condition, Number number) {
  const FWP_CONDITION_VALUE0& value = condition.conditionValue;
  if (value.type == FWP_V4_ADDR_MASK || value.type == FWP_V6_ADDR_MASK) {
    return Of(InNetwork(number, value) == (condition.matchType == FWP_MATCH_EQUAL));
  }
  if (value.type == FWP_RANGE_TYPE) {
    return Of(Plain(value.rangeValue->valueLow) <= number && number <= Plain(value.rangeValue->valueHigh));
  }
  const Number other = Plain(value);
  switch (condition.matchType) {
    case FWP_MATCH_EQUAL:
      return Of(number == other);
    case FWP_MATCH_NOT_EQUAL:
      return Of(number != other);
    case FWP_MATCH_GREATER:
      return Of(number > other);
    case FWP_MATCH_LESS:
      return Of(number < other);
    case FWP_MATCH_GREATER_OR_EQUAL:
      return Of(number >= other);
    case FWP_MATCH_LESS_OR_EQUAL:
      return Of(number <= other);
    case FWP_MATCH_FLAGS_ALL_SET:
      return Of((number.low & other.low) == other.low);
    case FWP_MATCH_FLAGS_ANY_SET:
      return Of((number.low & other.low) != 0);
    case FWP_MATCH_FLAGS_NONE_SET:
      return Of((number.low & other.low) == 0);
    default:
      return Perhaps;
  }
}

Matching CompareApplications(const FWPM_FILTER_CONDITION0& condition, const std::string& id) {
  const FWP_BYTE_BLOB& blob = *condition.conditionValue.byteBlob;
  const std::string other(blob.data, blob.data + blob.size);
  switch (static_cast<int>(condition.matchType)) {
    case 0:
      return Of(id == other);
    case 10:
      return Of(id != other);
    case 11:
      return Of(id.ends_with(other));
    case 12:
      return Of(!id.ends_with(other));
    default:
      return Perhaps;
  }
}

/// A connection's value of a field, as a number or as bytes; neither if it is unset.
struct Value {
  bool known;  ///< whether connections have the field at all
  std::optional<Number> number;
  std::optional<std::string> bytes;
};

template <class T>
Value Numeric(const std::optional<T>& value) {
  return {true, value ? std::optional<Number>(*value) : std::nullopt, std::nullopt};
}

/// The loopback flag gets a companion at receive-accept, and in a reading elsewhere, unless it has one.
std::optional<UINT32> FlagsAt(bool atAccept, const Connection& connection, World world) {
  const UINT32 flags = connection.flags.value_or(0);
  const bool isBare = (flags & 1) != 0 && (flags & 0x400000) == 0 && (flags & 0x800000) == 0;
  return isBare && (atAccept || Second(world, Assumption::LoopbackBits)) ? flags + 0x800000
                                                                         : connection.flags;
}

std::optional<UINT64> TypeOf(const std::optional<UINT64>& luid) {
  return luid ? std::optional(*luid >> 48) : std::nullopt;
}

/// 0 unspecified, 1 unicast, 3 multicast, 4 broadcast.
std::optional<UINT64> KindOf(Policy::IpVersion version, const std::optional<Number>& address) {
  if (!address) {
    return std::nullopt;
  }
  const bool isV4 = version == Policy::IpVersion::V4;
  if (*address == Number(0)) {
    return 0;
  }
  if (isV4 && address->low == 0xFFFFFFFF) {
    return 4;
  }
  return (isV4 ? address->low >> 28 == 14 : address->high >> 56 == 0xFF) ? 3 : 1;
}

Value ValueOf(const std::string& field, const Connection& connection, bool atAccept, World world) {
  if (field == "FLAGS") {
    return Numeric(FlagsAt(atAccept, connection, world));
  }
  if (field == "IP_LOCAL_INTERFACE") {
    return Numeric(connection.localInterface);
  }
  if (field == "IP_ARRIVAL_INTERFACE") {
    return Numeric(connection.arrivalInterface);
  }
  if (field == "INTERFACE_TYPE") {
    return Numeric(TypeOf(connection.localInterface));
  }
  if (field == "ARRIVAL_INTERFACE_TYPE") {
    return Numeric(TypeOf(connection.arrivalInterface));
  }
  if (field == "NEXTHOP_INTERFACE_TYPE") {
    return Numeric(TypeOf(connection.nextHopInterface));
  }
  if (field == "IP_LOCAL_ADDRESS_TYPE") {
    return Numeric(KindOf(connection.ipVersion, connection.localAddress));
  }
  if (field == "IP_PROTOCOL") {
    return Numeric(connection.protocol);
  }
  if (field == "IP_LOCAL_PORT") {
    return Numeric(connection.localPort);
  }
  if (field == "IP_REMOTE_PORT") {
    return Numeric(connection.remotePort);
  }
  if (field == "IP_LOCAL_ADDRESS") {
    return Numeric(connection.localAddress);
  }
  if (field == "IP_REMOTE_ADDRESS") {
    return Numeric(connection.remoteAddress);
  }
  if (field == "ALE_APP_ID") {
    return {true, std::nullopt, connection.application};
  }
  if (field == "DIRECTION") {
    return Numeric(std::optional<UINT32>(connection.direction == Direction::Inbound));
  }
  return {false, std::nullopt, std::nullopt};
}

bool IsNegation(const FWPM_FILTER_CONDITION0& condition) {
  return condition.matchType == FWP_MATCH_NOT_EQUAL || static_cast<int>(condition.matchType) == 12;
}

Matching Holds(const FWPM_FILTER_CONDITION0& condition, const Value& value, World world) {
  if (!value.known) {
    return Perhaps;
  }
  const bool isUnset = !value.number && !value.bytes;
  if (condition.conditionValue.type == FWP_EMPTY) {
    return Of(isUnset);
  }
  if (!isUnset) {
    return value.number ? CompareNumbers(condition, *value.number)
                        : CompareApplications(condition, *value.bytes);
  }
  const bool testsFlags = condition.matchType == FWP_MATCH_FLAGS_ALL_SET ||
                          condition.matchType == FWP_MATCH_FLAGS_ANY_SET ||
                          condition.matchType == FWP_MATCH_FLAGS_NONE_SET;
  if (!Second(world, Assumption::UnsetFields)) {
    return No;
  }
  return testsFlags ? CompareNumbers(condition, 0) : Of(IsNegation(condition));
}

/// Whether the conditions on one field hold together.
/// @param holdsOf what one condition makes of it.
template <class HoldsOf>
Matching Together(const std::vector<const FWPM_FILTER_CONDITION0*>& conditions, World world,
                  HoldsOf holdsOf) {
  Matching best = No;
  Matching worstNegation = Yes;
  bool hasNegation = false;
  for (const FWPM_FILTER_CONDITION0* condition : conditions) {
    const Matching holds = holdsOf(*condition);
    if (IsNegation(*condition) && Second(world, Assumption::SeveralNegations)) {
      hasNegation = true;
      worstNegation = std::min(worstNegation, holds);
    } else {
      best = std::max(best, holds);
    }
  }
  return hasNegation ? std::max(best, worstNegation) : best;
}

/// Whether a condition is on an interface that a filter lets out of a quarantine that is over.
bool IsOverAnyway(const NaiveFilter& filter, const std::string& field,
                  const NaiveCircumstances& circumstances) {
  const bool isInterface =
      field.find("INTERFACE") != std::string::npos && field.find("PROFILE") == std::string::npos;
  return isInterface && !circumstances.epoch && filter.fields.contains("INTERFACE_QUARANTINE_EPOCH") &&
         field != "INTERFACE_QUARANTINE_EPOCH";
}

}  // namespace

NaiveFilter::NaiveFilter(const FWPM_FILTER0& native) : record(&native) {
  for (UINT32 i = 0; i < native.numFilterConditions; ++i) {
    fields[Catalog::FieldName(native.filterCondition[i].fieldKey)].push_back(&native.filterCondition[i]);
  }
}

Matching Matches(const NaiveFilter& filter, const Connection& connection,
                 const NaiveCircumstances& circumstances, World world) {
  const bool atAccept = Catalog::LayerName(filter.record->layerKey).starts_with("ALE_AUTH_RECV_ACCEPT");
  Matching matching = Yes;
  for (const auto& [field, conditions] : filter.fields) {
    if (IsOverAnyway(filter, field, circumstances)) {
      continue;
    }
    const Value value = ValueOf(field, connection, atAccept, world);
    const auto holdsOf = [&](const FWPM_FILTER_CONDITION0& condition) {
      const auto answer = Ask(field, condition, connection, circumstances);
      return answer ? *answer : Holds(condition, value, world);
    };
    matching = std::min(matching, Together(conditions, world, holdsOf));
  }
  return matching;
}
