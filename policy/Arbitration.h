/**
 * @file
 * How the filters of one layer come to a verdict.
 */
#pragma once

#include <optional>
#include <vector>

#include "policy/Assumptions.h"
#include "policy/BitWords.h"
#include "policy/Snapshot.h"
#include "policy/Verdict.h"

namespace Policy {

/// What a sublayer's decision can do, ordered from the strongest block to the strongest permit: a higher
/// value for one sublayer never turns the layer's permit into a block.
enum class Strength {
  Veto,   ///< a callout's block, which even a hard permit of a higher sublayer does not survive
  Block,  ///< a block without a callout
  Pass,   ///< a soft permit, or nothing
  Hard,   ///< a hard permit
};

/// The least and the greatest that are possible.
struct StrengthRange {
  Strength least = Strength::Pass;
  Strength most = Strength::Pass;

  void Include(const StrengthRange& other);
  bool operator==(const StrengthRange&) const = default;
};

/// The filters of one layer that decide: permits, blocks and callouts, which may do either. Each has a
/// number. They are numbered sublayer by sublayer in the order of their turn; in a sublayer the heaviest
/// reported weight comes first, and for equal weights the lowest id. A set of filters is a set of bits by
/// these numbers.
class Arbitration {
 public:
  /// The filters of a sublayer: the numbers from `begin` to before `end`.
  struct Slot {
    const Sublayer* sublayer;
    std::size_t begin;
    std::size_t end;
  };

  Arbitration(const Snapshot& snapshot, const Catalog::Layer& layer);

  [[nodiscard]] const Catalog::Layer& Layer() const { return *layer_; }
  [[nodiscard]] std::size_t WordCount() const { return words_; }
  [[nodiscard]] const std::vector<const Filter*>& Filters() const { return filters_; }
  [[nodiscard]] const std::vector<Slot>& Slots() const { return slots_; }
  /// Whether a callout decides in place of a filter.
  static bool IsCallout(const Filter& filter);

  /// The action where exactly these filters match and no assumption about their order matters; none where
  /// one does. For filters without callouts.
  [[nodiscard]] std::optional<Action> DecideSurely(const BitWord* matching) const;

  /// The actions in the worlds that read the engine's order in all possible ways.
  /// @param sure the filters that match; @param perhaps these, and those that perhaps match.
  /// @param worlds those in which these filters match; the verdict is set for them.
  void Decide(const BitWord* sure, const BitWord* perhaps, const WorldSet& worlds, Verdict& verdict) const;

  /// One world for each way to read the order of a sublayer's filters.
  static std::vector<World> FilterOrders();
  /// The filter of a slot that decides in a world; none if none matches.
  [[nodiscard]] std::optional<std::size_t> Deciding(const Slot& slot, const BitWord* sure, World world) const;
  /// Whether no filter that matches comes before one of its slot in a world.
  [[nodiscard]] bool IsUndominated(std::size_t filter, const BitWord* sure, World world) const;
  /// Whether two filters of a slot weigh the same in a world.
  [[nodiscard]] bool AreTied(std::size_t filter, std::size_t other, World world) const;

  [[nodiscard]] StrengthRange RangeOf(std::size_t filter) const { return ranges_[filter]; }
  [[nodiscard]] StrengthRange Decide(const Slot& slot, const BitWord* sure, const BitWord* perhaps,
                                     World world) const;

 private:
  void AddSlot(const Sublayer& sublayer, std::vector<const Filter*> filters);
  void RankSlot(const Slot& slot);
  [[nodiscard]] bool WinsTie(std::size_t filter, const Slot& slot, const BitWord* sure, World world) const;
  [[nodiscard]] std::optional<Action> Combine(const std::vector<StrengthRange>& decisions, World world) const;
  [[nodiscard]] Action Combine(const std::vector<StrengthRange>& decisions, Strength StrengthRange::*end,
                               World world) const;
  [[nodiscard]] const BitWord* Row(const std::vector<BitWord>& rows, std::size_t filter) const {
    return rows.data() + filter * words_;
  }

  const Catalog::Layer* layer_;
  std::size_t words_ = 0;
  std::vector<const Filter*> filters_;
  std::vector<StrengthRange> ranges_;
  std::vector<Slot> slots_;
  std::vector<std::size_t> reportedTies_;  ///< the same number for filters that tie
  std::vector<std::size_t> knownTies_;
  // A row for each filter, a set of filters of its slot: those that come before it by the weights that the
  // engine reports, those that come before it by what is known of weights, and its rivals, which do something
  // else and do not surely come after it.
  std::vector<BitWord> outrankedAsReported_;
  std::vector<BitWord> outrankedAsKnown_;
  std::vector<BitWord> rivals_;
};

}  // namespace Policy
