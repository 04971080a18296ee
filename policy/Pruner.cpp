#include "policy/Pruner.h"

#include <algorithm>
#include <functional>

namespace Policy {
namespace {

/// What two sets have in common.
void Intersect(const BitWord* set, const std::vector<BitWord>& other, std::vector<BitWord>& common) {
  std::transform(other.begin(), other.end(), set, common.begin(), std::bit_and<>());
}

}  // namespace

Pruner::Pruner(const Section& section, Purpose purpose) : section_(section), purpose_(purpose) {
  for (const Arbitration& layer : section.Layers()) {
    layers_.push_back(SetsOf(layer));
  }
  const auto& tables = section.Tables();
  settled_.assign(tables.size() + 1, Words(section.Layout().filterWords, ~BitWord{0}));
  for (std::size_t level = tables.size(); level > 0; --level) {
    Words& settled = settled_[level - 1];
    settled = settled_[level];
    for (const TestGroup& group : tables[level - 1]->Groups()) {
      if (!group.isMark) {
        SetBit(settled.data(), group.bit, false);
      }
    }
  }
}

Pruner::LayerSets Pruner::SetsOf(const Arbitration& layer) {
  const Words none(layer.WordCount());
  LayerSets sets{none, none, none, none, none, none};
  const World world;
  const World other = World().With(Assumption::Callouts, CalloutReading::Block);
  for (std::size_t i = 0; i < layer.Filters().size(); ++i) {
    const auto strength = layer.StrengthOf(i, world);
    const auto inOther = layer.StrengthOf(i, other);
    SetBit(sets.always.data(), i, strength && inOther);
    SetBit(sets.others.data(), i, strength != Strength::Block || inOther != Strength::Block);
    SetBit(sets.differs.data(), i, strength != Strength::Pass || inOther != Strength::Pass);
    SetBit(sets.hard.data(), i, strength == Strength::Hard || inOther == Strength::Hard);
  }
  return sets;
}

void Pruner::Clear(Matching matching, std::size_t begin, std::size_t end) {
  ClearBits(matching.sure, begin, end);
  ClearBits(matching.perhaps, begin, end);
}

/// Drops what a filter that matches for sure precedes in every world.
void Pruner::DropLate(const Arbitration& layer, const BitWord* settled, LayerSets& sets, Matching matching) {
  Intersect(matching.sure, sets.always, sets.decided);
  std::transform(sets.decided.begin(), sets.decided.end(), settled, sets.decided.begin(), std::bit_and<>());
  BitWord* decided = sets.decided.data();
  for (const Arbitration::Slot& slot : layer.Slots()) {
    const std::size_t first = FirstBit(decided, slot.begin, slot.end);
    if (first == slot.end) {
      continue;
    }
    const std::size_t runEnd = layer.RunEnd(first);
    Clear(matching, runEnd, slot.end);
    // All worlds choose among the first of those of a run that do the same.
    ForEachBit(decided, first, runEnd, [&](std::size_t filter) {
      ForEachBit(matching.perhaps, filter + 1, runEnd, [&](std::size_t later) {
        if (layer.DoTheSame(filter, later)) {
          Clear(matching, later, later + 1);
          SetBit(decided, later, false);
        }
      });
    });
  }
}

/// Drops soft permits that come before nothing else: they do as much as no filter.
void Pruner::DropSoftPermits(const Arbitration& layer, LayerSets& sets, Matching matching) {
  Intersect(matching.perhaps, sets.differs, sets.left);
  for (const Arbitration::Slot& slot : layer.Slots()) {
    const std::size_t last = LastBit(sets.left.data(), slot.begin, slot.end);
    Clear(matching, last == slot.end ? slot.begin : layer.RunEnd(last), slot.end);
  }
}

/// Whether a slot that only blocks are left of decides, and no hard permit can be above it.
bool Pruner::BlocksSurely(const Arbitration& layer, LayerSets& sets, Matching matching) {
  Intersect(matching.perhaps, sets.hard, sets.left);
  const std::size_t firstHard = FirstBit(sets.left.data(), 0, layer.Filters().size());
  Intersect(matching.perhaps, sets.others, sets.left);
  for (const Arbitration::Slot& slot : layer.Slots()) {
    const std::size_t first = FirstBit(sets.decided.data(), slot.begin, slot.end);
    const bool isDecided = first != slot.end && HasBit(matching.sure, first);
    const bool onlyBlocks = FirstBit(sets.left.data(), slot.begin, slot.end) == slot.end;
    if (isDecided && onlyBlocks) {
      return true;
    }
    if (firstHard < slot.end) {
      return false;
    }
  }
  return false;
}

void Pruner::Prune(std::size_t level, BitWord* state) {
  const StateLayout& layout = section_.Layout();
  for (std::size_t plane = 0; plane < layout.planes.size(); ++plane) {
    bool isBlocked = false;
    for (std::size_t i = 0; i < layers_.size(); ++i) {
      const Arbitration& layer = section_.Layers()[i];
      BitWord* sure = state + section_.WordAt(plane, i);
      const Matching matching{sure, layout.hasDoubt ? sure + layout.filterWords : sure};
      if (!isBlocked) {
        DropLate(layer, settled_[level].data() + section_.WordAt(0, i), layers_[i], matching);
      }
      if (purpose_ == Purpose::DecidingFilters) {
        continue;
      }
      DropSoftPermits(layer, layers_[i], matching);
      if (isBlocked || HasBit(sure, layer.BlockedBit()) || BlocksSurely(layer, layers_[i], matching)) {
        Clear(matching, 0, layer.WordCount() * kBitsPerWord);
        SetBit(sure, layer.BlockedBit(), !isBlocked);
        SetBit(matching.perhaps, layer.BlockedBit(), !isBlocked);
        isBlocked = true;
      }
    }
  }
}

}  // namespace Policy
