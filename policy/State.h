/**
 * @file
 * The state of a connection: what is known of it once its fields have been looked at.
 */
#pragma once

#include <cstddef>
#include <vector>

namespace Policy {

/// The readings that decide whether a condition holds.
struct Plane {
  bool allNegations;
  bool unsetMatches;
  bool loopbackAccompanied;
};

/// How the state of a connection lies in memory: for each plane the set of filters that surely match and, if
/// any can be in doubt, that of those that perhaps match; then the set of marks.
struct StateLayout {
  std::vector<Plane> planes;
  std::size_t filterWords = 0;
  bool hasDoubt = false;
  std::size_t markWords = 0;

  std::size_t PlaneWords() const { return filterWords * (hasDoubt ? 2 : 1); }
  std::size_t MarksAt() const { return PlaneWords() * planes.size(); }
  std::size_t Width() const { return MarksAt() + markWords; }
};

}  // namespace Policy
