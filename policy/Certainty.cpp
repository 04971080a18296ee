#include "policy/Certainty.h"

#include <algorithm>
#include <optional>

#include "catalog/Keys.h"

namespace Policy {
namespace {

/// Whether a condition on DIRECTION holds; none if only the engine can tell.
std::optional<bool> HoldsOfDirection(const Test& test, Direction direction) {
  const Number number = direction == Direction::Outbound ? 0 : 1;
  switch (test.kind) {
    case Test::Kind::InInterval:
      return (test.interval.first <= number && number <= test.interval.last) != test.negated;
    case Test::Kind::Unset:
      return false;
    default:
      return std::nullopt;
  }
}

}  // namespace

Certainty CertaintyOf(const std::vector<const Condition*>& conditions, Direction direction) {
  const auto isNegated = [](const Condition* condition) { return condition->test.negated; };
  const bool severalNegations = std::ranges::count_if(conditions, isNegated) > 1;
  Certainty certainty = Certainty::Fails;
  for (const Condition* condition : conditions) {
    const bool isDirection =
        condition->field != nullptr && condition->field->key == Catalog::kDirectionFieldKey;
    const auto holds =
        isDirection && !severalNegations ? HoldsOfDirection(condition->test, direction) : std::nullopt;
    if (holds.value_or(false)) {
      return Certainty::Holds;
    }
    certainty = holds ? certainty : Certainty::InDoubt;
  }
  return certainty;
}

}  // namespace Policy
