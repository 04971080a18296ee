/**
 * @file
 * What conditions on fields that connections do not have here make of a filter.
 */
#pragma once

#include <vector>

#include "policy/Connection.h"
#include "policy/Snapshot.h"

namespace Policy {

/// What is known of such conditions, the same for all connections of one direction.
enum class Certainty {
  Holds,
  InDoubt,  ///< only the engine can tell
  Fails,
};

/// The certainty of a filter's conditions on one such field. DIRECTION is the one that can be told.
Certainty CertaintyOf(const std::vector<const Condition*>& conditions, Direction direction);

}  // namespace Policy
