/**
 * @file
 * What in a state can make no difference any more.
 */
#pragma once

#include <vector>

#include "policy/Section.h"

namespace Policy {

/// What a diagram is made for.
enum class Purpose {
  Verdicts,         ///< what becomes of connections
  DecidingFilters,  ///< which filters of each slot decide, whatever the other slots do
};

/// Clears from the states of a section what can make no difference any more, so that states which differ in
/// nothing else become one. A filter is settled at a level if it has no conditions on fields from there on:
/// if it matches so far, it matches.
class Pruner {
 public:
  /// @param section must outlive the pruner.
  Pruner(const Section& section, Purpose purpose);

  /// @param level the number of the first table that the state has not been ANDed with.
  void Prune(std::size_t level, BitWord* state);

 private:
  using Words = std::vector<BitWord>;

  /// Sets of a layer's filters, by what they do in every world, and room for what is left of them in a state.
  struct LayerSets {
    Words always;   ///< they never leave the decision to the next filter
    Words others;   ///< all but blocks without a callout
    Words differs;  ///< they are no soft permits
    Words hard;     ///< in some world they permit for good
    Words decided;  ///< those of `always` that match for sure
    Words left;     ///< of other sets, what perhaps matches
  };

  /// The filters of a layer that match in a plane so far; both are the same where none can be in doubt.
  struct Matching {
    BitWord* sure;
    BitWord* perhaps;
  };

  static LayerSets SetsOf(const Arbitration& layer);
  static void Clear(Matching matching, std::size_t begin, std::size_t end);
  static void DropLate(const Arbitration& layer, const BitWord* settled, LayerSets& sets, Matching matching);
  static void DropSoftPermits(const Arbitration& layer, LayerSets& sets, Matching matching);
  static bool BlocksSurely(const Arbitration& layer, LayerSets& sets, Matching matching);

  const Section& section_;
  Purpose purpose_;
  std::vector<LayerSets> layers_;
  std::vector<Words> settled_;  ///< by level, for all layers
};

}  // namespace Policy
