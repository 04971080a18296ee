/**
 * @file
 * How much a condition leaves open.
 */
#pragma once

#include <WfpPlatform.h>

#include "emulator/Switches.h"

namespace EngineEmulator {

/// How many bits of a field a condition pins down: the bits of the field, less the logarithm of the number of
/// values that are left. A condition that leaves no value, or asks for no value, pins down all bits.
/// @param condition has passed the checks. @param fieldBits 8, 16, 32 or 128.
double PinnedBits(const FWPM_FILTER_CONDITION0& condition, unsigned fieldBits, const Switches& switches);

}  // namespace EngineEmulator
