#include "policy/Decide.h"

#include <algorithm>
#include <array>
#include <optional>

#include "policy/Section.h"

namespace Policy {
namespace {

/// The states of most snapshots are no longer than this, and then take no memory of their own.
constexpr std::size_t kUsualWidth = 64;

/// A connection's state in a section.
class State {
 public:
  State(const Section& section, const Connection& connection) {
    if (section.Layout().Width() > kUsualWidth) {
      long_.resize(section.Layout().Width());
    }
    section.Read(connection, Words());
  }

  BitWord* Words() { return long_.empty() ? usual_.data() : long_.data(); }

 private:
  std::array<BitWord, kUsualWidth> usual_;
  std::vector<BitWord> long_;
};

bool Blocks(Strength strength) { return strength <= Strength::Block; }
bool IsFinal(Strength strength) { return strength != Strength::Pass; }

/// What would become of a layer and of a sublayer if one more filter matched.
class OneMore {
 public:
  OneMore(const Arbitration& layer, Section::Matching matching, World world)
      : layer_(layer),
        world_(world),
        before_(matching),
        sure_(matching.sure, matching.sure + layer.WordCount()),
        perhaps_(matching.perhaps, matching.perhaps + layer.WordCount()) {
    worlds_[world.Index()] = true;
    action_ = LayerAction();
  }

  /// Whether the filter would end its sublayer's block or turn the layer's verdict.
  bool TurnsWith(std::size_t filter, const Arbitration::Slot& slot) {
    const auto before = layer_.Deciding(slot, before_.sure, world_);
    SetBit(sure_.data(), filter);
    SetBit(perhaps_.data(), filter);
    const bool decides = layer_.Deciding(slot, sure_.data(), world_) == filter;
    const bool endsBlock = before && IsBlock(*before) && !IsBlock(filter);
    const bool turns = decides && (endsBlock || LayerAction() != action_);
    SetBit(sure_.data(), filter, false);
    SetBit(perhaps_.data(), filter, false);
    return turns;
  }

  /// Whether a filter that only perhaps matches makes a difference to the layer's verdict, be it that none or
  /// that all others of its kind match.
  [[nodiscard]] bool CouldTurnWith(std::size_t filter) {
    std::vector<BitWord> none(before_.sure, before_.sure + layer_.WordCount());
    std::vector<BitWord> all(before_.perhaps, before_.perhaps + layer_.WordCount());
    return TurnsAmong(none, filter) || TurnsAmong(all, filter);
  }

 private:
  [[nodiscard]] bool TurnsAmong(std::vector<BitWord>& matching, std::size_t filter) const {
    SetBit(matching.data(), filter, true);
    const auto with = LayerAction(matching.data(), matching.data());
    SetBit(matching.data(), filter, false);
    return with != LayerAction(matching.data(), matching.data());
  }

  [[nodiscard]] bool IsBlock(std::size_t filter) const {
    const auto strength = layer_.StrengthOf(filter, world_);
    return strength && Blocks(*strength);
  }

  [[nodiscard]] std::optional<Action> LayerAction() const {
    return LayerAction(sure_.data(), perhaps_.data());
  }

  [[nodiscard]] std::optional<Action> LayerAction(const BitWord* sure, const BitWord* perhaps) const {
    Verdict verdict;
    layer_.Decide(sure, perhaps, worlds_, verdict);
    return verdict.In(world_);
  }

  const Arbitration& layer_;
  World world_;
  Section::Matching before_;
  std::vector<BitWord> sure_;
  std::vector<BitWord> perhaps_;
  WorldSet worlds_;
  std::optional<Action> action_;
};

/// The filters of a slot but for the deciding one: those that match, and those that perhaps do.
void AddBystanders(const Arbitration& layer, const Arbitration::Slot& slot, Section::Matching matching,
                   World world, OneMore& oneMore, SublayerTrace& trace) {
  const auto deciding = layer.Deciding(slot, matching.sure, world);
  ForEachBit(matching.perhaps, slot.begin, slot.end, [&](std::size_t filter) {
    const Filter* bystander = layer.Filters()[filter];
    if (!HasBit(matching.sure, filter) || !layer.StrengthOf(filter, world)) {
      trace.unjudged.push_back(bystander);
      if (!HasBit(matching.sure, filter) && oneMore.CouldTurnWith(filter)) {
        trace.turning.push_back(bystander);
      }
    } else if (filter != deciding) {
      trace.outranked.push_back(bystander);
    }
  });
  if (deciding) {
    trace.deciding = layer.Filters()[*deciding];
    trace.strength = *layer.StrengthOf(*deciding, world);
  }
}

void AddNearMisses(const Arbitration& layer, const std::vector<Section::NearMatch>& nearMatches,
                   OneMore& oneMore, const Arbitration::Slot& slot, World world, SublayerTrace& trace) {
  for (const auto& [filter, field] : nearMatches) {
    if (filter >= slot.begin && filter < slot.end && oneMore.TurnsWith(filter, slot)) {
      const bool blocks = Blocks(*layer.StrengthOf(filter, world));
      trace.nearMisses.push_back({layer.Filters()[filter], field, blocks ? Action::Block : Action::Permit});
    }
  }
}

/// Says of each sublayer what became of its decision.
void AddEffects(std::vector<SublayerTrace>& traces, World world) {
  const bool blockOverrides = world.Reads(Assumption::StaticBlocks, StaticBlockReading::BlockOverrides);
  SublayerTrace* hard = nullptr;
  for (auto trace = traces.begin(); trace != traces.end(); ++trace) {
    if (trace->deciding == nullptr) {
      continue;
    }
    const bool blocks = Blocks(trace->strength);
    const bool overridesHard =
        hard != nullptr && hard->strength == Strength::Hard &&
        (trace->strength == Strength::Veto || (trace->strength == Strength::Block && blockOverrides));
    if (hard != nullptr && !overridesHard) {
      // Agreeing with what has been decided changes nothing.
      const bool agrees = blocks == Blocks(hard->strength);
      trace->effect = agrees ? SublayerTrace::Effect::Stands : SublayerTrace::Effect::Ignored;
      trace->by = agrees ? nullptr : hard->sublayer;
      continue;
    }
    trace->effect = SublayerTrace::Effect::Stands;
    for (auto earlier = traces.begin(); earlier != trace && blocks; ++earlier) {
      if (earlier->effect == SublayerTrace::Effect::Stands) {
        earlier->effect = SublayerTrace::Effect::Overridden;
        earlier->by = trace->sublayer;
      }
    }
    hard = IsFinal(trace->strength) ? &*trace : nullptr;
  }
}

/// The filter that a layer's action goes back to: the first in turn whose action stands; null if none
/// matches.
const Filter* FilterBehind(Action action, const std::vector<SublayerTrace>& traces) {
  const auto isBehind = [action](const SublayerTrace& trace) {
    return trace.effect == SublayerTrace::Effect::Stands &&
           Blocks(trace.strength) == (action == Action::Block);
  };
  const auto found = std::ranges::find_if(traces, isBehind);
  return found == traces.end() ? nullptr : found->deciding;
}

/// The same for a connection in a world that permits or blocks it.
const Filter* FilterBehind(Action action, const Section& section, const BitWord* state, World world) {
  for (std::size_t i = 0; i < section.Layers().size(); ++i) {
    const Arbitration& layer = section.Layers()[i];
    const Section::Matching matching = section.MatchingIn(world, i, state);
    std::vector<SublayerTrace> traces;
    for (const Arbitration::Slot& slot : layer.Slots()) {
      const auto deciding = layer.Deciding(slot, matching.sure, world);
      SublayerTrace& trace = traces.emplace_back();
      trace.sublayer = slot.sublayer;
      if (deciding) {
        trace.deciding = layer.Filters()[*deciding];
        trace.strength = *layer.StrengthOf(*deciding, world);
      }
    }
    AddEffects(traces, world);
    const Filter* found = FilterBehind(action, traces);
    if (found != nullptr) {
      return found;
    }
  }
  return nullptr;
}

std::vector<Ending> EndingsOf(const Verdict& verdict, const Section& section, const BitWord* state) {
  const SettledReadings& settled = section.Settled();
  std::vector<Ending> endings;
  for (Verdict::Outcome& outcome : verdict.Outcomes()) {
    World world;
    for (const Choice& choice : outcome.choices) {
      world = world.With(choice.assumption, choice.reading);
    }
    const Filter* deciding =
        outcome.action ? FilterBehind(*outcome.action, section, state, settled.In(world)) : nullptr;
    endings.push_back({std::move(outcome), deciding});
  }
  return endings;
}

}  // namespace

const Filter* Explanation::Deciding() const {
  const auto action = verdict.In(world);
  for (const LayerTrace& layer : layers) {
    const Filter* found = action ? FilterBehind(*action, layer.sublayers) : nullptr;
    if (found != nullptr) {
      return found;
    }
  }
  return nullptr;
}

/// Each section is made when the first connection asks for it.
struct Decider::Sections {
  Sections(const Snapshot& all, const Circumstances& ofAll) : snapshot(all), circumstances(ofAll) {}

  const Snapshot& snapshot;
  Circumstances circumstances;
  std::array<std::optional<Section>, kSectionKeys.size()> made{};

  const Section& Of(const Connection& connection) {
    const std::size_t index = SectionIndex(connection.direction, connection.ipVersion);
    if (!made[index]) {
      made[index].emplace(snapshot, kSectionKeys[index], std::span<const Mark>(), circumstances);
    }
    return *made[index];
  }
};

Decider::Decider(const Snapshot& snapshot, const Circumstances& circumstances)
    : sections_(std::make_unique<Sections>(snapshot, circumstances)) {}

Decider::~Decider() = default;
Decider::Decider(Decider&&) noexcept = default;
Decider& Decider::operator=(Decider&&) noexcept = default;

Verdict Decider::Decide(const Connection& connection) const {
  const Section& section = sections_->Of(connection);
  return section.Decide(State(section, connection).Words());
}

Explanation Decider::Explain(const Connection& connection, World asked) const {
  const Section& section = sections_->Of(connection);
  const World world = section.Settled().In(asked);
  State state(section, connection);
  Explanation explanation{connection, world, section.Decide(state.Words()), {}, {}, sections_->circumstances};
  for (std::size_t i = 0; i < section.Layers().size(); ++i) {
    const Arbitration& layer = section.Layers()[i];
    const Section::Matching matching = section.MatchingIn(world, i, state.Words());
    const auto nearMatches = section.NearMatchesIn(world, i, connection);
    OneMore oneMore(layer, matching, world);
    const Verdict verdict = section.DecideLayer(i, state.Words());
    LayerTrace trace{&layer.Layer(), verdict, verdict.In(world), {}};
    for (const Arbitration::Slot& slot : layer.Slots()) {
      SublayerTrace ofSlot;
      ofSlot.sublayer = slot.sublayer;
      AddBystanders(layer, slot, matching, world, oneMore, ofSlot);
      AddNearMisses(layer, nearMatches, oneMore, slot, world, ofSlot);
      trace.sublayers.push_back(std::move(ofSlot));
    }
    AddEffects(trace.sublayers, world);
    explanation.layers.push_back(std::move(trace));
  }
  explanation.endings = EndingsOf(explanation.verdict, section, state.Words());
  return explanation;
}

}  // namespace Policy
