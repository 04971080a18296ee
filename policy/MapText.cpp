// A map as an indented tree.
#include <algorithm>

#include "catalog/Format.h"
#include "policy/Map.h"
#include "policy/ValueText.h"

namespace Policy {
namespace {

bool Depends(const Verdict& verdict) { return verdict.GetKind() == Verdict::Kind::Depends; }

/// "(1)", of verdicts that need more than a word.
std::string NumberText(const Map& map, std::size_t index) {
  return '(' +
         Catalog::FormatNumber(1 + std::count_if(map.verdicts.begin(),
                                                 map.verdicts.begin() + static_cast<std::ptrdiff_t>(index),
                                                 Depends)) +
         ')';
}

std::string ShortText(const Map& map, std::size_t index) {
  const Verdict& verdict = map.verdicts[index];
  return Depends(verdict) ? "depends " + NumberText(map, index) : Describe(verdict);
}

/// How many words a class takes.
std::size_t SizeOf(const ValueClass& values) {
  return values.intervals.size() + values.masked.size() + values.applications.size() + values.endings.size() +
         (values.others ? 1 : 0) + (values.unset ? 1 : 0);
}

bool IsOrdinary(const ValueClass& values, Field field, const Connection& ordinary) {
  return field == Field::Application ? values.exampleApplication == ordinary.application
                                     : values.exampleNumber == NumberOf(ordinary, field);
}

/// The tree of one section. A subtree that several ways lead to is shown once, with a number; at the other
/// places the number stands for it.
class SectionText {
 public:
  SectionText(const Map& map, const MapSection& section, const Labels& labels, const MapTextOptions& options)
      : map_(map),
        section_(section),
        labels_(labels),
        options_(options),
        ordinary_(OrdinaryConnection(section.direction, section.ipVersion)),
        references_(section.nodes.size()),
        numbers_(section.nodes.size()) {}

  std::string Make() {
    text_ = section_.direction == Direction::Outbound ? "outbound" : "inbound";
    text_ += section_.ipVersion == IpVersion::V4 ? " IPv4" : " IPv6";
    CountReferences();
    Add(section_.root, 1);
    return std::move(text_);
  }

 private:
  /// Classes of a node that lead to the same place.
  struct Branch {
    MapTarget target;
    std::vector<const ValueClass*> classes;
    bool isOrdinary = false;
    std::size_t size = 0;
  };

  void CountReferences() {
    for (const MapNode& node : section_.nodes) {
      for (const Branch& branch : BranchesOf(node)) {
        if (!branch.target.isVerdict) {
          ++references_[branch.target.index];
        }
      }
    }
  }

  [[nodiscard]] std::vector<Branch> BranchesOf(const MapNode& node) const {
    const FieldClasses& field = section_.fields[node.field];
    std::vector<Branch> branches;
    for (std::size_t i = 0; i < node.targets.size(); ++i) {
      auto branch = std::ranges::find(branches, node.targets[i], &Branch::target);
      if (branch == branches.end()) {
        branch = branches.insert(branch, {node.targets[i], {}, false, 0});
      }
      branch->classes.push_back(&field.classes[i]);
      branch->isOrdinary = branch->isOrdinary || IsOrdinary(field.classes[i], field.field, ordinary_);
    }
    for (Branch& branch : branches) {
      branch.size = SizeOf(Together(branch.classes));
    }
    const auto last = std::ranges::max_element(branches, [](const Branch& left, const Branch& right) {
      return std::pair(left.size, left.isOrdinary) < std::pair(right.size, right.isOrdinary);
    });
    std::rotate(last, std::next(last), branches.end());
    return branches;
  }

  /// Adds what follows a colon: a verdict, or a tree on the lines below.
  void Add(MapTarget target, std::size_t depth) {
    if (target.isVerdict) {
      text_ += ": " + ShortText(map_, target.index) + '\n';
      return;
    }
    std::size_t& number = numbers_[target.index];
    if (number != 0) {
      text_ += ": as at [" + Catalog::FormatNumber(number) + "]\n";
      return;
    }
    if (references_[target.index] > 1) {
      number = ++lastNumber_;
      text_ += " [" + Catalog::FormatNumber(number) + "]";
    }
    text_ += ":\n";
    AddNode(section_.nodes[target.index], depth);
  }

  void AddNode(const MapNode& node, std::size_t depth) {
    const FieldClasses& field = section_.fields[node.field];
    const std::vector<Branch> branches = BranchesOf(node);
    for (std::size_t i = 0; i < branches.size(); ++i) {
      text_.append(depth * 2, ' ');
      if (i + 1 == branches.size()) {
        text_ += "otherwise";
      } else {
        text_.append(FieldText(field.field)).append(" ").append(Text(field, branches, i));
      }
      Add(branches[i].target, depth + 1);
    }
  }

  [[nodiscard]] std::string Text(const FieldClasses& field, const std::vector<Branch>& branches,
                                 std::size_t index) const {
    std::vector<const ValueClass*> rest;
    for (std::size_t i = 0; i < branches.size(); ++i) {
      if (i != index) {
        rest.insert(rest.end(), branches[i].classes.begin(), branches[i].classes.end());
      }
    }
    return ValueText(field.field, section_.ipVersion, Together(branches[index].classes), Together(rest),
                     labels_, options_.longestList);
  }

  const Map& map_;
  const MapSection& section_;
  const Labels& labels_;
  const MapTextOptions& options_;
  Connection ordinary_;
  std::vector<std::size_t> references_;
  std::vector<std::size_t> numbers_;
  std::size_t lastNumber_ = 0;
  std::string text_;
};

}  // namespace

std::string Describe(const Map& map, const Labels& labels, const MapTextOptions& options) {
  std::string text;
  for (const MapSection& section : map.sections) {
    text += SectionText(map, section, labels, options).Make();
  }
  for (std::size_t i = 0; i < map.verdicts.size(); ++i) {
    if (Depends(map.verdicts[i])) {
      text += NumberText(map, i) + ' ' + Describe(map.verdicts[i]) + '\n';
    }
  }
  return text;
}

}  // namespace Policy
