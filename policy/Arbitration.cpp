#include "policy/Arbitration.h"

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <string>

#include "policy/FilterOrder.h"

namespace Policy {
namespace {

constexpr UINT32 kNotInForce = FWPM_FILTER_FLAG_DISABLED | FWPM_FILTER_FLAG_BOOTTIME;

bool Decides(const Filter& filter) {
  return filter.action == FWP_ACTION_BLOCK || filter.action == FWP_ACTION_PERMIT ||
         Arbitration::IsCallout(filter);
}

StrengthRange RangeOf(const Filter& filter) {
  const Strength permit = filter.IsHard() ? Strength::Hard : Strength::Pass;
  if (Arbitration::IsCallout(filter)) {
    return {Strength::Veto, permit};
  }
  const Strength strength = filter.action == FWP_ACTION_BLOCK ? Strength::Block : permit;
  return {strength, strength};
}

bool ReadsAsReported(World world) {
  return world.Reads(Assumption::AutomaticWeights, WeightReading::AsReported);
}

/// The number of a text among those seen.
std::size_t NumberOf(std::map<std::string, std::size_t>& numbers, const std::string& text) {
  return numbers.emplace(text, numbers.size()).first->second;
}

/// Whether the one decision comes before the other where blocks, or permits, come first.
bool ComesFirst(Strength strength, Strength other, bool blockFirst) {
  return blockFirst ? strength < other : strength > other;
}

/// All worlds with the same readings of the order of filters and sublayers, and one of them.
struct OrderedWorlds {
  World world;
  WorldSet worlds;
};

bool Agree(World left, World right, std::span<const Assumption> assumptions) {
  return std::ranges::all_of(assumptions, [&](Assumption assumption) {
    return left.ReadingOf(assumption) == right.ReadingOf(assumption);
  });
}

/// All worlds, sorted twice: first by how they read the order of a sublayer's filters, then by how they read
/// the order of sublayers.
std::vector<std::vector<OrderedWorlds>> SortWorlds() {
  constexpr std::array kOfFilters{Assumption::FilterTies, Assumption::AutomaticWeights};
  constexpr std::array kOfSublayers{Assumption::SublayerTies, Assumption::StaticBlocks};
  std::vector<std::vector<OrderedWorlds>> sorted;
  for (std::size_t index = 0; index < World::kCount; ++index) {
    const World world = World::OfIndex(index);
    auto orders = std::ranges::find_if(
        sorted, [&](const auto& known) { return Agree(known.front().world, world, kOfFilters); });
    if (orders == sorted.end()) {
      orders = sorted.insert(orders, std::vector<OrderedWorlds>());
    }
    auto order = std::ranges::find_if(
        *orders, [&](const auto& known) { return Agree(known.world, world, kOfSublayers); });
    if (order == orders->end()) {
      order = orders->insert(order, {world, {}});
    }
    order->worlds[index] = true;
  }
  return sorted;
}

const std::vector<std::vector<OrderedWorlds>>& WorldsByOrder() {
  static const auto kSorted = SortWorlds();
  return kSorted;
}

}  // namespace

void StrengthRange::Include(const StrengthRange& other) {
  least = std::min(least, other.least);
  most = std::max(most, other.most);
}

bool Arbitration::IsCallout(const Filter& filter) {
  return filter.action == FWP_ACTION_CALLOUT_TERMINATING || filter.action == FWP_ACTION_CALLOUT_UNKNOWN;
}

Arbitration::Arbitration(const Snapshot& snapshot, const Catalog::Layer& layer) : layer_(&layer) {
  std::map<const Sublayer*, std::vector<const Filter*>> bySublayer;
  for (const Filter& filter : snapshot.filters) {
    if (filter.layerKey == layer.key && (filter.flags & kNotInForce) == 0 && Decides(filter)) {
      const auto sublayer = std::ranges::find(snapshot.sublayers, filter.sublayerKey, &Sublayer::key);
      bySublayer[&*sublayer].push_back(&filter);
    }
  }
  // The map is ordered by the sublayers' addresses. The snapshot keeps them in one block, the heaviest first.
  for (auto& [sublayer, filters] : bySublayer) {
    AddSlot(*sublayer, std::move(filters));
  }
  words_ = WordsFor(filters_.size());
  for (auto* rows : {&outrankedAsReported_, &outrankedAsKnown_, &rivals_}) {
    rows->resize(filters_.size() * words_);
  }
  for (const Slot& slot : slots_) {
    RankSlot(slot);
  }
}

void Arbitration::AddSlot(const Sublayer& sublayer, std::vector<const Filter*> filters) {
  std::ranges::stable_sort(filters, std::greater<>(), &Filter::effectiveWeight);
  slots_.push_back({&sublayer, filters_.size(), filters_.size() + filters.size()});
  for (const Filter* filter : filters) {
    filters_.push_back(filter);
    ranges_.push_back(Policy::RangeOf(*filter));
  }
}

void Arbitration::RankSlot(const Slot& slot) {
  std::vector<KnownWeight> weights;
  std::map<std::string, std::size_t> ties;
  for (std::size_t i = slot.begin; i < slot.end; ++i) {
    const Filter& filter = *filters_[i];
    weights.emplace_back(filter);
    knownTies_.push_back(NumberOf(ties, weights.back().TieKey()));
    const bool tiesWithPrevious =
        i > slot.begin && filters_[i - 1]->effectiveWeight == filter.effectiveWeight;
    reportedTies_.push_back(tiesWithPrevious ? reportedTies_.back() : i);
  }
  for (std::size_t i = slot.begin; i < slot.end; ++i) {
    for (std::size_t j = slot.begin; j < slot.end; ++j) {
      const bool asReported = filters_[i]->effectiveWeight > filters_[j]->effectiveWeight;
      const bool asKnown = weights[i - slot.begin].Outranks(weights[j - slot.begin]);
      SetBit(outrankedAsReported_.data() + j * words_, i, asReported);
      SetBit(outrankedAsKnown_.data() + j * words_, i, asKnown);
      SetBit(rivals_.data() + i * words_, j, !(asReported && asKnown) && ranges_[i] != ranges_[j]);
    }
  }
}

std::optional<Action> Arbitration::DecideSurely(const BitWord* matching) const {
  bool isHard = false;
  for (auto slot = slots_.begin(); slot != slots_.end();) {
    bool blocks = false;
    bool permitsHard = false;
    const UINT16 weight = slot->sublayer->weight;
    for (; slot != slots_.end() && slot->sublayer->weight == weight; ++slot) {
      const std::size_t first = FirstBit(matching, slot->begin, slot->end);
      if (first == slot->end) {
        continue;
      }
      if (Meet(matching, Row(rivals_, first), words_)) {
        return std::nullopt;
      }
      blocks = blocks || ranges_[first].least == Strength::Block;
      permitsHard = permitsHard || ranges_[first].least == Strength::Hard;
    }
    if (blocks && (permitsHard || isHard)) {
      return std::nullopt;
    }
    if (blocks) {
      return Action::Block;
    }
    isHard = isHard || permitsHard;
  }
  return Action::Permit;
}

std::vector<World> Arbitration::FilterOrders() {
  std::vector<World> orders;
  for (const auto& worlds : WorldsByOrder()) {
    orders.push_back(worlds.front().world);
  }
  return orders;
}

bool Arbitration::AreTied(std::size_t filter, std::size_t other, World world) const {
  const auto& ties = ReadsAsReported(world) ? reportedTies_ : knownTies_;
  return ties[filter] == ties[other];
}

bool Arbitration::IsUndominated(std::size_t filter, const BitWord* sure, World world) const {
  return !Meet(sure, Row(ReadsAsReported(world) ? outrankedAsReported_ : outrankedAsKnown_, filter), words_);
}

/// Whether no filter that matches and weighs the same comes first.
bool Arbitration::WinsTie(std::size_t filter, const Slot& slot, const BitWord* sure, World world) const {
  const bool blockFirst = world.Reads(Assumption::FilterTies, TieReading::BlockFirst);
  bool wins = true;
  ForEachBit(sure, slot.begin, slot.end, [&](std::size_t other) {
    wins = wins && (!AreTied(filter, other, world) ||
                    !ComesFirst(ranges_[other].least, ranges_[filter].least, blockFirst));
  });
  return wins;
}

std::optional<std::size_t> Arbitration::Deciding(const Slot& slot, const BitWord* sure, World world) const {
  const bool blockFirst = world.Reads(Assumption::AutomaticWeights, WeightReading::BlockFirst);
  std::optional<std::size_t> deciding;
  ForEachBit(sure, slot.begin, slot.end, [&](std::size_t filter) {
    const bool mayDecide = IsUndominated(filter, sure, world) && WinsTie(filter, slot, sure, world);
    if (mayDecide && (!deciding || ComesFirst(ranges_[filter].least, ranges_[*deciding].least, blockFirst))) {
      deciding = filter;
    }
  });
  return deciding;
}

/// A filter that perhaps matches may decide wherever no filter that surely matches comes before it.
StrengthRange Arbitration::Decide(const Slot& slot, const BitWord* sure, const BitWord* perhaps,
                                  World world) const {
  const std::optional<std::size_t> deciding = Deciding(slot, sure, world);
  StrengthRange range = deciding ? ranges_[*deciding] : StrengthRange{};
  ForEachBit(perhaps, slot.begin, slot.end, [&](std::size_t filter) {
    if (!HasBit(sure, filter) && IsUndominated(filter, sure, world)) {
      range.Include(ranges_[filter]);
    }
  });
  return range;
}

Action Arbitration::Combine(const std::vector<StrengthRange>& decisions, Strength StrengthRange::*end,
                            World world) const {
  const bool blockOverrides = world.Reads(Assumption::StaticBlocks, StaticBlockReading::BlockOverrides);
  const bool permitFirst = world.Reads(Assumption::SublayerTies, TieReading::PermitFirst);
  bool isHard = false;
  for (std::size_t i = 0; i < slots_.size();) {
    bool blocks = false;
    bool permitsHard = false;
    for (const UINT16 weight = slots_[i].sublayer->weight;
         i < slots_.size() && slots_[i].sublayer->weight == weight; ++i) {
      const Strength strength = decisions[i].*end;
      if (strength == Strength::Veto) {
        return Action::Block;
      }
      blocks = blocks || strength == Strength::Block;
      permitsHard = permitsHard || strength == Strength::Hard;
    }
    const bool permitIsBefore = isHard || (permitsHard && permitFirst);
    if (blocks && (!permitIsBefore || blockOverrides)) {
      return Action::Block;
    }
    isHard = isHard || permitsHard;
  }
  return Action::Permit;
}

std::optional<Action> Arbitration::Combine(const std::vector<StrengthRange>& decisions, World world) const {
  const Action least = Combine(decisions, &StrengthRange::least, world);
  const Action most = Combine(decisions, &StrengthRange::most, world);
  return least == most ? std::optional(least) : std::nullopt;
}

void Arbitration::Decide(const BitWord* sure, const BitWord* perhaps, const WorldSet& worlds,
                         Verdict& verdict) const {
  std::vector<StrengthRange> decisions(slots_.size());
  for (const auto& orders : WorldsByOrder()) {
    for (std::size_t i = 0; i < slots_.size(); ++i) {
      decisions[i] = Decide(slots_[i], sure, perhaps, orders.front().world);
    }
    for (const OrderedWorlds& order : orders) {
      verdict.Set(order.worlds & worlds, Combine(decisions, order.world));
    }
  }
}

}  // namespace Policy
