/**
 * @file
 * Filters that do not say what they seem to say.
 */
#pragma once

#include <vector>

#include "policy/Finding.h"
#include "policy/ShowProgress.h"

namespace Policy {

/// The findings about all filters in force, by filter id.
/// @param snapshot must outlive the findings.
std::vector<Finding> Lint(const Snapshot& snapshot, const ShowProgress& show = {});

}  // namespace Policy
