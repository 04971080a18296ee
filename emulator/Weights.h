/**
 * @file
 * The weights that filters compete with.
 */
#pragma once

#include <WfpPlatform.h>

#include "emulator/Switches.h"

namespace EngineEmulator {

/// The weight of a filter that has passed the checks. One of 64 bits is taken as it is. Otherwise the top
/// four bits are the range given, or zero, and the rest is the engine's, by the filter's conditions.
UINT64 EffectiveWeight(const FWPM_FILTER0& filter, const Switches& switches);

}  // namespace EngineEmulator
