#include "policy/Map.h"

#include <algorithm>

#include "policy/ApplicationTable.h"
#include "policy/Diagram.h"
#include "policy/NumberTable.h"
#include "policy/Section.h"
#include "policy/ValueText.h"

namespace Policy {
namespace {

/// Verdicts, each given a number when first met.
class VerdictTable {
 public:
  std::size_t Intern(const Verdict& verdict) {
    const auto found = std::ranges::find(verdicts_, verdict);
    if (found == verdicts_.end()) {
      verdicts_.push_back(verdict);
      return verdicts_.size() - 1;
    }
    return static_cast<std::size_t>(found - verdicts_.begin());
  }

  std::vector<Verdict> Take() { return std::move(verdicts_); }

 private:
  std::vector<Verdict> verdicts_;
};

FieldClasses CollectClasses(const FieldTable& table, const Diagram::Level& level,
                            const Connection& ordinary) {
  FieldClasses classes{table.GetField(), {}};
  for (std::size_t i = 0; i < level.classCount; ++i) {
    std::vector<bool> signatures;
    std::ranges::transform(level.classOf, std::back_inserter(signatures),
                           [i](std::size_t ofSignature) { return ofSignature == i; });
    classes.classes.push_back(table.Collect(signatures, ordinary));
  }
  return classes;
}

MapSection MakeSection(const Snapshot& snapshot, SectionKey key, const Labels& labels,
                       VerdictTable& verdicts) {
  const Section section(snapshot, key);
  Diagram diagram =
      MakeDiagram(section, [&](const BitWord* state) { return verdicts.Intern(section.Decide(state)); });
  MapSection map{key.direction, key.ipVersion, {}, std::move(diagram.nodes), diagram.root};
  const Connection ordinary = OrdinaryConnection(key.direction, key.ipVersion);
  std::vector<std::size_t> fieldOfLevel;
  for (std::size_t level = 0; level < diagram.levels.size(); ++level) {
    fieldOfLevel.push_back(map.fields.size());
    if (diagram.levels[level].classCount > 0) {
      map.fields.push_back(CollectClasses(*section.Tables()[level], diagram.levels[level], ordinary));
      NameClasses(map.fields.back(), key.ipVersion, labels);
    }
  }
  for (MapNode& node : map.nodes) {
    node.field = fieldOfLevel[node.field];
  }
  return map;
}

bool Contains(const ValueClass& values, const std::optional<Number>& number) {
  if (!number) {
    return values.unset;
  }
  const auto next = std::ranges::upper_bound(values.intervals, *number, {}, &Interval::first);
  return next != values.intervals.begin() && *number <= std::prev(next)->last;
}

/// The class of a value that intervals name, or of one without a value.
std::optional<std::size_t> ClassOfNumber(const FieldClasses& field, const std::optional<Number>& number) {
  for (std::size_t i = 0; i < field.classes.size(); ++i) {
    if (Contains(field.classes[i], number)) {
      return i;
    }
  }
  return std::nullopt;
}

/// The class of a word of flags that none names.
std::size_t ClassOfPattern(const FieldClasses& field, UINT32 word) {
  const auto fits = [word](const ValueClass::Masked& masked) {
    return (word & masked.mask) == masked.value &&
           std::ranges::find(masked.except, word) == masked.except.end();
  };
  const auto found = std::ranges::find_if(
      field.classes, [&](const ValueClass& values) { return std::ranges::any_of(values.masked, fits); });
  return static_cast<std::size_t>(found - field.classes.begin());
}

std::size_t ClassOfApplication(const FieldClasses& field, const std::optional<std::string>& id) {
  std::size_t best = 0;
  std::size_t longest = 0;
  for (std::size_t i = 0; i < field.classes.size(); ++i) {
    const ValueClass& values = field.classes[i];
    if (id ? std::ranges::find(values.applications, *id) != values.applications.end() : values.unset) {
      return i;
    }
    for (const std::string& ending : values.endings) {
      if (id && IdEndsWith(*id, ending) && ending.size() + 1 > longest) {
        best = i;
        longest = ending.size() + 1;
      }
    }
    if (values.others && longest == 0) {
      best = i;
    }
  }
  return best;
}

std::size_t ClassOf(const FieldClasses& field, const Connection& connection) {
  if (field.field == Field::Application) {
    return ClassOfApplication(field, connection.application);
  }
  const std::optional<Number> number = NumberOf(connection, field.field);
  const auto named = ClassOfNumber(field, number);
  return named ? *named : ClassOfPattern(field, static_cast<UINT32>(number->low));
}

}  // namespace

const Verdict& Map::At(const Connection& connection) const {
  const MapSection& section = sections[SectionIndex(connection.direction, connection.ipVersion)];
  MapTarget target = section.root;
  while (!target.isVerdict) {
    const MapNode& node = section.nodes[target.index];
    target = node.targets[ClassOf(section.fields[node.field], connection)];
  }
  return verdicts[target.index];
}

Map MakeMap(const Snapshot& snapshot, const Labels& labels) {
  Map map;
  VerdictTable verdicts;
  for (const SectionKey& key : kSectionKeys) {
    map.sections.push_back(MakeSection(snapshot, key, labels, verdicts));
  }
  map.verdicts = verdicts.Take();
  return map;
}

}  // namespace Policy
