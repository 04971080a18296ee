#include "filtering/Condition.h"

#include <utility>

#include "engine/FirewallException.h"
#include "filtering/EngineKeys.h"
#include "filtering/Values.h"

namespace WfpFirewall::Filtering {
namespace {

using namespace Values;

struct MatchPair {
  ConditionType type;
  FWP_MATCH_TYPE native;
};

constexpr MatchPair kMatchPairs[]{
    {ConditionType::Equal, FWP_MATCH_EQUAL},
    {ConditionType::EqualCaseInsensitive, FWP_MATCH_EQUAL_CASE_INSENSITIVE},
    {ConditionType::NotEqual, FWP_MATCH_NOT_EQUAL},
    {ConditionType::Greater, FWP_MATCH_GREATER},
    {ConditionType::GreaterOrEqual, FWP_MATCH_GREATER_OR_EQUAL},
    {ConditionType::Less, FWP_MATCH_LESS},
    {ConditionType::LessOrEqual, FWP_MATCH_LESS_OR_EQUAL},
    {ConditionType::Range, FWP_MATCH_RANGE},
};

/// A value that the engine gives by pointer. Null when the pointer is null, as in a test for an unset field.
template <class ValueClass, class Native>
std::unique_ptr<BaseValue> ReadPointer(const Native* native) {
  return native == nullptr ? nullptr : std::make_unique<ValueClass>(*native);
}

/// The value of one of the four address fields, in the class that fits its data type. Null when none fits.
template <class Address, class NetworkV4, class NetworkV6>
std::unique_ptr<BaseValue> ReadAddress(const FWP_CONDITION_VALUE0& value) {
  switch (value.type) {
    case FWP_V4_ADDR_MASK:
      return ReadPointer<NetworkV4>(value.v4AddrMask);
    case FWP_V6_ADDR_MASK:
      return ReadPointer<NetworkV6>(value.v6AddrMask);
    case FWP_UINT32:
      return std::make_unique<Address>(value.uint32);
    default:
      return nullptr;
  }
}

/// Null for a field that holds no address.
std::unique_ptr<BaseValue> ReadAddressField(const GUID& key, const FWP_CONDITION_VALUE0& value) {
  if (key == kConditionIpLocalAddress) {
    return ReadAddress<LocalIpAddressV4, LocalIpAddressAndMaskV4, LocalIpAddressAndMaskV6>(value);
  }
  if (key == kConditionIpRemoteAddress) {
    return ReadAddress<RemoteIpAddressV4, RemoteIpAddressAndMaskV4, RemoteIpAddressAndMaskV6>(value);
  }
  if (key == kConditionIpDestinationAddress) {
    return ReadAddress<DestinationIpAddressV4, DestinationIpAddressAndMaskV4, DestinationIpAddressAndMaskV6>(
        value);
  }
  if (key == kConditionIpSourceAddress) {
    return ReadAddress<SourceIpAddressV4, SourceIpAddressAndMaskV4, SourceIpAddressAndMaskV6>(value);
  }
  return nullptr;
}

/// Null for a field that has no value class.
std::unique_ptr<BaseValue> ReadValue(const GUID& key, const FWP_CONDITION_VALUE0& value) {
  if (key == kConditionAleAppId) {
    return ReadPointer<AppId>(value.byteBlob);
  }
  if (key == kConditionIpArrivalInterface) {
    return ReadPointer<ArrivalInterfaceLuid>(value.uint64);
  }
  if (key == kConditionIpLocalInterface) {
    return ReadPointer<LocalInterfaceLuid>(value.uint64);
  }
  if (key == kConditionInterfaceIndex) {
    return std::make_unique<InterfaceIndex>(static_cast<int>(value.uint32));
  }
  if (key == kConditionSubInterfaceIndex) {
    return std::make_unique<SubInterfaceIndex>(static_cast<int>(value.uint32));
  }
  if (key == kConditionIpProtocol) {
    return std::make_unique<Protocol>(static_cast<IPPROTO>(value.uint8));
  }
  if (key == kConditionIpLocalAddressType) {
    return std::make_unique<IpLocalAddressType>(static_cast<NL_ADDRESS_TYPE>(value.uint8));
  }
  if (key == kConditionFlags) {
    return std::make_unique<Flag>(static_cast<int>(value.uint32));
  }
  if (key == kConditionIpLocalPort) {
    return std::make_unique<LocalPort>(value.uint16);
  }
  if (key == kConditionIpRemotePort) {
    return std::make_unique<RemotePort>(value.uint16);
  }
  return ReadAddressField(key, value);
}

}  // namespace

FWP_MATCH_TYPE MapConditionType(ConditionType type) {
  for (const MatchPair& pair : kMatchPairs) {
    if (pair.type == type) {
      return pair.native;
    }
  }
  throw FirewallException("Not supported Condition type.");
}

ConditionType MapConditionType(FWP_MATCH_TYPE type) {
  // Contract: "greater" reads as "not equal", see
  // docs/rule-sets.md#copy-of-windows-firewalls-application-blocks.
  if (type == FWP_MATCH_GREATER) {
    return ConditionType::NotEqual;
  }
  for (const MatchPair& pair : kMatchPairs) {
    if (pair.native == type) {
      return pair.type;
    }
  }
  throw FirewallException("Not supported Condition type.");
}

Condition::Condition(ConditionType type, BaseValue* value) : type_(type), isRange_(false), value_(value) {}

Condition::Condition(ConditionType type, BaseValue* low, BaseValue* high)
    : type_(type), isRange_(true), value_(low), value2_(high) {}

bool Condition::IsRangeCondition() const { return isRange_; }

ConditionType Condition::GetConditionType() const { return type_; }

std::shared_ptr<BaseValue> Condition::GetConditionValue() const { return value_.Share(); }

std::shared_ptr<BaseValue> Condition::GetConditionValue2() const { return value2_.Share(); }

FWP_MATCH_TYPE Condition::GetNativeConditionType() const { return MapConditionType(type_); }

Condition Condition::FromNative(FWPM_FILTER_CONDITION0& native) {
  std::unique_ptr<BaseValue> value = ReadValue(native.fieldKey, native.conditionValue);
  if (value == nullptr) {
    throw FirewallException("Not yet supported condition");
  }
  const ConditionType type = MapConditionType(native.matchType);
  return {type, value.release()};
}

Condition ConditionEqual(BaseValue* value) { return {ConditionType::Equal, value}; }
Condition ConditionNotEqual(BaseValue* value) { return {ConditionType::NotEqual, value}; }
Condition ConditionEqualCaseInsensitive(BaseValue* value) {
  return {ConditionType::EqualCaseInsensitive, value};
}
Condition ConditionGreater(BaseValue* value) { return {ConditionType::Greater, value}; }
Condition ConditionGreaterOrEqual(BaseValue* value) { return {ConditionType::GreaterOrEqual, value}; }
Condition ConditionLess(BaseValue* value) { return {ConditionType::Less, value}; }
Condition ConditionLessOrEqual(BaseValue* value) { return {ConditionType::LessOrEqual, value}; }
Condition ConditionRange(BaseValue* low, BaseValue* high) { return {ConditionType::Range, low, high}; }

}  // namespace WfpFirewall::Filtering
