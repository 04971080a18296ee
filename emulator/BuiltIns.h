/**
 * @file
 * The objects that come with the system.
 */
#pragma once

#include <vector>

#include "emulator/ObjectStore.h"
#include "emulator/Rules.h"

namespace EngineEmulator {

/// The layers of the catalogue, each with its fields. A layer's number is its runtime id. Every engine
/// shares them.
const std::vector<ObjectPtr<FWPM_LAYER0>>& Layers();

/// The sublayers of the catalogue, with the weights that the rules give them.
std::vector<ObjectPtr<FWPM_SUBLAYER0>> MakeBuiltInSublayers(const Rules& rules);

}  // namespace EngineEmulator
