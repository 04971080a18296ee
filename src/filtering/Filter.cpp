#include "filtering/Filter.h"

#include <cstring>
#include <utility>

#include "engine/FirewallException.h"
#include "filtering/NativeField.h"

namespace WfpFirewall {
namespace {

using Filtering::Condition;
using Filtering::ConditionType;
using Filtering::LayerType;
using Filtering::MapToNativeField;
using Filtering::NativeField;

FWP_VALUE0 ToNativeWeight(std::int16_t weight) {
  auto native = FWP_VALUE0();
  if (weight != 0) {
    native.type = FWP_UINT8;
    native.uint8 = static_cast<UINT8>(weight);
  }
  return native;
}

/// Writes a value of a type that may stand alone or be an end of a range; false for any other type.
template <class NativeValue>
bool WriteCommonType(const NativeField& field, NativeValue& native) {
  native.type = field.type;
  switch (field.type) {
    case FWP_UINT8:
      std::memcpy(&native.uint8, field.data, sizeof(native.uint8));
      return true;
    case FWP_UINT32:
      std::memcpy(&native.uint32, field.data, sizeof(native.uint32));
      return true;
    case FWP_UINT64:
      native.uint64 = static_cast<UINT64*>(field.data);
      return true;
    case FWP_BYTE_BLOB_TYPE:
      native.byteBlob = static_cast<FWP_BYTE_BLOB*>(field.data);
      return true;
    default:
      return false;
  }
}

FWP_CONDITION_VALUE0 ToNativeValue(const NativeField& field) {
  auto native = FWP_CONDITION_VALUE0();
  if (WriteCommonType(field, native)) {
    return native;
  }
  switch (field.type) {
    case FWP_UINT16:
      std::memcpy(&native.uint16, field.data, sizeof(native.uint16));
      return native;
    case FWP_V4_ADDR_MASK:
      native.v4AddrMask = static_cast<FWP_V4_ADDR_AND_MASK*>(field.data);
      return native;
    case FWP_V6_ADDR_MASK:
      native.v6AddrMask = static_cast<FWP_V6_ADDR_AND_MASK*>(field.data);
      return native;
    default:
      throw FirewallException("Not supported value type.");
  }
}

FWP_VALUE0 ToNativeRangeEnd(const NativeField& field) {
  auto native = FWP_VALUE0();
  if (!WriteCommonType(field, native)) {
    // That goes for ports, which have 16 bits, and for networks.
    throw FirewallException("Not supported value type in range.");
  }
  return native;
}

}  // namespace

Filter::Filter(Action action) : action_(action) {}

Action Filter::GetAction() const { return action_; }

Filtering::Layer Filter::GetLayer() const { return layer_; }

std::vector<Condition> Filter::GetConditions() const {
  std::vector<Condition> conditions;
  conditions.reserve(conditions_.Size());
  for (std::size_t i = 0; i < conditions_.Size(); ++i) {
    conditions.push_back(conditions_[i]);
  }
  return conditions;
}

void Filter::SetLayer(Filtering::Layer layer) {
  if (layer.GetLayerType() == LayerType::None) {
    throw FirewallException("Layer type must be set befo assigning it to filter!");
  }
  layer_ = layer.GetLayerType();
}

void Filter::SetWeight(std::int16_t weight) { weight_ = weight; }

void Filter::OverrideOtherSublayers() { overrideOtherSublayers_ = true; }

void Filter::AddCondition(Condition condition) { conditions_.Add(std::move(condition)); }

Filter::RecordCount Filter::CountRecords() const { return {conditions_.Size(), conditions_.RangeCount()}; }

void Filter::WriteConditions(FWPM_FILTER_CONDITION0* conditions, FWP_RANGE0* ranges) const {
  for (std::size_t i = 0; i < conditions_.Size(); ++i) {
    const Condition& condition = conditions_[i];
    FWPM_FILTER_CONDITION0& target = conditions[i];
    target.matchType = condition.GetNativeConditionType();
    const NativeField field = MapToNativeField(condition.value_.Get());
    target.fieldKey = field.key;
    if (condition.type_ != ConditionType::Range) {
      target.conditionValue = ToNativeValue(field);
      continue;
    }
    const NativeField high = MapToNativeField(condition.value2_.Get());
    *ranges = {ToNativeRangeEnd(field), ToNativeRangeEnd(high)};
    target.conditionValue.type = FWP_RANGE_TYPE;
    target.conditionValue.rangeValue = ranges++;
  }
}

void Filter::WriteRecord(FWPM_FILTER0& record, FWPM_FILTER_CONDITION0* conditions) const {
  record.layerKey = MapLayerType(layer_);
  record.weight = ToNativeWeight(weight_);
  record.action.type = action_ == Action::Block ? FWP_ACTION_BLOCK : FWP_ACTION_PERMIT;
  record.flags = overrideOtherSublayers_ ? FWPM_FILTER_FLAG_CLEAR_ACTION_RIGHT : 0;
  record.numFilterConditions = static_cast<UINT32>(conditions_.Size());
  record.filterCondition = record.numFilterConditions == 0 ? nullptr : conditions;
}

FWPM_FILTER0 Filter::ToNativeFilter() {
  nativeRanges_.reset();
  const RecordCount count = CountRecords();
  std::shared_ptr<FWPM_FILTER_CONDITION0[]> nativeConditions;
  if (count.conditions != 0) {
    nativeConditions = std::make_shared<FWPM_FILTER_CONDITION0[]>(count.conditions);
  }
  if (count.ranges != 0) {
    nativeRanges_ = std::make_shared<FWP_RANGE0[]>(count.ranges);
  }
  auto native = FWPM_FILTER0();  // every byte zero
  WriteRecord(native, nativeConditions.get());
  WriteConditions(nativeConditions.get(), nativeRanges_.get());
  nativeConditions_ = std::move(nativeConditions);
  return native;
}

Filter Filter::BuildFromNative(FWPM_FILTER0* native) {
  Filter filter(native->action.type == FWP_ACTION_BLOCK ? Action::Block : Action::Permit);
  filter.SetLayer(Filtering::Layer::FromNative(native->layerKey));
  // The first byte of the union, whatever its type: that is where an 8-bit weight stands.
  std::uint8_t weight = 0;
  std::memcpy(&weight, &native->weight.uint8, sizeof(weight));
  filter.SetWeight(weight);
  // This flag alone. Contract: with another flag beside it the copy does not override, see
  // docs/rule-sets.md#copy-of-windows-firewalls-application-blocks.
  if (native->flags == FWPM_FILTER_FLAG_CLEAR_ACTION_RIGHT) {
    filter.OverrideOtherSublayers();
  }
  for (UINT32 i = 0; i < native->numFilterConditions; ++i) {
    filter.AddCondition(Condition::FromNative(native->filterCondition[i]));
  }
  return filter;
}

}  // namespace WfpFirewall
