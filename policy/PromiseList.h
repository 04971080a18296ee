/**
 * @file
 * The sentences that the features' users go by, each with the connections that it speaks of.
 */
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "policy/Promises.h"
#include "policy/Section.h"

namespace Policy {

/// Connections for which something is promised.
struct PromiseRule {
  Action promised;
  std::optional<Direction> direction;  ///< none: both
  std::optional<IpVersion> ipVersion;  ///< none: both
  Mark connections;
  std::vector<Mark> exceptions;  ///< of these connections nothing is promised
};

/// A sentence, and what it means. It says what a user believes who reads it, whatever the filters do.
struct Promise {
  std::string feature;
  std::string name;
  std::string sentence;
  std::vector<PromiseRule> rules;
};

/// The promises of the features that are on.
std::vector<Promise> PromisesOf(const Features& features);

}  // namespace Policy
