/**
 * @file
 * Whether an engine's filters keep what the features promise.
 */
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "policy/Decide.h"
#include "promises/Features.h"

namespace Promises {

/// Whether a promise is kept.
enum class Keeping {
  Holds,
  Conditional,  ///< only under some readings of the assumptions
  Broken,
};

/// "holds", "holds only under a reading", "broken"
std::string_view KeepingText(Keeping keeping);

/// A promise, and whether it is kept.
struct PromiseResult {
  std::string feature;   ///< "kill switch"
  std::string name;      ///< "kill-switch-closes", unique
  std::string sentence;  ///< what the user is told
  Keeping keeping;
  Policy::WorldSet worlds;  ///< in which it holds for certain
  /// Unless it holds: the connection nearest to an ordinary one that breaks it, with the trace in a world
  /// where it does, and what was promised for it.
  std::optional<Policy::Explanation> counterexample;
  std::optional<Policy::Action> promised;
};

/// Checks every promise of the features that are on against every connection that can exist.
/// @param snapshot must outlive the results.
std::vector<PromiseResult> Prove(const Policy::Snapshot& snapshot, const Features& features);

/// A result in words: the sentence, its state with the readings, and the counterexample with its trace.
std::string Describe(const PromiseResult& result, const Policy::Labels& labels = {});

}  // namespace Promises
