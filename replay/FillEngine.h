/**
 * @file
 * Putting into an engine what a dump holds.
 */
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "dump/EngineState.h"
#include "replay/EngineCalls.h"

namespace Replay {

/// Objects that an engine refused for the same reason.
struct Refusal {
  std::string reason;  ///< the name of its code: "FWP_E_PROVIDER_NOT_FOUND"
  std::size_t count;
  std::string example;  ///< the first of them, and why
};

/// What became of a dump's objects.
struct Filling {
  std::vector<Refusal> refusals;  ///< in the order of their first objects
  std::vector<UINT64> filterIds;  ///< that the filters got, in the dump's order; 0 for a refused one
};

/// Which of their flags objects are added with.
enum class FlagsToAdd {
  AllButDisabled,  ///< what every engine refuses is left out
  All,             ///< for an emulated engine that keeps what it is given
};

/// Adds all objects but layers, in an order in which everything that one refers to is there, the filters in
/// that of their ids. Objects other than filters that the engine has already are left as they are.
/// @param whyRefused tells what the engine's code does not: EngineEmulator::LastRefusal.
/// @throws EngineError if the engine can't be opened or the additions can't be committed.
Filling FillEngine(const EngineCalls& engine, const Dump::EngineState& state, FlagsToAdd flags,
                   const std::function<std::string()>& whyRefused);

}  // namespace Replay
