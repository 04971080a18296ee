#include "policy/LintBehaviour.h"

#include <algorithm>
#include <deque>
#include <map>
#include <set>
#include <unordered_set>

#include "catalog/Names.h"
#include "policy/Diagram.h"
#include "policy/MakeFieldTable.h"
#include "policy/ModelledField.h"
#include "policy/Section.h"

namespace Policy {
namespace {

/// Whether a class has values at all, the field without a value left aside.
bool HasValues(const ValueClass& values) {
  return !values.intervals.empty() || !values.masked.empty() || !values.applications.empty() ||
         !values.endings.empty() || values.others;
}

/// Sorts the values of a field in two: those of which a filter's conditions on it hold, and all others.
class FieldHalves {
 public:
  FieldHalves(Field field, IpVersion ipVersion, std::vector<const Test*> tests) {
    layout_.planes.resize(1);
    layout_.filterWords = 1;
    table_ = MakeFieldTable(field, ipVersion, layout_, {{0, false, false, std::move(tests)}});
  }

  [[nodiscard]] ValueClass Where(bool holds) const {
    std::vector<bool> signatures;
    for (std::size_t i = 0; i < table_->Signatures().Size(); ++i) {
      signatures.push_back(HasBit(table_->Signatures()[i], 0) == holds);
    }
    return table_->Collect(signatures, {});
  }

 private:
  StateLayout layout_;
  std::unique_ptr<FieldTable> table_;
};

/// A filter and another that spoils it; each filter once.
using Spoiled = std::map<const Filter*, const Filter*>;

/// What filters do to each other, collected over all connections.
struct Seen {
  std::unordered_set<const Filter*> deciding;
  Spoiled tied;
  Spoiled overridden;
};

/// Looks at what a layer makes of the filters that match together.
class LayerLint {
 public:
  LayerLint(const Arbitration& layer, Section::Matching matching, const SettledReadings& settled, Seen& seen)
      : layer_(layer), matching_(matching), settled_(settled), seen_(seen) {}

  void Look() {
    for (const World& order : Arbitration::FilterOrders()) {
      for (const Arbitration::Slot& slot : layer_.Slots()) {
        LookAtSlot(slot, settled_.In(order));
      }
    }
    LookAtSublayers();
  }

 private:
  void LookAtSlot(const Arbitration::Slot& slot, World order) {
    const auto deciding = layer_.Deciding(slot, matching_.sure, order);
    if (deciding) {
      seen_.deciding.insert(FilterAt(*deciding));
    }
    ForEachBit(matching_.perhaps, slot.begin, slot.end, [&](std::size_t filter) {
      if (HasBit(matching_.sure, filter)) {
        LookAtTie(filter, deciding);
      } else if (layer_.StrengthOf(filter, order) &&
                 (!deciding || layer_.Precedes(filter, *deciding, order))) {
        seen_.deciding.insert(FilterAt(filter));
      }
    });
  }

  void LookAtTie(std::size_t filter, std::optional<std::size_t> deciding) {
    if (deciding && layer_.AreTied(filter, *deciding) && !layer_.DoTheSame(filter, *deciding)) {
      const Filter* older = FilterAt(std::max(filter, *deciding));  // of a run, the newest is first
      const Filter* newer = FilterAt(std::min(filter, *deciding));
      seen_.tied.emplace(older, newer);
    }
  }

  /// In the world to expect: soft permits that a block takes back.
  void LookAtSublayers() {
    const World world = settled_.In(World());
    std::vector<std::size_t> soft;
    for (const Arbitration::Slot& slot : layer_.Slots()) {
      const auto deciding = layer_.Deciding(slot, matching_.sure, world);
      if (!deciding) {
        continue;
      }
      if (layer_.StrengthOf(*deciding, world) == Strength::Pass) {
        soft.push_back(*deciding);
        continue;
      }
      if (layer_.StrengthOf(*deciding, world) == Strength::Block) {
        for (const std::size_t permit : soft) {
          seen_.overridden.emplace(FilterAt(permit), FilterAt(*deciding));
        }
      }
      return;
    }
  }

  [[nodiscard]] const Filter* FilterAt(std::size_t filter) const { return layer_.Filters()[filter]; }

  const Arbitration& layer_;
  Section::Matching matching_;
  const SettledReadings& settled_;
  Seen& seen_;
};

void Look(const Section& section, Seen& seen) {
  // By layer, the sets of matching filters that have been looked at.
  std::vector<WordTable> known;
  for (const Arbitration& layer : section.Layers()) {
    known.emplace_back(2 * layer.WordCount());
  }
  std::vector<BitWord> both;
  MakeDiagram(section, Purpose::DecidingFilters, [&](const BitWord* state) {
    for (std::size_t i = 0; i < section.Layers().size(); ++i) {
      const Arbitration& layer = section.Layers()[i];
      for (std::size_t plane = 0; plane < section.Layout().planes.size(); ++plane) {
        const Section::Matching matching = section.MatchingIn(plane, i, state);
        both.assign(matching.sure, matching.sure + layer.WordCount());
        both.insert(both.end(), matching.perhaps, matching.perhaps + layer.WordCount());
        if (known[i].Intern(both.data()).isNew) {
          LayerLint(layer, matching, section.Settled(), seen).Look();
        }
      }
    }
    return std::size_t{0};
  });
}

/// A connection's state in which a filter at least perhaps matches in a plane, or none if there is none.
std::vector<BitWord> StateWith(const Section& section, std::size_t plane, std::size_t layer,
                               std::size_t filter) {
  std::vector<BitWord> state = section.BaseState();
  const auto matches = [&](const BitWord* words) {
    return HasBit(section.MatchingIn(plane, layer, words).perhaps, filter);
  };
  for (const auto& table : section.Tables()) {
    const WordTable& signatures = table->Signatures();
    std::size_t fitting = 0;
    while (fitting < signatures.Size() && !matches(signatures[fitting])) {
      ++fitting;
    }
    if (fitting == signatures.Size()) {
      return {};
    }
    std::ranges::transform(state, std::span(signatures[fitting], state.size()), state.begin(),
                           std::bit_and<>());
  }
  return matches(state.data()) ? state : std::vector<BitWord>();
}

/// For a filter that never decides, one that decides in its place; null if it matches nothing.
const Filter* SpoilerOf(const Section& section, std::size_t layerIndex, std::size_t filter) {
  const Arbitration& layer = section.Layers()[layerIndex];
  const auto holds = [filter](const Arbitration::Slot& slot) { return filter < slot.end; };
  const Arbitration::Slot& slot = *std::ranges::find_if(layer.Slots(), holds);
  for (std::size_t plane = 0; plane < section.Layout().planes.size(); ++plane) {
    const std::vector<BitWord> state = StateWith(section, plane, layerIndex, filter);
    for (const World& order : Arbitration::FilterOrders()) {
      const auto deciding =
          state.empty() ? std::nullopt
                        : layer.Deciding(slot, section.MatchingIn(plane, layerIndex, state.data()).sure,
                                         section.Settled().In(order));
      if (deciding && *deciding != filter) {
        return layer.Filters()[*deciding];
      }
    }
  }
  return nullptr;
}

void FindIdle(const Section& section, const Seen& seen, const std::set<const Filter*>& reported,
              Spoiled& idle) {
  for (std::size_t layer = 0; layer < section.Layers().size(); ++layer) {
    const auto& filters = section.Layers()[layer].Filters();
    for (std::size_t i = 0; i < filters.size(); ++i) {
      if (!seen.deciding.contains(filters[i]) && !reported.contains(filters[i])) {
        const Filter*& spoiler = idle[filters[i]];
        spoiler = spoiler == nullptr ? SpoilerOf(section, layer, i) : spoiler;
      }
    }
  }
}

void AddIdle(const Spoiled& idle, std::vector<Finding>& findings) {
  for (const auto& [filter, spoiler] : idle) {
    if (spoiler == nullptr) {
      findings.push_back({FindingKind::NeverTrue, filter, nullptr,
                          "No connection meets its conditions, so it does nothing.",
                          "remove it, or mend them"});
    } else {
      findings.push_back(
          {FindingKind::NeverDecides, filter, spoiler,
           "Wherever the first matches, another filter of its sublayer, such as the second, has "
           "decided already.",
           "remove it, or give it a greater weight"});
    }
  }
}

void AddPairs(FindingKind kind, const Spoiled& pairs, const std::string& reason, const std::string& advice,
              std::vector<Finding>& findings) {
  for (const auto& [filter, other] : pairs) {
    findings.push_back({kind, filter, other, reason, advice});
  }
}

}  // namespace

void LintTests(const Filter& filter, std::vector<Finding>& findings) {
  const Catalog::Layer* layer = Catalog::FindLayer(filter.layerKey);
  std::map<Field, std::vector<const Test*>> tests;
  for (const Condition& condition : filter.conditions) {
    const auto field = ModelledField(condition);
    if (field && layer != nullptr) {
      tests[*field].push_back(&condition.test);
    }
  }
  for (const auto& [field, ofField] : tests) {
    if (!FieldTable::CanJudge(field, ofField)) {
      continue;
    }
    const FieldHalves halves(field, layer->ipVersion.value_or(IpVersion::V4), ofField);
    const std::string name(FieldText(field));
    if (!HasValues(halves.Where(false))) {
      findings.push_back({FindingKind::AlwaysTrue, &filter, nullptr,
                          "What it asks of the " + name + " is true of every value.", "leave it out"});
    }
    if (!HasValues(halves.Where(true)) && !halves.Where(true).unset) {
      findings.push_back({FindingKind::NeverTrue, &filter, nullptr,
                          "What it asks of the " + name + " is true of no value: the filter does nothing.",
                          "remove the filter, or mend the condition"});
    }
  }
}

void LintBehaviour(const Snapshot& snapshot, std::vector<Finding>& findings, const ShowProgress& show) {
  std::deque<Section> sections;
  Seen seen;
  for (const SectionKey& key : kSectionKeys) {
    Look(sections.emplace_back(snapshot, key), seen);
    if (show) {
      show(sections.size(), kSectionKeys.size());
    }
  }
  std::set<const Filter*> reported;
  for (const Finding& finding : findings) {
    if (finding.kind == FindingKind::NeverTrue) {
      reported.insert(finding.filter);
    }
  }
  Spoiled idle;
  for (const Section& section : sections) {
    FindIdle(section, seen, reported, idle);
  }
  AddIdle(idle, findings);
  AddPairs(
      FindingKind::TieOfActions, seen.tied,
      "They weigh the same, do different things and match the same connections; which one decides is not "
      "documented.",
      "give the one that is meant to decide a greater weight", findings);
  AddPairs(FindingKind::OverriddenPermit, seen.overridden,
           "The permit of the first is soft: the block of the second, in another sublayer, takes it back.",
           "give the permit the flag CLEAR_ACTION_RIGHT, or the block an exception", findings);
}

}  // namespace Policy
