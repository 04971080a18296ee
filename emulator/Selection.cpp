#include "emulator/Selection.h"

#include <algorithm>

#include "catalog/Layers.h"

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

bool Matches(const FWPM_FILTER_ENUM_TEMPLATE0& criteria, const FWPM_FILTER0& filter) {
  return HasProvider(criteria.providerKey, filter.providerKey) && criteria.layerKey == filter.layerKey &&
         (criteria.actionMask & filter.action.type) != 0 && HasCallout(criteria.calloutKey, filter.action) &&
         IsWantedAtBootTime(criteria.flags, filter);
}

bool IsHeavier(const ObjectPtr<FWPM_FILTER0>& left, const ObjectPtr<FWPM_FILTER0>& right) {
  return *left->Record().effectiveWeight.uint64 > *right->Record().effectiveWeight.uint64;
}

}  // namespace

DWORD CheckTemplate(const FWPM_PROVIDER_ENUM_TEMPLATE0*) { return ERROR_SUCCESS; }

DWORD CheckTemplate(const FWPM_SUBLAYER_ENUM_TEMPLATE0*) { return ERROR_SUCCESS; }

DWORD CheckTemplate(const FWPM_FILTER_ENUM_TEMPLATE0* criteria) {
  if (criteria == nullptr) {
    return ERROR_SUCCESS;
  }
  if ((criteria->flags & ~kFilterEnumFlags) != 0) {
    return static_cast<DWORD>(FWP_E_INVALID_FLAGS);
  }
  return Catalog::FindLayer(criteria->layerKey) != nullptr ? ERROR_SUCCESS
                                                           : static_cast<DWORD>(FWP_E_LAYER_NOT_FOUND);
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
  return objects;
}

std::vector<ObjectPtr<FWPM_FILTER0>> Select(const FWPM_FILTER_ENUM_TEMPLATE0* criteria,
                                            std::vector<ObjectPtr<FWPM_FILTER0>> objects) {
  if (criteria == nullptr) {
    return objects;
  }
  std::erase_if(objects,
                [&](const ObjectPtr<FWPM_FILTER0>& object) { return !Matches(*criteria, object->Record()); });
  if ((criteria->flags & FWP_FILTER_ENUM_FLAG_SORTED) != 0) {
    std::stable_sort(objects.begin(), objects.end(), IsHeavier);
  }
  return objects;
}

}  // namespace EngineEmulator
