/**
 * @file
 * What enumeration templates select.
 */
#pragma once

#include "emulator/ObjectStore.h"

namespace EngineEmulator {

/// The code of the first fault of a template, or ERROR_SUCCESS. Null is no template.
DWORD CheckTemplate(const FWPM_PROVIDER_ENUM_TEMPLATE0* criteria);
DWORD CheckTemplate(const FWPM_SUBLAYER_ENUM_TEMPLATE0* criteria);
DWORD CheckTemplate(const FWPM_FILTER_ENUM_TEMPLATE0* criteria);

/// The objects that a template selects, in the order of adding unless it asks for another. A null template
/// selects all.
std::vector<ObjectPtr<FWPM_PROVIDER0>> Select(const FWPM_PROVIDER_ENUM_TEMPLATE0* criteria,
                                              std::vector<ObjectPtr<FWPM_PROVIDER0>> objects);
std::vector<ObjectPtr<FWPM_SUBLAYER0>> Select(const FWPM_SUBLAYER_ENUM_TEMPLATE0* criteria,
                                              std::vector<ObjectPtr<FWPM_SUBLAYER0>> objects);
std::vector<ObjectPtr<FWPM_FILTER0>> Select(const FWPM_FILTER_ENUM_TEMPLATE0* criteria,
                                            std::vector<ObjectPtr<FWPM_FILTER0>> objects);

}  // namespace EngineEmulator
