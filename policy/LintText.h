/**
 * @file
 * Findings in words, by the owners of the filters that they are about.
 */
#pragma once

#include <string>
#include <vector>

#include "policy/Finding.h"
#include "policy/Owners.h"

namespace Policy {

/// Ours first, then other programs' by the names of their owners, then those of the platform.
void SortByOwner(std::vector<Finding>& findings, const Owners& owners);

/// How much a text tells.
enum class Detail {
  Brief,  ///< of many filters the first few; of the platform's one line for each kind
  Whole,
};

/// The findings, owner by owner. "no findings" for none.
std::string Describe(std::vector<Finding> findings, const Owners& owners, Detail detail);

}  // namespace Policy
