#include "policy/Verdict.h"

#include <algorithm>
#include <iterator>

namespace Policy {
namespace {

/// "permit with a = x or b = y"
std::string WorldsText(std::string_view action, const WorldSet& worlds) {
  std::string text;
  for (const std::vector<Choice>& choices : Alternatives(worlds)) {
    text.append(text.empty() ? " with " : " or ").append(Describe(choices));
  }
  return std::string(action) + text;
}

/// All combinations of the readings of some assumptions, first readings first.
std::vector<std::vector<Choice>> Combinations(const std::vector<Assumption>& assumptions) {
  std::vector<std::vector<Choice>> combinations(1);
  for (const Assumption assumption : assumptions) {
    std::vector<std::vector<Choice>> longer;
    for (const auto& choices : combinations) {
      for (std::size_t reading = 0; reading < TextOf(assumption).readings.size(); ++reading) {
        longer.push_back(choices);
        longer.back().push_back({assumption, reading});
      }
    }
    combinations = std::move(longer);
  }
  return combinations;
}

}  // namespace

std::string_view ActionText(Action action) { return action == Action::Block ? "block" : "permit"; }

Verdict::Verdict(Action action) { (action == Action::Block ? blocks_ : permits_).set(); }

void Verdict::Set(const WorldSet& worlds, std::optional<Action> action) {
  permits_ = action == Action::Permit ? permits_ | worlds : permits_ & ~worlds;
  blocks_ = action == Action::Block ? blocks_ | worlds : blocks_ & ~worlds;
}

Verdict Verdict::Knowing(const SettledReadings& settled) const {
  if (settled.AreNone()) {
    return *this;
  }
  Verdict known;
  for (std::size_t i = 0; i < World::kCount; ++i) {
    const std::size_t with = settled.In(World::OfIndex(i)).Index();
    known.permits_[i] = permits_[with];
    known.blocks_[i] = blocks_[with];
  }
  return known;
}

std::optional<Action> Verdict::In(World world) const {
  if (permits_[world.Index()]) {
    return Action::Permit;
  }
  return blocks_[world.Index()] ? std::optional(Action::Block) : std::nullopt;
}

Verdict::Kind Verdict::GetKind() const {
  if (permits_.all()) {
    return Kind::Permit;
  }
  return blocks_.all() ? Kind::Block : Kind::Depends;
}

std::vector<Assumption> Verdict::DependsOn() const {
  const std::vector<Assumption> ofPermits = Distinguishing(permits_);
  const std::vector<Assumption> ofBlocks = Distinguishing(blocks_);
  std::vector<Assumption> both;
  std::ranges::set_union(ofPermits, ofBlocks, std::back_inserter(both));
  return both;
}

bool Verdict::IsUnsure() const { return !(permits_ | blocks_).all(); }

std::vector<Verdict::Outcome> Verdict::Outcomes() const {
  std::vector<Outcome> outcomes;
  for (const std::vector<Choice>& choices : Combinations(DependsOn())) {
    World world;
    for (const Choice& choice : choices) {
      world = world.With(choice.assumption, choice.reading);
    }
    outcomes.push_back({choices, In(world)});
  }
  return outcomes;
}

Verdict Both(const Verdict& first, const Verdict& second) {
  Verdict both;
  both.permits_ = first.permits_ & second.permits_;
  both.blocks_ = first.blocks_ | second.blocks_;
  return both;
}

std::string Describe(const Verdict& verdict) {
  switch (verdict.GetKind()) {
    case Verdict::Kind::Block:
      return "block";
    case Verdict::Kind::Permit:
      return "permit";
    case Verdict::Kind::Depends:
      break;
  }
  const std::vector<Assumption> assumptions = verdict.DependsOn();
  if (assumptions.empty()) {
    return "depends on filters that only the engine can judge";
  }
  std::string names;
  for (const Assumption assumption : assumptions) {
    names.append(names.empty() ? "" : ", ").append(TextOf(assumption).name);
  }
  std::string outcomes;
  const auto add = [&outcomes](std::string_view action, const WorldSet& worlds) {
    if (worlds.any()) {
      outcomes.append(outcomes.empty() ? "" : "; ").append(WorldsText(action, worlds));
    }
  };
  add("permit", verdict.Permits());
  add("block", verdict.Blocks());
  add("up to filters that only the engine can judge", ~(verdict.Permits() | verdict.Blocks()));
  return "depends on " + names + ": " + outcomes;
}

}  // namespace Policy
