#include "filtering/NativeField.h"

#include <algorithm>
#include <iterator>
#include <typeinfo>

#include "engine/FirewallException.h"
#include "filtering/EngineKeys.h"
#include "filtering/Values.h"

namespace WfpFirewall::Filtering {
namespace {

using namespace Values;

template <class ValueClass>
bool Is(const BaseValue* value) {
  return dynamic_cast<const ValueClass*>(value) != nullptr;
}

/// Null if the value was moved from. The dynamic cast is right also for a class that has several values as
/// bases.
template <class ValueClass>
void* Data(const BaseValue* value) {
  const bool isItself = &typeid(*value) == &typeid(ValueClass);
  return isItself ? static_cast<const ValueClass*>(value)->GetValue()
                  : dynamic_cast<const ValueClass*>(value)->GetValue();
}

struct FieldRule {
  const std::type_info* valueClass;
  bool (*matches)(const BaseValue* value);
  void* (*data)(const BaseValue* value);
  const GUID* key;
  FWP_DATA_TYPE type;
};

template <class ValueClass>
constexpr FieldRule Rule(const GUID& key, FWP_DATA_TYPE type) {
  return {&typeid(ValueClass), Is<ValueClass>, Data<ValueClass>, &key, type};
}

// The first rule that matches decides, so a derived class stands before its base.
constexpr FieldRule kFieldRules[]{
    Rule<AppId>(kConditionAleAppId, FWP_BYTE_BLOB_TYPE),
    Rule<ArrivalInterfaceLuid>(kConditionIpArrivalInterface, FWP_UINT64),
    Rule<LocalInterfaceLuid>(kConditionIpLocalInterface, FWP_UINT64),
    Rule<SubInterfaceIndex>(kConditionSubInterfaceIndex, FWP_UINT32),
    Rule<InterfaceIndex>(kConditionInterfaceIndex, FWP_UINT32),
    Rule<Protocol>(kConditionIpProtocol, FWP_UINT8),
    Rule<IpLocalAddressType>(kConditionIpLocalAddressType, FWP_UINT8),
    Rule<Flag>(kConditionFlags, FWP_UINT32),
    Rule<LocalIpAddressV4>(kConditionIpLocalAddress, FWP_UINT32),
    Rule<RemoteIpAddressV4>(kConditionIpRemoteAddress, FWP_UINT32),
    Rule<DestinationIpAddressV4>(kConditionIpDestinationAddress, FWP_UINT32),
    Rule<SourceIpAddressV4>(kConditionIpSourceAddress, FWP_UINT32),
    Rule<LocalIpAddressAndMaskV4>(kConditionIpLocalAddress, FWP_V4_ADDR_MASK),
    Rule<RemoteIpAddressAndMaskV4>(kConditionIpRemoteAddress, FWP_V4_ADDR_MASK),
    Rule<DestinationIpAddressAndMaskV4>(kConditionIpDestinationAddress, FWP_V4_ADDR_MASK),
    Rule<SourceIpAddressAndMaskV4>(kConditionIpSourceAddress, FWP_V4_ADDR_MASK),
    Rule<RemoteIpAddressAndMaskV6>(kConditionIpRemoteAddress, FWP_V6_ADDR_MASK),
    Rule<LocalPort>(kConditionIpLocalPort, FWP_UINT16),
    Rule<RemotePort>(kConditionIpRemotePort, FWP_UINT16),
};

/// Null when there is none.
const FieldRule* FindRule(const BaseValue* value) {
  if (value == nullptr) {
    return nullptr;
  }
  // Nearly every value's class is in the table itself, with the very type information of this module.
  const std::type_info& valueClass = typeid(*value);
  const auto* rule = std::ranges::find(kFieldRules, &valueClass, &FieldRule::valueClass);
  if (rule == std::end(kFieldRules)) {
    // A client may have type information of its own for the same class.
    rule = std::ranges::find_if(
        kFieldRules, [&](const FieldRule& candidate) { return *candidate.valueClass == valueClass; });
  }
  if (rule == std::end(kFieldRules)) {
    rule = std::ranges::find_if(kFieldRules,
                                [&](const FieldRule& candidate) { return candidate.matches(value); });
  }
  return rule == std::end(kFieldRules) ? nullptr : rule;
}

}  // namespace

NativeField MapToNativeField(const BaseValue* value) {
  if (const FieldRule* rule = FindRule(value)) {
    if (void* const data = rule->data(value)) {
      return {*rule->key, rule->type, data};
    }
  } else if (Is<IpAddressV4>(value) || Is<IpAddressAndMaskV4>(value)) {
    // Contract: the text lacks its negation, see docs/host-guide.md#texts.
    throw FirewallException("You can use base IpAddressV4 class as condition");
  }
  throw FirewallException("Not supported condition value");
}

}  // namespace WfpFirewall::Filtering
