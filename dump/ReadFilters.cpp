#include "dump/ReadObjects.h"
#include "dump/ReadValues.h"

namespace Dump {
namespace {

FWPM_FILTER_CONDITION0 ReadCondition(const Element& item, EngineState& state) {
  Members members(item);
  FWPM_FILTER_CONDITION0 condition{};
  condition.fieldKey = ReadKey(members.Take("fieldKey"), KeyKind::Field, state);
  condition.matchType = static_cast<FWP_MATCH_TYPE>(ReadNamedNumber(members.Take("matchType"), kMatches));
  condition.conditionValue = ReadConditionValue(members.Take("conditionValue"), state);
  members.SkipRest(state.skippedElements);
  return condition;
}

void ReadConditions(const Element& list, FWPM_FILTER0& filter, EngineState& state) {
  const std::vector<Element> items = Items(list, state.skippedElements);
  filter.numFilterConditions = static_cast<UINT32>(items.size());
  filter.filterCondition = state.memory.MakeArray<FWPM_FILTER_CONDITION0>(items.size());
  for (std::size_t i = 0; i < items.size(); ++i) {
    filter.filterCondition[i] = ReadCondition(items[i], state);
  }
}

FWPM_ACTION0 ReadAction(const Element& element, EngineState& state) {
  Members members(element);
  FWPM_ACTION0 action{};
  action.type = ReadNamedNumber(members.Take("type"), kActions);
  const auto filterType = members.TakeIfAny("filterType");
  if (filterType) {
    action.filterType = ReadKey(*filterType, KeyKind::Callout, state);
  }
  members.SkipRest(state.skippedElements);
  return action;
}

/// What the filter hands to a callout: the key of a provider context or a number, in the same place.
void ReadContext(const Element& item, Members& members, FWPM_FILTER0& filter, EngineState& state) {
  const auto rawContext = members.TakeIfAny("rawContext");
  const auto contextKey = members.TakeIfAny("providerContextKey");
  if (contextKey && !rawContext && MayHaveContextKey(filter.flags)) {
    filter.providerContextKey = ReadKey(*contextKey, KeyKind::ProviderContext, state);
  } else if (rawContext && !contextKey && MayHaveRawContext(filter.flags)) {
    filter.rawContext = ReadNumber<UINT64>(*rawContext);
  } else {
    item.Fail(
        "expected <providerContextKey> in a filter with the flag FWPM_FILTER_FLAG_HAS_PROVIDER_CONTEXT, "
        "<rawContext> in one without");
  }
}

FWPM_FILTER0 ReadFilter(const Element& item, const GUID* layerKey, EngineState& state) {
  Members members(item);
  FWPM_FILTER0 filter{};
  filter.filterKey = ReadGuid(members.Take("filterKey"));
  filter.displayData = ReadDisplayData(members, state);
  filter.flags = ReadFlags(members.TakeIfAny("flags"), kFilterFlags, filter.filterKey, state);
  filter.providerKey = ReadKeyIfAny(members.TakeIfAny("providerKey"), KeyKind::Provider, state);
  filter.providerData = ReadBlob(members.TakeIfAny("providerData"), state);
  filter.layerKey = ReadLayerKey(members.Take("layerKey"), layerKey, state);
  filter.subLayerKey = ReadKey(members.Take("subLayerKey"), KeyKind::Sublayer, state);
  filter.weight = ReadValue(members.Take("weight"), state);
  ReadConditions(members.Take("filterCondition"), filter, state);
  filter.action = ReadAction(members.Take("action"), state);
  ReadContext(item, members, filter, state);
  const auto reserved = members.TakeIfAny("reserved");
  if (reserved) {
    filter.reserved = state.memory.Make(ReadGuid(reserved));
  }
  filter.filterId = ReadNumber<UINT64>(members.Take("filterId"));
  filter.effectiveWeight = ReadValue(members.Take("effectiveWeight"), state);
  members.SkipRest(state.skippedElements);
  return filter;
}

}  // namespace

void ReadFilters(const Element& list, const GUID* layerKey, EngineState& state) {
  for (const Element& item : Items(list, state.skippedElements)) {
    state.filters.push_back(ReadFilter(item, layerKey, state));
  }
}

}  // namespace Dump
