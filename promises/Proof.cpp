#include "promises/Proof.h"

#include <algorithm>
#include <deque>
#include <limits>

#include "policy/Diagram.h"
#include "promises/PromiseList.h"

namespace Promises {
namespace {

using Policy::Action;
using Policy::BitWord;
using Policy::Connection;
using Policy::Decider;
using Policy::Diagram;
using Policy::Field;
using Policy::MapNode;
using Policy::MapTarget;
using Policy::Mark;
using Policy::OrdinaryConnection;
using Policy::Section;
using Policy::SectionKey;
using Policy::Snapshot;
using Policy::ValueClass;
using Policy::Verdict;
using Policy::World;
using Policy::WorldSet;

constexpr std::size_t kNoWay = std::numeric_limits<std::size_t>::max();

/// A promise's clause in one section, with the numbers of its marks.
struct PlacedClause {
  std::size_t promise;
  Action promised;
  std::size_t connections;
  std::vector<std::size_t> exceptions;
};

/// The connections of a section with what is promised for them.
class ProofSection {
 public:
  ProofSection(const Snapshot& snapshot, SectionKey key, const std::vector<Promise>& promises,
               const Policy::Circumstances& circumstances)
      : key_(key), marks_(Place(promises)), section_(snapshot, key, marks_, circumstances) {
    diagram_ = MakeDiagram(section_, Policy::Purpose::Verdicts, [this](const BitWord* state) {
      leaves_.push_back(
          {section_.Decide(state), {state + section_.Layout().MarksAt(), state + section_.Layout().Width()}});
      return LeafNumber();
    });
    const Connection ordinary = OrdinaryConnection(key_.direction, key_.ipVersion);
    for (std::size_t level = 0; level < diagram_.levels.size(); ++level) {
      classes_.push_back(ClassesOf(*section_.Tables()[level], diagram_.levels[level], ordinary));
    }
  }

  /// The worlds in which a promise holds here.
  [[nodiscard]] WorldSet WorldsOf(std::size_t promise) const {
    WorldSet worlds;
    worlds.set();
    for (const Leaf& leaf : leaves_) {
      for (const PlacedClause& clause : clauses_) {
        if (clause.promise == promise && Speaks(clause, leaf)) {
          worlds &= Allowed(clause, leaf);
        }
      }
    }
    return worlds;
  }

  struct Counterexample {
    std::size_t distance = kNoWay;
    Connection connection;
    Action promised = Action::Block;
  };
  /// For each of a promise's clauses the connection nearest to an ordinary one that breaks it in a world.
  [[nodiscard]] std::vector<Counterexample> FindCounterexamples(std::size_t promise, World world) const {
    std::vector<Counterexample> found;
    for (const PlacedClause& clause : clauses_) {
      if (clause.promise != promise) {
        continue;
      }
      const std::vector<std::size_t> distances = Distances(clause, world);
      const std::size_t distance = DistanceOf(diagram_.root, distances, clause, world);
      if (distance != kNoWay) {
        found.push_back({distance, Walk(distances, clause, world), clause.promised});
      }
    }
    return found;
  }

 private:
  struct Leaf {
    Verdict verdict;
    std::vector<BitWord> marks;
    bool operator==(const Leaf&) const = default;
  };

  std::vector<Mark> Place(const std::vector<Promise>& promises) {
    std::vector<Mark> marks;
    for (std::size_t i = 0; i < promises.size(); ++i) {
      for (const Clause& clause : promises[i].clauses) {
        if (clause.direction.value_or(key_.direction) != key_.direction ||
            clause.ipVersion.value_or(key_.ipVersion) != key_.ipVersion) {
          continue;
        }
        PlacedClause placed{i, clause.promised, marks.size(), {}};
        marks.push_back(clause.connections);
        for (const Mark& exception : clause.exceptions) {
          placed.exceptions.push_back(marks.size());
          marks.push_back(exception);
        }
        clauses_.push_back(std::move(placed));
      }
    }
    return marks;
  }

  /// The number of the leaf just added. If there was an equal one, the new one goes.
  std::size_t LeafNumber() {
    const auto same = std::ranges::find(leaves_, leaves_.back());
    if (same != std::prev(leaves_.end())) {
      leaves_.pop_back();
    }
    return static_cast<std::size_t>(same - leaves_.begin());
  }

  static bool Speaks(const PlacedClause& clause, const Leaf& leaf) {
    return Policy::HasBit(leaf.marks.data(), clause.connections) &&
           std::ranges::none_of(clause.exceptions, [&leaf](std::size_t mark) {
             return Policy::HasBit(leaf.marks.data(), mark);
           });
  }

  static const WorldSet& Allowed(const PlacedClause& clause, const Leaf& leaf) {
    return clause.promised == Action::Permit ? leaf.verdict.Permits() : leaf.verdict.Blocks();
  }

  /// How far a class of values is from the ordinary.
  [[nodiscard]] std::size_t DistanceOf(std::size_t level, const ValueClass& values) const {
    constexpr std::size_t kOther = 1;
    constexpr std::size_t kUnset = 3;
    if (!values.exampleNumber && !values.exampleApplication) {
      return kUnset;
    }
    const Connection ordinary = OrdinaryConnection(key_.direction, key_.ipVersion);
    Connection connection = ordinary;
    SetExample(level, values, connection);
    return connection == ordinary ? 0 : kOther;
  }

  void SetExample(std::size_t level, const ValueClass& values, Connection& connection) const {
    const Field field = section_.Tables()[level]->GetField();
    if (field == Field::Application) {
      connection.application = values.exampleApplication;
    } else {
      SetNumber(connection, field, values.exampleNumber);
    }
  }

  [[nodiscard]] std::size_t DistanceOf(MapTarget target, const std::vector<std::size_t>& distances,
                                       const PlacedClause& clause, World world) const {
    if (!target.isVerdict) {
      return distances[target.index];
    }
    const Leaf& leaf = leaves_[target.index];
    return Speaks(clause, leaf) && !Allowed(clause, leaf)[world.Index()] ? 0 : kNoWay;
  }

  [[nodiscard]] std::size_t DistanceBy(const MapNode& node, std::size_t valueClass,
                                       const std::vector<std::size_t>& distances, const PlacedClause& clause,
                                       World world) const {
    const std::size_t rest = DistanceOf(node.targets[valueClass], distances, clause, world);
    return rest == kNoWay ? kNoWay : rest + DistanceOf(node.field, classes_[node.field][valueClass]);
  }

  /// For each node, how far the nearest connection is that breaks the clause.
  [[nodiscard]] std::vector<std::size_t> Distances(const PlacedClause& clause, World world) const {
    std::vector<std::size_t> distances;
    for (const MapNode& node : diagram_.nodes) {
      std::size_t least = kNoWay;
      for (std::size_t i = 0; i < node.targets.size(); ++i) {
        least = std::min(least, DistanceBy(node, i, distances, clause, world));
      }
      distances.push_back(least);
    }
    return distances;
  }

  [[nodiscard]] Connection Walk(const std::vector<std::size_t>& distances, const PlacedClause& clause,
                                World world) const {
    Connection connection = OrdinaryConnection(key_.direction, key_.ipVersion);
    for (MapTarget target = diagram_.root; !target.isVerdict;) {
      const MapNode& node = diagram_.nodes[target.index];
      std::size_t nearest = 0;
      while (DistanceBy(node, nearest, distances, clause, world) != distances[target.index]) {
        ++nearest;
      }
      SetExample(node.field, classes_[node.field][nearest], connection);
      target = node.targets[nearest];
    }
    return connection;
  }

  SectionKey key_;
  std::vector<PlacedClause> clauses_;
  std::vector<Mark> marks_;
  Section section_;
  std::vector<Leaf> leaves_;
  Diagram diagram_;
  std::vector<std::vector<ValueClass>> classes_;  ///< by level
};

Keeping KeepingIn(const WorldSet& worlds) {
  if (worlds.all()) {
    return Keeping::Holds;
  }
  return worlds.any() ? Keeping::Conditional : Keeping::Broken;
}

World FirstOutside(const WorldSet& worlds) {
  std::size_t index = 0;
  while (worlds[index]) {
    ++index;
  }
  return World::OfIndex(index);
}

/// Because of which filter a connection fares as it does; where that is not known, the first that could turn
/// it.
Break BreakOf(const Policy::Explanation& explanation) {
  if (explanation.verdict.In(explanation.world)) {
    return {explanation.connection, explanation.Deciding(), true};
  }
  for (const Policy::LayerTrace& layer : explanation.layers) {
    for (const Policy::SublayerTrace& sublayer : layer.sublayers) {
      if (!sublayer.turning.empty()) {
        return {explanation.connection, sublayer.turning.front(), false};
      }
    }
  }
  return {explanation.connection, nullptr, false};
}

void AddCounterexample(const std::deque<ProofSection>& sections, std::size_t promise, const Decider& decider,
                       PromiseResult& result) {
  const World world = FirstOutside(result.worlds);
  ProofSection::Counterexample best;
  for (const ProofSection& section : sections) {
    for (const auto& found : section.FindCounterexamples(promise, world)) {
      const Break broken = BreakOf(decider.Explain(found.connection, world));
      if (std::ranges::find(result.breaks, broken.filter, &Break::filter) == result.breaks.end()) {
        result.breaks.push_back(broken);
      }
      best = found.distance < best.distance ? found : best;
    }
  }
  result.counterexample = decider.Explain(best.connection, world);
  result.promised = best.promised;
}

}  // namespace

std::string_view KeepingText(Keeping keeping) {
  switch (keeping) {
    case Keeping::Holds:
      return "holds";
    case Keeping::Conditional:
      return "holds only under a reading";
    case Keeping::Broken:
      break;
  }
  return "broken";
}

std::vector<PromiseResult> Prove(const Snapshot& snapshot, const Features& features,
                                 const Policy::Circumstances& circumstances) {
  const std::vector<Promise> promises = PromisesOf(features);
  std::deque<ProofSection> sections;
  for (const SectionKey& key : Policy::kSectionKeys) {
    sections.emplace_back(snapshot, key, promises, circumstances);
  }
  const Decider decider(snapshot, circumstances);
  std::vector<PromiseResult> results;
  for (std::size_t i = 0; i < promises.size(); ++i) {
    PromiseResult result{promises[i].feature, promises[i].name, promises[i].sentence, {}, {}, {}, {}, {}, {}};
    result.worlds.set();
    for (const ProofSection& section : sections) {
      result.worlds &= section.WorldsOf(i);
    }
    result.keeping = KeepingIn(result.worlds);
    if (result.keeping != Keeping::Holds) {
      AddCounterexample(sections, i, decider, result);
    }
    results.push_back(std::move(result));
  }
  return results;
}

std::vector<PromiseResult> ProveInCompany(const Snapshot& snapshot, const Features& features,
                                          const GUID& ours, const Policy::Circumstances& circumstances) {
  std::vector<PromiseResult> results = Prove(snapshot, features, circumstances);
  Snapshot own = snapshot;
  std::erase_if(own.filters, [&ours](const Policy::Filter& filter) { return filter.providerKey != ours; });
  if (own.filters.size() == snapshot.filters.size()) {
    return results;
  }
  const std::vector<PromiseResult> alone = Prove(own, features, circumstances);
  for (std::size_t i = 0; i < results.size(); ++i) {
    results[i].alone = alone[i].keeping;
  }
  return results;
}

std::string DescribeInCompany(const PromiseResult& result, const Policy::Owners& owners,
                              const Policy::Labels& labels) {
  std::string text = result.name + " (" + result.feature + "): " + std::string(KeepingText(result.keeping)) +
                     " on this machine\n  " + result.sentence + '\n';
  for (const auto& [connection, filter, isCertain] : result.breaks) {
    text += isCertain ? "  broken by " : "  perhaps broken by ";
    text += (filter == nullptr ? "the lack of a filter" : owners.Describe(*filter)) + ": " +
            Describe(connection, labels) + '\n';
  }
  if (result.keeping != Keeping::Holds && result.alone) {
    text +=
        "  of this product's filters alone it " +
        (*result.alone == Keeping::Broken ? "is broken as well" : std::string(KeepingText(*result.alone))) +
        '\n';
  }
  return text;
}

std::string Describe(const PromiseResult& result, const Policy::Labels& labels) {
  std::string text = result.name + " (" + result.feature + "): " + std::string(KeepingText(result.keeping)) +
                     "\n  " + result.sentence + '\n';
  if (result.keeping == Keeping::Conditional) {
    for (const std::vector<Policy::Choice>& choices : Policy::Alternatives(result.worlds)) {
      text += "  holds with " + Describe(choices) + '\n';
    }
  }
  if (result.counterexample) {
    text += "  promised " + std::string(ActionText(*result.promised)) + ", but:\n  " +
            Describe(*result.counterexample, labels);
  }
  return text;
}

}  // namespace Promises
