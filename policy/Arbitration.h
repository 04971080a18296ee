/**
 * @file
 * How the filters of one layer come to a verdict.
 */
#pragma once

#include <array>
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

  void Include(Strength strength);
  bool operator==(const StrengthRange&) const = default;
};

/// The filters of one layer that decide: permits, blocks, and callouts that may do either. Each has a number.
/// They are numbered sublayer by sublayer in the order of their turn; in a sublayer the heaviest comes first,
/// and of those that weigh the same, which make a run, the newest. A set of filters is a set of bits by these
/// numbers.
class Arbitration {
 public:
  /// The filters of a sublayer: the numbers from `begin` to before `end`.
  struct Slot {
    const Sublayer* sublayer;
    std::size_t begin;
    std::size_t end;
    bool isOpen;  ///< in some worlds filters come in another order, or do something else
  };

  Arbitration(const Snapshot& snapshot, const Catalog::Layer& layer);

  [[nodiscard]] const Catalog::Layer& Layer() const { return *layer_; }
  [[nodiscard]] std::size_t WordCount() const { return words_; }
  /// The bit behind those of the filters: it stands for all that makes the layer block in every world.
  [[nodiscard]] std::size_t BlockedBit() const { return filters_.size(); }
  [[nodiscard]] const std::vector<const Filter*>& Filters() const { return filters_; }
  [[nodiscard]] const std::vector<Slot>& Slots() const { return slots_; }
  /// Whether a callout decides in place of a filter.
  static bool IsCallout(const Filter& filter);

  /// The action where exactly these filters match and no assumption makes a difference; none where one does.
  [[nodiscard]] std::optional<Action> DecideSurely(const BitWord* matching) const;

  /// The actions in the worlds that read the engine's order, and callouts, in all possible ways.
  /// @param sure the filters that match; @param perhaps these, and those that perhaps match.
  /// @param worlds those in which these filters match; the verdict is set for them.
  void Decide(const BitWord* sure, const BitWord* perhaps, const WorldSet& worlds, Verdict& verdict) const;

  /// One world for each way to choose the one of a sublayer's filters that decides.
  static const std::vector<World>& FilterOrders();
  /// The filter of a slot that decides in a world; none if none matches.
  [[nodiscard]] std::optional<std::size_t> Deciding(const Slot& slot, const BitWord* sure, World world) const;
  /// Whether one filter of a slot comes before another in a world.
  [[nodiscard]] bool Precedes(std::size_t filter, std::size_t other, World world) const;
  /// Where the run of a filter ends.
  [[nodiscard]] std::size_t RunEnd(std::size_t filter) const { return runEnds_[filter]; }
  /// Whether two filters of a slot weigh the same.
  [[nodiscard]] bool AreTied(std::size_t filter, std::size_t other) const {
    return runEnds_[filter] == runEnds_[other];
  }

  /// What a filter does in a world; none for a callout that lets the next filter decide.
  static std::optional<Strength> StrengthOf(const Filter& filter, World world);
  [[nodiscard]] std::optional<Strength> StrengthOf(std::size_t filter, World world) const {
    return strengths_[filter][world.ReadingOf(Assumption::Callouts)];
  }
  /// Whether two filters do the same in every world.
  [[nodiscard]] bool DoTheSame(std::size_t filter, std::size_t other) const {
    return strengths_[filter] == strengths_[other];
  }
  [[nodiscard]] StrengthRange Decide(const Slot& slot, const BitWord* sure, const BitWord* perhaps,
                                     World world) const;

 private:
  using Strengths = std::array<std::optional<Strength>, 2>;  ///< by the reading of Assumption::Callouts

  static Strengths StrengthsOf(const Filter& filter);
  void AddSlot(const Sublayer& sublayer, std::vector<const Filter*> filters);
  [[nodiscard]] Action Combine(const std::vector<StrengthRange>& decisions, Strength StrengthRange::*end,
                               World world) const;
  [[nodiscard]] std::optional<Action> Combine(const std::vector<StrengthRange>& decisions, World world) const;

  const Catalog::Layer* layer_;
  bool isFlow_;
  std::size_t words_ = 0;
  std::vector<const Filter*> filters_;
  std::vector<Strengths> strengths_;
  std::vector<std::size_t> runEnds_;  ///< by filter
  std::vector<Slot> slots_;
};

}  // namespace Policy
