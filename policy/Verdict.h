/**
 * @file
 * What the engine does with a connection, in every world.
 */
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "policy/Assumptions.h"

namespace Policy {

enum class Action { Block, Permit };

/// "block", "permit"
std::string_view ActionText(Action action);

/// What is known of a connection's fate, world by world: permitted, blocked, or unsure, where filters that
/// only the engine can judge (callouts, and conditions that cannot be read) make the difference.
class Verdict {
 public:
  enum class Kind { Block, Permit, Depends };

  Verdict() = default;
  /// The same action in every world.
  explicit Verdict(Action action);

  [[nodiscard]] const WorldSet& Permits() const { return permits_; }
  [[nodiscard]] const WorldSet& Blocks() const { return blocks_; }
  /// Says what happens in some worlds.
  /// @param action none where it is unsure.
  void Set(const WorldSet& worlds, std::optional<Action> action);

  /// The verdict of an engine of which readings are known: each world has what the one with the settled
  /// readings has, so these assumptions make no difference any more.
  [[nodiscard]] Verdict Knowing(const SettledReadings& settled) const;

  /// The action in one world; none where it is unsure.
  [[nodiscard]] std::optional<Action> In(World world) const;
  [[nodiscard]] Kind GetKind() const;

  /// The assumptions that make a difference to this verdict, and no others.
  [[nodiscard]] std::vector<Assumption> DependsOn() const;
  /// Whether in some world filters that only the engine can judge make the difference.
  [[nodiscard]] bool IsUnsure() const;

  /// What one combination of the readings that matter gives.
  struct Outcome {
    std::vector<Choice> choices;
    std::optional<Action> action;
  };
  /// Every combination of the readings that matter, first readings first. One outcome without choices if
  /// none matter.
  [[nodiscard]] std::vector<Outcome> Outcomes() const;

  bool operator==(const Verdict&) const = default;

  friend Verdict Both(const Verdict& first, const Verdict& second);

 private:
  WorldSet permits_;
  WorldSet blocks_;
};

/// The fate of a connection that passes two layers: permitted where both permit.
Verdict Both(const Verdict& first, const Verdict& second);

/// "permit", "block", "depends on filter-ties: permit with filter-ties = permit-first; block with filter-ties
/// = block-first", "depends on filters that only the engine can judge".
std::string Describe(const Verdict& verdict);

}  // namespace Policy
