/**
 * @file
 * What enumeration templates select.
 */
#pragma once

#include "emulator/ObjectStore.h"
#include "emulator/Refusal.h"
#include "emulator/Switches.h"

namespace EngineEmulator {

/// The first thing that is wrong with a template. Null is no template.
Refusal CheckTemplate(const FWPM_PROVIDER_ENUM_TEMPLATE0* criteria, const Switches& switches);
Refusal CheckTemplate(const FWPM_SUBLAYER_ENUM_TEMPLATE0* criteria, const Switches& switches);
Refusal CheckTemplate(const FWPM_CALLOUT_ENUM_TEMPLATE0* criteria, const Switches& switches);
Refusal CheckTemplate(const FWPM_PROVIDER_CONTEXT_ENUM_TEMPLATE0* criteria, const Switches& switches);
Refusal CheckTemplate(const FWPM_FILTER_ENUM_TEMPLATE0* criteria, const Switches& switches);
Refusal CheckTemplate(const FWPM_LAYER_ENUM_TEMPLATE0* criteria, const Switches& switches);

/// Whether a template asks for the heaviest filters first.
template <class EnumTemplate>
bool AsksForOrder(const EnumTemplate*) {
  return false;
}
inline bool AsksForOrder(const FWPM_FILTER_ENUM_TEMPLATE0* criteria) {
  return criteria != nullptr && (criteria->flags & FWP_FILTER_ENUM_FLAG_SORTED) != 0;
}

/// Puts filters in the order of layer ids, in a layer the heaviest sublayer first, in a sublayer the heaviest
/// filter first, of equally heavy ones the newest.
void SortFilters(std::vector<ObjectPtr<FWPM_FILTER0>>& filters, const ObjectStore& objects);

/// The objects that a template selects, in the order of adding, sublayers by rising weight. A null template
/// selects all.
std::vector<ObjectPtr<FWPM_PROVIDER0>> Select(const FWPM_PROVIDER_ENUM_TEMPLATE0* criteria,
                                              std::vector<ObjectPtr<FWPM_PROVIDER0>> objects);
std::vector<ObjectPtr<FWPM_SUBLAYER0>> Select(const FWPM_SUBLAYER_ENUM_TEMPLATE0* criteria,
                                              std::vector<ObjectPtr<FWPM_SUBLAYER0>> objects);
std::vector<ObjectPtr<FWPM_FILTER0>> Select(const FWPM_FILTER_ENUM_TEMPLATE0* criteria,
                                            std::vector<ObjectPtr<FWPM_FILTER0>> objects);

std::vector<ObjectPtr<FWPM_CALLOUT0>> Select(const FWPM_CALLOUT_ENUM_TEMPLATE0* criteria,
                                             std::vector<ObjectPtr<FWPM_CALLOUT0>> objects);
std::vector<ObjectPtr<FWPM_PROVIDER_CONTEXT0>> Select(const FWPM_PROVIDER_CONTEXT_ENUM_TEMPLATE0* criteria,
                                                      std::vector<ObjectPtr<FWPM_PROVIDER_CONTEXT0>> objects);
std::vector<ObjectPtr<FWPM_LAYER0>> Select(const FWPM_LAYER_ENUM_TEMPLATE0* criteria,
                                           std::vector<ObjectPtr<FWPM_LAYER0>> objects);

}  // namespace EngineEmulator
