#include "policy/Map.h"

#include <algorithm>

#include "policy/Diagram.h"
#include "policy/Section.h"
#include "policy/ValueText.h"

namespace Policy {
namespace {

/// Verdicts, each with a number that it gets when it is first met.
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

MapSection MakeSection(const Section& section, const Labels& labels, VerdictTable& verdicts) {
  const SectionKey key = section.Key();
  Diagram diagram = MakeDiagram(section, Purpose::Verdicts,
                                [&](const BitWord* state) { return verdicts.Intern(section.Decide(state)); });
  MapSection map{key.direction, key.ipVersion, {}, std::move(diagram.nodes), diagram.root};
  const Connection ordinary = OrdinaryConnection(key.direction, key.ipVersion);
  std::vector<std::size_t> fieldOfLevel;
  for (std::size_t level = 0; level < diagram.levels.size(); ++level) {
    fieldOfLevel.push_back(map.fields.size());
    if (diagram.levels[level].classCount > 0) {
      const FieldTable& table = *section.Tables()[level];
      map.fields.push_back({table.GetField(), ClassesOf(table, diagram.levels[level], ordinary)});
      NameClasses(map.fields.back(), key.ipVersion, labels);
    }
  }
  for (MapNode& node : map.nodes) {
    node.field = fieldOfLevel[node.field];
  }
  return map;
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

Map MakeMap(const Snapshot& snapshot, const Labels& labels, const Circumstances& circumstances,
            const ShowProgress& show) {
  Map map;
  VerdictTable verdicts;
  for (const SectionKey& key : kSectionKeys) {
    map.sections.push_back(MakeSection(Section(snapshot, key, {}, circumstances), labels, verdicts));
    if (show) {
      show(map.sections.size(), kSectionKeys.size());
    }
  }
  map.verdicts = verdicts.Take();
  return map;
}

}  // namespace Policy
