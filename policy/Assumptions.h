/**
 * @file
 * What the engine's documentation leaves open, as parameters.
 *
 * Each open question is an assumption with two or three readings. Its first reading is the one to expect, and
 * is used if no other is asked for. A choice of one reading for every assumption is a World: an engine of
 * which everything is known, so that every connection has one verdict.
 */
#pragma once

#include <array>
#include <bitset>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Policy {

/// AssumptionText has their meaning.
enum class Assumption {
  FilterTies,
  SeveralNegations,
  UnsetFields,
  StaticBlocks,
  LoopbackBits,
  FlowBlocks,
  Callouts,
};
inline constexpr std::size_t kAssumptionCount = 7;

// The readings, by number.
/// Which of the matching filters of one sublayer that weigh the same decides: the one with the highest id, or
/// the one that blocks, or permits, most.
enum class TieReading : std::size_t { NewestFirst, BlockFirst, PermitFirst };
/// Whether of several negations on one field one is enough, or all must hold.
enum class NegationReading : std::size_t { AnyHolds, AllHold };
/// Whether a negation holds of a field without a value; a test of flags then sees no flag set.
enum class UnsetReading : std::size_t { NoMatch, Match };
/// Whether a static block takes a connection from a hard permit of a higher sublayer.
enum class StaticBlockReading : std::size_t { PermitStands, BlockOverrides };
/// Whether at ALE_AUTH_CONNECT and ALE_FLOW_ESTABLISHED the loopback flag reaches filters without a
/// companion, or with IS_NON_APPCONTAINER_LOOPBACK beside it. At ALE_AUTH_RECV_ACCEPT it always has one.
enum class LoopbackReading : std::size_t { Alone, Accompanied };
/// Whether a block at ALE_FLOW_ESTABLISHED ends the connection.
enum class FlowBlockReading : std::size_t { Honoured, Ignored };
/// What drivers do whose callouts decide in place of filters: let everything pass, or block it for good.
enum class CalloutReading : std::size_t { Pass, Block };

/// An assumption in words.
struct AssumptionText {
  struct Reading {
    std::string_view name;     ///< "block-first"
    std::string_view meaning;  ///< "a filter that blocks decides"
  };
  std::string_view name;  ///< "filter-ties"
  std::string_view question;
  std::span<const Reading> readings;
};

/// The words of an assumption.
const AssumptionText& TextOf(Assumption assumption);

/// One reading of every assumption.
class World {
 public:
  /// The number of worlds.
  static constexpr std::size_t kCount = 192;

  /// The world of the first readings.
  World() = default;
  /// @param index below kCount; 0 is the world of the first readings.
  static World OfIndex(std::size_t index);

  [[nodiscard]] std::size_t Index() const;
  [[nodiscard]] std::size_t ReadingOf(Assumption assumption) const;
  /// Whether it has this reading of an assumption.
  template <class Reading>
  [[nodiscard]] bool Reads(Assumption assumption, Reading reading) const {
    return ReadingOf(assumption) == static_cast<std::size_t>(reading);
  }
  /// The same world but for one assumption.
  [[nodiscard]] World With(Assumption assumption, std::size_t reading) const;

  template <class Reading>
  [[nodiscard]] World With(Assumption assumption, Reading reading) const {
    return With(assumption, static_cast<std::size_t>(reading));
  }

 private:
  std::size_t index_ = 0;
};

/// Readings that are known to hold of an engine, because experiments have shown it. Nothing is known of
/// assumptions that are not settled.
class SettledReadings {
 public:
  void Settle(Assumption assumption, std::size_t reading) {
    readings_[static_cast<std::size_t>(assumption)] = reading;
  }

  [[nodiscard]] std::optional<std::size_t> ReadingOf(Assumption assumption) const {
    return readings_[static_cast<std::size_t>(assumption)];
  }
  [[nodiscard]] bool AreNone() const { return readings_ == decltype(readings_)(); }
  /// A world with the settled readings in place of its own.
  [[nodiscard]] World In(World world) const;

 private:
  std::array<std::optional<std::size_t>, kAssumptionCount> readings_{};
};

/// A set of worlds, by index.
using WorldSet = std::bitset<World::kCount>;

/// One reading of one assumption.
struct Choice {
  Assumption assumption;
  std::size_t reading;

  bool operator==(const Choice&) const = default;
};

/// The assumptions that a set of worlds depends on: those where two worlds that differ in nothing else are
/// on different sides of the set.
std::vector<Assumption> Distinguishing(const WorldSet& worlds);

/// A set of worlds as alternatives, each a choice of readings, without what does not matter. The full set is
/// one alternative of no choices; the empty set is none.
std::vector<std::vector<Choice>> Alternatives(const WorldSet& worlds);

/// "filter-ties = permit-first, loopback-bits = alone"; for no choices, "always".
std::string Describe(std::span<const Choice> choices);

}  // namespace Policy
