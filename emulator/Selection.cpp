#include "emulator/Selection.h"

#include <algorithm>
#include <span>
#include <tuple>
#include <unordered_set>
#include <utility>

#include "catalog/Names.h"
#include "emulator/Checks.h"
#include "emulator/ConditionSets.h"
#include "emulator/GuidHash.h"

namespace EngineEmulator {
namespace {

constexpr UINT32 kFilterEnumFlags = FWP_FILTER_ENUM_FLAG_BEST_TERMINATING_MATCH |
                                    FWP_FILTER_ENUM_FLAG_SORTED | FWP_FILTER_ENUM_FLAG_BOOTTIME_ONLY |
                                    FWP_FILTER_ENUM_FLAG_INCLUDE_BOOTTIME |
                                    FWP_FILTER_ENUM_FLAG_INCLUDE_DISABLED;

bool HasProvider(const GUID* wanted, const GUID* providerKey) {
  return wanted == nullptr || (providerKey != nullptr && *wanted == *providerKey);
}

bool HasCallout(const GUID* wanted, const FWPM_ACTION0& action) {
  return wanted == nullptr || ((action.type & FWP_ACTION_FLAG_CALLOUT) != 0 && *wanted == action.calloutKey);
}

bool IsWantedAtBootTime(UINT32 flags, const FWPM_FILTER0& filter) {
  if ((filter.flags & FWPM_FILTER_FLAG_BOOTTIME) == 0) {
    return (flags & FWP_FILTER_ENUM_FLAG_BOOTTIME_ONLY) == 0;
  }
  return (flags & (FWP_FILTER_ENUM_FLAG_BOOTTIME_ONLY | FWP_FILTER_ENUM_FLAG_INCLUDE_BOOTTIME)) != 0;
}

/// No conditions narrow nothing, whatever the type of the enumeration.
bool MeetsConditions(const FWPM_FILTER_ENUM_TEMPLATE0& criteria, const FWPM_FILTER0& filter) {
  const Conditions own(filter.filterCondition, filter.numFilterConditions);
  const Conditions wanted(criteria.filterCondition, criteria.numFilterConditions);
  if (wanted.empty()) {
    return true;
  }
  return criteria.enumType == FWP_FILTER_ENUM_OVERLAPPING ? Overlap(own, wanted) : Contain(own, wanted);
}

bool Matches(const FWPM_FILTER_ENUM_TEMPLATE0& criteria, const FWPM_FILTER0& filter) {
  return HasProvider(criteria.providerKey, filter.providerKey) &&
         (criteria.layerKey == GUID{} || criteria.layerKey == filter.layerKey) &&
         (criteria.actionMask & filter.action.type) != 0 && HasCallout(criteria.calloutKey, filter.action) &&
         IsWantedAtBootTime(criteria.flags, filter) && MeetsConditions(criteria, filter);
}

/// A filter's place among all, in rising order.
using Rank = std::tuple<UINT64, UINT64, UINT64, UINT64>;

Rank RankOf(const Object<FWPM_FILTER0>& object, const ObjectStore& objects) {
  const FWPM_FILTER0& filter = object.Record();
  const auto layer = objects.OfKind<FWPM_LAYER0>().Find(filter.layerKey);
  const auto sublayer = objects.OfKind<FWPM_SUBLAYER0>().Find(filter.subLayerKey);
  return {layer->number, ~UINT64{sublayer->Record().weight}, ~*filter.effectiveWeight.uint64, ~object.number};
}

/// A template may test each field only once; a filter may test one several times.
Refusal CheckTemplateConditions(const FWPM_FILTER_ENUM_TEMPLATE0& criteria, const Catalog::Layer& layer,
                                const Switches& switches) {
  if (criteria.numFilterConditions > kMostConditions) {
    return {FWP_E_INVALID_PARAMETER, "the template has too many conditions to be meant"};
  }
  std::unordered_set<GUID, GuidHash> seen;
  for (const FWPM_FILTER_CONDITION0& condition :
       std::span(criteria.filterCondition, criteria.numFilterConditions)) {
    if (Refusal refusal = CheckCondition(condition, layer, switches)) {
      return refusal;
    }
    if (!seen.insert(condition.fieldKey).second) {
      return {FWP_E_DUPLICATE_CONDITION,
              "the template tests " + Catalog::FieldName(condition.fieldKey) + " twice"};
    }
  }
  return {};
}

}  // namespace

Refusal CheckTemplate(const FWPM_PROVIDER_ENUM_TEMPLATE0*, const Switches&) { return {}; }

Refusal CheckTemplate(const FWPM_SUBLAYER_ENUM_TEMPLATE0*, const Switches&) { return {}; }

Refusal CheckTemplate(const FWPM_CALLOUT_ENUM_TEMPLATE0*, const Switches&) { return {}; }

Refusal CheckTemplate(const FWPM_PROVIDER_CONTEXT_ENUM_TEMPLATE0*, const Switches&) { return {}; }

Refusal CheckTemplate(const FWPM_LAYER_ENUM_TEMPLATE0*, const Switches&) { return {}; }

Refusal CheckTemplate(const FWPM_FILTER_ENUM_TEMPLATE0* criteria, const Switches& switches) {
  if (criteria == nullptr) {
    return {};
  }
  if ((criteria->flags & ~kFilterEnumFlags) != 0) {
    return {FWP_E_INVALID_FLAGS, "the template has unknown flags"};
  }
  if (criteria->enumType != FWP_FILTER_ENUM_FULLY_CONTAINED &&
      criteria->enumType != FWP_FILTER_ENUM_OVERLAPPING) {
    return {FWP_E_INVALID_ENUMERATOR,
            "there is no type " + std::to_string(int{criteria->enumType}) + " of enumerations"};
  }
  if (criteria->numFilterConditions != 0 && criteria->filterCondition == nullptr) {
    return {FWP_E_NULL_POINTER, "the template has a number of conditions but no array of them"};
  }
  // Conditions are of a layer.
  const bool anyLayer = criteria->layerKey == GUID{} && switches.refuseZeroLayerInTemplate == 0 &&
                        criteria->numFilterConditions == 0;
  const Catalog::Layer* layer = Catalog::FindLayer(criteria->layerKey, switches.Version());
  if (layer == nullptr) {
    return anyLayer ? Refusal()
                    : Refusal(FWP_E_LAYER_NOT_FOUND, "the layer " + Catalog::FormatGuid(criteria->layerKey) +
                                                         " of the template does not exist");
  }
  return CheckTemplateConditions(*criteria, *layer, switches);
}

void SortFilters(std::vector<ObjectPtr<FWPM_FILTER0>>& filters, const ObjectStore& objects) {
  std::vector<std::pair<Rank, ObjectPtr<FWPM_FILTER0>>> ranked;
  ranked.reserve(filters.size());
  for (const ObjectPtr<FWPM_FILTER0>& filter : filters) {
    ranked.emplace_back(RankOf(*filter, objects), filter);
  }
  std::ranges::sort(ranked, {}, &decltype(ranked)::value_type::first);
  std::ranges::transform(ranked, filters.begin(), &decltype(ranked)::value_type::second);
}

std::vector<ObjectPtr<FWPM_PROVIDER0>> Select(const FWPM_PROVIDER_ENUM_TEMPLATE0*,
                                              std::vector<ObjectPtr<FWPM_PROVIDER0>> objects) {
  return objects;
}

std::vector<ObjectPtr<FWPM_SUBLAYER0>> Select(const FWPM_SUBLAYER_ENUM_TEMPLATE0* criteria,
                                              std::vector<ObjectPtr<FWPM_SUBLAYER0>> objects) {
  if (criteria != nullptr) {
    std::erase_if(objects, [&](const ObjectPtr<FWPM_SUBLAYER0>& object) {
      return !HasProvider(criteria->providerKey, object->Record().providerKey);
    });
  }
  std::ranges::stable_sort(objects, {}, [](const auto& object) { return object->Record().weight; });
  return objects;
}

std::vector<ObjectPtr<FWPM_CALLOUT0>> Select(const FWPM_CALLOUT_ENUM_TEMPLATE0* criteria,
                                             std::vector<ObjectPtr<FWPM_CALLOUT0>> objects) {
  if (criteria != nullptr) {
    std::erase_if(objects, [&](const ObjectPtr<FWPM_CALLOUT0>& object) {
      const FWPM_CALLOUT0& callout = object->Record();
      const bool anyLayer = criteria->layerKey == GUID{};
      return !HasProvider(criteria->providerKey, callout.providerKey) ||
             !(anyLayer || criteria->layerKey == callout.applicableLayer);
    });
  }
  return objects;
}

std::vector<ObjectPtr<FWPM_PROVIDER_CONTEXT0>> Select(
    const FWPM_PROVIDER_CONTEXT_ENUM_TEMPLATE0* criteria,
    std::vector<ObjectPtr<FWPM_PROVIDER_CONTEXT0>> objects) {
  if (criteria != nullptr) {
    std::erase_if(objects, [&](const ObjectPtr<FWPM_PROVIDER_CONTEXT0>& object) {
      const FWPM_PROVIDER_CONTEXT0& context = object->Record();
      return !HasProvider(criteria->providerKey, context.providerKey) ||
             criteria->providerContextType != context.type;
    });
  }
  return objects;
}

std::vector<ObjectPtr<FWPM_LAYER0>> Select(const FWPM_LAYER_ENUM_TEMPLATE0*,
                                           std::vector<ObjectPtr<FWPM_LAYER0>> objects) {
  return objects;
}

std::vector<ObjectPtr<FWPM_FILTER0>> Select(const FWPM_FILTER_ENUM_TEMPLATE0* criteria,
                                            std::vector<ObjectPtr<FWPM_FILTER0>> objects) {
  if (criteria == nullptr) {
    return objects;
  }
  std::erase_if(objects,
                [&](const ObjectPtr<FWPM_FILTER0>& object) { return !Matches(*criteria, object->Record()); });
  return objects;
}

}  // namespace EngineEmulator
