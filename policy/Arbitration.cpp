#include "policy/Arbitration.h"

#include <algorithm>
#include <functional>
#include <map>
#include <utility>

#include "catalog/Keys.h"
#include "catalog/PassiveCallouts.h"

namespace Policy {
namespace {

constexpr UINT32 kNotInForce = FWPM_FILTER_FLAG_DISABLED | FWPM_FILTER_FLAG_BOOTTIME;

bool Decides(const Filter& filter) {
  if (Arbitration::IsCallout(filter)) {
    return !filter.calloutKey || Catalog::FindPassiveCallout(*filter.calloutKey) == nullptr;
  }
  return filter.action == FWP_ACTION_BLOCK || filter.action == FWP_ACTION_PERMIT;
}

/// All worlds with the same readings of some assumptions, and one of them.
struct AlikeWorlds {
  World world;
  WorldSet worlds;
};

/// All worlds, sorted by how they read some assumptions.
std::vector<AlikeWorlds> SortWorlds(const std::vector<Assumption>& assumptions) {
  std::vector<AlikeWorlds> sorted;
  for (std::size_t index = 0; index < World::kCount; ++index) {
    const World world = World::OfIndex(index);
    const auto agrees = [&](const AlikeWorlds& known) {
      return std::ranges::all_of(assumptions, [&](Assumption assumption) {
        return known.world.ReadingOf(assumption) == world.ReadingOf(assumption);
      });
    };
    auto alike = std::ranges::find_if(sorted, agrees);
    if (alike == sorted.end()) {
      alike = sorted.insert(alike, {world, {}});
    }
    alike->worlds[index] = true;
  }
  return sorted;
}

/// By all readings that make a difference to arbitration.
const std::vector<AlikeWorlds>& WorldsByOrder() {
  static const auto kSorted =
      SortWorlds({Assumption::FilterTies, Assumption::Callouts, Assumption::StaticBlocks});
  return kSorted;
}

const WorldSet& WorldsThatIgnoreFlowBlocks() {
  static const WorldSet kIgnore = SortWorlds({Assumption::FlowBlocks}).back().worlds;
  return kIgnore;
}

}  // namespace

void StrengthRange::Include(Strength strength) {
  least = std::min(least, strength);
  most = std::max(most, strength);
}

bool Arbitration::IsCallout(const Filter& filter) {
  return filter.action == FWP_ACTION_CALLOUT_TERMINATING || filter.action == FWP_ACTION_CALLOUT_UNKNOWN;
}

Arbitration::Strengths Arbitration::StrengthsOf(const Filter& filter) {
  const Strength permit = filter.IsHard() ? Strength::Hard : Strength::Pass;
  if (filter.action == FWP_ACTION_CALLOUT_UNKNOWN) {
    return {std::nullopt, Strength::Veto};
  }
  if (filter.action == FWP_ACTION_CALLOUT_TERMINATING) {
    return {permit, Strength::Veto};
  }
  const Strength strength = filter.action == FWP_ACTION_BLOCK ? Strength::Block : permit;
  return {strength, strength};
}

std::optional<Strength> Arbitration::StrengthOf(const Filter& filter, World world) {
  return StrengthsOf(filter)[world.ReadingOf(Assumption::Callouts)];
}

Arbitration::Arbitration(const Snapshot& snapshot, const Catalog::Layer& layer)
    : layer_(&layer), isFlow_(Catalog::IsFlowEstablished(layer.key)) {
  std::map<GUID, std::vector<const Filter*>, Catalog::KeyOrder> bySublayer;
  for (const Filter& filter : snapshot.filters) {
    if (filter.layerKey == layer.key && (filter.flags & kNotInForce) == 0 && Decides(filter)) {
      bySublayer[filter.sublayerKey].push_back(&filter);
    }
  }
  for (const Sublayer& sublayer : snapshot.sublayers) {
    const auto found = bySublayer.find(sublayer.key);
    if (found != bySublayer.end()) {
      AddSlot(sublayer, std::move(found->second));
    }
  }
  words_ = WordsFor(filters_.size() + 1);
}

void Arbitration::AddSlot(const Sublayer& sublayer, std::vector<const Filter*> filters) {
  std::ranges::sort(filters, std::greater<>(),
                    [](const Filter* filter) { return std::pair(filter->effectiveWeight, filter->id); });
  const std::size_t begin = filters_.size();
  Slot slot{&sublayer, begin, begin + filters.size(), false};
  for (auto run = filters.begin(); run != filters.end();) {
    const auto end = std::ranges::find_if(run, filters.end(), [run](const Filter* filter) {
      return filter->effectiveWeight != (*run)->effectiveWeight;
    });
    runEnds_.resize(begin + static_cast<std::size_t>(end - filters.begin()),
                    begin + static_cast<std::size_t>(end - filters.begin()));
    run = end;
  }
  for (const Filter* filter : filters) {
    const std::size_t number = filters_.size();
    filters_.push_back(filter);
    strengths_.push_back(StrengthsOf(*filter));
    const bool isTied = number > begin && AreTied(number, number - 1);
    slot.isOpen = slot.isOpen || IsCallout(*filter) || (isTied && !DoTheSame(number, number - 1));
  }
  slots_.push_back(slot);
}

std::optional<Action> Arbitration::DecideSurely(const BitWord* matching) const {
  if (HasBit(matching, BlockedBit())) {
    return isFlow_ ? std::nullopt : std::optional(Action::Block);
  }
  bool isHard = false;
  for (const Slot& slot : slots_) {
    const std::size_t first = FirstBit(matching, slot.begin, slot.end);
    if (first == slot.end) {
      continue;
    }
    bool isOpen = IsCallout(*filters_[first]);
    ForEachBit(matching, first + 1, runEnds_[first],
               [&](std::size_t tied) { isOpen = isOpen || !DoTheSame(first, tied); });
    const bool blocks = strengths_[first][0] == Strength::Block;
    if (isOpen || (blocks && (isHard || isFlow_))) {
      return std::nullopt;
    }
    if (blocks) {
      return Action::Block;
    }
    isHard = isHard || strengths_[first][0] == Strength::Hard;
  }
  return Action::Permit;
}

const std::vector<World>& Arbitration::FilterOrders() {
  static const auto kOrders = [] {
    std::vector<World> orders;
    for (const auto& [world, worlds] : SortWorlds({Assumption::FilterTies, Assumption::Callouts})) {
      orders.push_back(world);
    }
    return orders;
  }();
  return kOrders;
}

bool Arbitration::Precedes(std::size_t filter, std::size_t other, World world) const {
  const auto strength = StrengthOf(filter, world);
  const auto strengthOfOther = StrengthOf(other, world);
  if (!AreTied(filter, other) || strength == strengthOfOther ||
      world.Reads(Assumption::FilterTies, TieReading::NewestFirst)) {
    return filter < other;
  }
  return world.Reads(Assumption::FilterTies, TieReading::BlockFirst) ? strength < strengthOfOther
                                                                     : strength > strengthOfOther;
}

std::optional<std::size_t> Arbitration::Deciding(const Slot& slot, const BitWord* sure, World world) const {
  std::optional<std::size_t> deciding;
  std::size_t end = slot.end;
  for (std::size_t filter = FirstBit(sure, slot.begin, end); filter < end;
       filter = FirstBit(sure, filter + 1, end)) {
    if (StrengthOf(filter, world) && (!deciding || Precedes(filter, *deciding, world))) {
      deciding = filter;
      end = runEnds_[filter];
    }
  }
  return deciding;
}

/// A filter that perhaps matches may decide wherever no filter that surely matches comes before it.
StrengthRange Arbitration::Decide(const Slot& slot, const BitWord* sure, const BitWord* perhaps,
                                  World world) const {
  const std::optional<std::size_t> deciding = Deciding(slot, sure, world);
  const Strength strength = deciding ? *StrengthOf(*deciding, world) : Strength::Pass;
  StrengthRange range{strength, strength};
  ForEachBit(perhaps, slot.begin, deciding ? runEnds_[*deciding] : slot.end, [&](std::size_t filter) {
    const auto possible = StrengthOf(filter, world);
    if (possible && !HasBit(sure, filter) && (!deciding || Precedes(filter, *deciding, world))) {
      range.Include(*possible);
    }
  });
  return range;
}

Action Arbitration::Combine(const std::vector<StrengthRange>& decisions, Strength StrengthRange::*end,
                            World world) const {
  const bool blockOverrides = world.Reads(Assumption::StaticBlocks, StaticBlockReading::BlockOverrides);
  bool isHard = false;
  for (const StrengthRange& decision : decisions) {
    const Strength strength = decision.*end;
    if (strength == Strength::Veto || (strength == Strength::Block && (!isHard || blockOverrides))) {
      return Action::Block;
    }
    isHard = isHard || strength == Strength::Hard;
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
  std::vector<StrengthRange> decisions;
  for (const Slot& slot : slots_) {
    decisions.push_back(Decide(slot, sure, perhaps, World()));
  }
  for (const auto& [world, alike] : WorldsByOrder()) {
    for (std::size_t i = 0; i < slots_.size(); ++i) {
      decisions[i] = slots_[i].isOpen ? Decide(slots_[i], sure, perhaps, world) : decisions[i];
    }
    const bool isBlocked = HasBit(sure, BlockedBit());
    verdict.Set(alike & worlds, isBlocked ? Action::Block : Combine(decisions, world));
  }
  if (isFlow_) {
    verdict.Set(WorldsThatIgnoreFlowBlocks() & worlds, Action::Permit);
  }
}

}  // namespace Policy
