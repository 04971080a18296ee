/**
 * @file
 * Objects in the place of those that a dump does not list.
 */
#pragma once

#include "dump/EngineState.h"

namespace Replay {

/// The objects of a dump but layers, and of a dump of the filters besides what its filters name and it does
/// not list, with nothing in it: so an engine can take the filters.
/// @return records that point into the memory of `state`, which must live longer.
Dump::EngineState WithStandIns(const Dump::EngineState& state);

}  // namespace Replay
