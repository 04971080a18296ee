/**
 * @file
 * What the features promise: sentences, each with the connections that it speaks of.
 */
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "policy/Section.h"
#include "promises/Features.h"

namespace Promises {

/// Connections for which something is promised.
struct Clause {
  Policy::Action promised;
  std::optional<Policy::Direction> direction;  ///< none: both
  std::optional<Policy::IpVersion> ipVersion;  ///< none: both
  Policy::Mark connections;
  std::vector<Policy::Mark> exceptions;  ///< nothing is promised for these
};

/// A sentence, and the connections that it means. These follow from the sentence alone, not from the filters.
struct Promise {
  std::string feature;
  std::string name;
  std::string sentence;
  std::vector<Clause> clauses;
};

/// The promises of the features that are on.
std::vector<Promise> PromisesOf(const Features& features);

}  // namespace Promises
