/**
 * @file
 * How far the emulated engine agrees with another one.
 */
#pragma once

#include <cstddef>
#include <vector>

#include "catalog/WindowsVersion.h"
#include "dump/EngineState.h"
#include "replay/FillEngine.h"

namespace Replay {

/// What a fresh emulated engine makes of what another engine holds.
struct Agreement {
  std::size_t filters = 0;
  std::size_t accepted = 0;  ///< of the filters
  /// Of all objects. Layers are not added.
  std::vector<Refusal> refusals{};

  std::size_t automaticWeights = 0;  ///< filters whose weight the engine chose, in whole or the low 60 bits
  std::size_t equalWeights = 0;      ///< of these
  /// Accepted filters, each with each other one in the same layer and sublayer.
  std::size_t orderedPairs = 0;
  std::size_t sameOrder = 0;  ///< pairs of which both engines ask the same one first

  std::size_t sublayers = 0;       ///< that are listed; a dump of the filters lists none
  std::size_t equalSublayers = 0;  ///< with the same weight

  /// The version of Windows that was emulated: that of the layers, else the one with the most equal weights.
  Catalog::WindowsVersion windows = Catalog::kNewestWindows;
};

/// Puts what an engine holds into a fresh emulated one, in the place of the one that this program is linked
/// with, and compares. Afterwards that one is back as it was.
/// @param state may have been read from a dump, or from any engine. What a dump of the filters lacks counts
/// as
///        being there.
Agreement ReplayIntoEmulator(const Dump::EngineState& state);

}  // namespace Replay
