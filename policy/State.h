/**
 * @file
 * The state of a connection: what is known of it once its fields have been looked at.
 */
#pragma once

#include <cstddef>
#include <vector>

namespace Policy {

/// One reading of each assumption that decides whether a condition holds. All worlds with these readings
/// share the plane: in them the same filters match.
struct Plane {
  bool allNegations;         ///< Assumption::SeveralNegations: all of them must hold
  bool unsetMatches;         ///< Assumption::UnsetFields: a negation holds of a field without a value
  bool loopbackAccompanied;  ///< Assumption::LoopbackBits: where that is open, another flag comes with it
};

/// How the state of a connection lies in memory: sets of bits, one after the other. For each plane there is
/// the set of filters that surely match; if some filter can be in doubt, the set of those that at least
/// perhaps match follows. The set of marks is last.
struct StateLayout {
  std::vector<Plane> planes;
  std::size_t filterWords = 0;  ///< of one set of filters
  std::size_t acceptEnd = 0;    ///< filters before this bit are at ALE_AUTH_RECV_ACCEPT
  bool hasDoubt = false;        ///< some filter can match perhaps
  std::size_t markWords = 0;

  [[nodiscard]] std::size_t PlaneWords() const { return filterWords * (hasDoubt ? 2 : 1); }
  [[nodiscard]] std::size_t MarksAt() const { return PlaneWords() * planes.size(); }
  [[nodiscard]] std::size_t Width() const { return MarksAt() + markWords; }
};

}  // namespace Policy
