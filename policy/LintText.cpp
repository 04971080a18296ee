#include "policy/LintText.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <span>
#include <string_view>
#include <tuple>

#include "catalog/Format.h"

namespace Policy {
namespace {

/// Of more filters the rest is counted, unless all are asked for.
constexpr std::size_t kMostFilters = 5;

/// What one filter does, and what several do.
struct Deed {
  std::string_view ofOne;
  std::string_view ofSeveral;
};

/// By kind.
constexpr std::array<Deed, 11> kDeeds{{
    {"has a condition that holds of every value", "have a condition that holds of every value"},
    {"can never match", "can never match"},
    {"never decides", "never decide"},
    {"ties with one that does something else", "tie with others that do something else"},
    {"compares a whole word of flags", "compare a whole word of flags"},
    {"permits what a block takes back", "permit what a block takes back"},
    {"decides at ALE_FLOW_ESTABLISHED", "decide at ALE_FLOW_ESTABLISHED"},
    {"has several negations on one field", "have several negations on one field"},
    {"has scattered conditions on one field", "have scattered conditions on one field"},
    {"would be refused by a strict engine", "would be refused by a strict engine"},
    {"has a condition that cannot be judged", "have conditions that cannot be judged"},
}};
static_assert(kDeeds.size() == static_cast<std::size_t>(FindingKind::Unreadable) + 1);

using Findings = std::span<const Finding>;

/// "Windows Firewall: 212 filters never decide"
std::string CountsText(const std::string& owner, Findings findings) {
  std::map<FindingKind, std::set<const Filter*>> byKind;
  for (const Finding& finding : findings) {
    byKind[finding.kind].insert(finding.filter);
  }
  std::string text;
  for (const auto& [kind, filters] : byKind) {
    const auto& [ofOne, ofSeveral] = kDeeds[static_cast<std::size_t>(kind)];
    text += owner + ": " + Catalog::FormatNumber(filters.size());
    text.append(filters.size() == 1 ? " filter " : " filters ");
    text.append(filters.size() == 1 ? ofOne : ofSeveral).append("\n");
  }
  return text;
}

/// Each text of findings once, with all filters that it is about.
std::string DetailsText(Findings findings, Detail detail) {
  std::map<std::string, std::vector<std::string>> groups;
  for (const Finding& finding : findings) {
    const std::string kind(FindingName(finding.kind));
    const std::string other = finding.other == nullptr ? "" : " and " + Describe(*finding.other);
    groups[kind + ": " + finding.reason + " Clearer: " + finding.advice + "."].push_back(
        Describe(*finding.filter) + other);
  }
  std::string text;
  for (const auto& [what, filters] : groups) {
    text += "  " + what + '\n';
    const std::size_t shown =
        detail == Detail::Whole ? filters.size() : std::min(filters.size(), kMostFilters);
    for (const std::string& filter : std::span(filters).first(shown)) {
      text += "    " + filter + '\n';
    }
    if (shown < filters.size()) {
      text += "    and " + Catalog::FormatNumber(filters.size() - shown) + " more\n";
    }
  }
  return text;
}

/// What is said once of an owner's findings.
std::string_view RemarkOn(OwnerKind kind) {
  switch (kind) {
    case OwnerKind::Ours:
      return "";
    case OwnerKind::Other:
      return ", which only their owner can change";
    case OwnerKind::Platform:
      break;
  }
  return ", which come with the system";
}

}  // namespace

void SortByOwner(std::vector<Finding>& findings, const Owners& owners) {
  const auto place = [&owners](const Finding& finding) {
    return std::tuple(owners.KindOf(*finding.filter), owners.NameOf(*finding.filter), finding.filter->id);
  };
  std::ranges::stable_sort(findings, {}, place);
}

std::string Describe(std::vector<Finding> findings, const Owners& owners, Detail detail) {
  SortByOwner(findings, owners);
  std::string text;
  for (auto begin = findings.begin(); begin != findings.end();) {
    const std::string owner = owners.NameOf(*begin->filter);
    const auto end = std::find_if(begin, findings.end(), [&](const Finding& finding) {
      return owners.NameOf(*finding.filter) != owner;
    });
    const OwnerKind kind = owners.KindOf(*begin->filter);
    if (kind == OwnerKind::Platform && detail == Detail::Brief) {
      text += CountsText(owner, {begin, end});
    } else {
      text.append("filters of ").append(owner).append(RemarkOn(kind)).append(":\n");
      text += DetailsText({begin, end}, detail);
    }
    begin = end;
  }
  return text.empty() ? "no findings\n" : text;
}

}  // namespace Policy
