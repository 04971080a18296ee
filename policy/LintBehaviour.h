/**
 * @file
 * The findings that take a look at connections.
 */
#pragma once

#include <vector>

#include "policy/Finding.h"
#include "policy/ShowProgress.h"

namespace Policy {

/// Conditions that always or never hold.
void LintTests(const Filter& filter, std::vector<Finding>& findings);

/// What filters do to each other, over all connections that can exist: those that never decide, ties, and
/// permits that are taken back.
void LintBehaviour(const Snapshot& snapshot, std::vector<Finding>& findings, const ShowProgress& show);

}  // namespace Policy
