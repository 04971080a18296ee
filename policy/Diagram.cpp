#include "policy/Diagram.h"

#include <algorithm>

namespace Policy {
namespace {

BitWord Encode(MapTarget target) { return target.index * 2 + (target.isVerdict ? 1 : 0); }
MapTarget DecodeTarget(BitWord word) { return {word % 2 == 1, static_cast<std::size_t>(word / 2)}; }

/// Goes through the tables one by one, a level for each. Where two ways have come to the same state, they go
/// on as one.
class Builder {
 public:
  Builder(const Section& section, Purpose purpose, const std::function<std::size_t(const BitWord*)>& leaf,
          std::size_t mostStateWords)
      : section_(section),
        pruner_(section, purpose),
        leaf_(leaf),
        width_(section.Layout().Width()),
        wordsLeft_(mostStateWords) {
    for (const auto& table : section.Tables()) {
      seen_.emplace_back(width_);
      made_.emplace_back(table->Signatures().Size());
    }
    seen_.emplace_back(width_);
    targets_.resize(seen_.size());
    nodeNumbers_.resize(made_.size());
  }

  Diagram Build() {
    std::vector<BitWord> base = section_.BaseState();
    pruner_.Prune(0, base.data());
    diagram_.root = Follow(0, base);
    for (std::size_t level = 0; level < made_.size(); ++level) {
      diagram_.levels.push_back(MergeSignatures(level));
    }
    for (MapNode& node : diagram_.nodes) {
      node.targets = ByClass(node);
    }
    return std::move(diagram_);
  }

 private:
  MapTarget Follow(std::size_t level, const std::vector<BitWord>& state) {
    const auto [index, isNew] = seen_[level].Intern(state.data());
    if (isNew) {
      if (wordsLeft_ < width_) {
        throw DiagramTooLarge();
      }
      wordsLeft_ -= width_;
      targets_[level].emplace_back();
      const MapTarget target =
          level == made_.size() ? MapTarget{true, leaf_(state.data())} : Branch(level, state);
      targets_[level][index] = target;
    }
    return targets_[level][index];
  }

  MapTarget Branch(std::size_t level, const std::vector<BitWord>& state) {
    const WordTable& signatures = section_.Tables()[level]->Signatures();
    std::vector<BitWord> targets;
    std::vector<BitWord> next(width_);
    for (std::size_t i = 0; i < signatures.Size(); ++i) {
      std::ranges::transform(state, std::span(signatures[i], width_), next.begin(), std::bit_and<>());
      pruner_.Prune(level + 1, next.data());
      targets.push_back(Encode(Follow(level + 1, next)));
    }
    if (std::ranges::count(targets, targets.front()) == std::ssize(targets)) {
      return DecodeTarget(targets.front());
    }
    const auto [made, isNew] = made_[level].Intern(targets.data());
    if (isNew) {
      nodeNumbers_[level].push_back(diagram_.nodes.size());
      diagram_.nodes.push_back({level, {}});
      std::ranges::transform(targets, std::back_inserter(diagram_.nodes.back().targets), DecodeTarget);
    }
    return {false, nodeNumbers_[level][made]};
  }

  [[nodiscard]] Diagram::Level MergeSignatures(std::size_t level) const {
    Diagram::Level merged;
    const std::size_t signatures = section_.Tables()[level]->Signatures().Size();
    WordTable columns(made_[level].Size());
    for (std::size_t i = 0; i < signatures && made_[level].Size() > 0; ++i) {
      std::vector<BitWord> column;
      for (const std::size_t node : nodeNumbers_[level]) {
        column.push_back(Encode(diagram_.nodes[node].targets[i]));
      }
      merged.classOf.push_back(columns.Intern(column.data()).index);
    }
    merged.classCount = columns.Size();
    return merged;
  }

  [[nodiscard]] std::vector<MapTarget> ByClass(const MapNode& node) const {
    const Diagram::Level& level = diagram_.levels[node.field];
    std::vector<MapTarget> targets(level.classCount);
    for (std::size_t i = 0; i < node.targets.size(); ++i) {
      targets[level.classOf[i]] = node.targets[i];
    }
    return targets;
  }

  const Section& section_;
  Pruner pruner_;
  const std::function<std::size_t(const BitWord*)>& leaf_;
  std::size_t width_;
  std::size_t wordsLeft_;
  Diagram diagram_;
  std::vector<WordTable> seen_;                  ///< states, by level
  std::vector<std::vector<MapTarget>> targets_;  ///< where each of them leads
  std::vector<WordTable> made_;                  ///< nodes by their targets, by level
  std::vector<std::vector<std::size_t>> nodeNumbers_;
};

}  // namespace

Diagram MakeDiagram(const Section& section, Purpose purpose,
                    const std::function<std::size_t(const BitWord*)>& leaf, std::size_t mostStateWords) {
  return Builder(section, purpose, leaf, mostStateWords).Build();
}

std::vector<ValueClass> ClassesOf(const FieldTable& table, const Diagram::Level& level,
                                  const Connection& ordinary) {
  std::vector<ValueClass> classes;
  for (std::size_t i = 0; i < level.classCount; ++i) {
    std::vector<bool> signatures;
    std::ranges::transform(level.classOf, std::back_inserter(signatures),
                           [i](std::size_t ofSignature) { return ofSignature == i; });
    classes.push_back(table.Collect(signatures, ordinary));
  }
  return classes;
}

}  // namespace Policy
