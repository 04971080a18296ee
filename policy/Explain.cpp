// Explanations in words.
#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include "catalog/Format.h"
#include "catalog/Names.h"
#include "policy/Arbitration.h"
#include "policy/ConditionText.h"
#include "policy/Decide.h"

namespace Policy {
namespace {

std::string SublayerText(const Sublayer& sublayer) {
  const std::string name = sublayer.name.empty() ? Catalog::SublayerName(sublayer.key) : sublayer.name;
  return '"' + name + "\" (weight " +
         (sublayer.listed ? Catalog::FormatNumber(sublayer.weight) : std::string("unknown")) + ')';
}

/// "hard permit of filter 12 "Name""
std::string DecisionText(const Filter& filter, World world) {
  const Strength strength = Arbitration::StrengthOf(filter, world).value_or(Strength::Pass);
  const std::string action = strength <= Strength::Block ? "block" : "permit";
  const std::string whose = Arbitration::IsCallout(filter) ? " by the callout of " : " of ";
  return (strength == Strength::Pass ? "soft " : "hard ") + action + whose + Describe(filter);
}

std::string AllConditionsText(const Filter& filter) {
  if (filter.conditions.empty()) {
    return "every connection";
  }
  std::string text;
  for (const Condition& condition : filter.conditions) {
    text.append(text.empty() ? "" : " & ").append(ConditionText(condition));
  }
  return text;
}

std::string EffectText(const SublayerTrace& trace) {
  switch (trace.effect) {
    case SublayerTrace::Effect::Overridden:
      return ", overridden by the block of " + SublayerText(*trace.by);
    case SublayerTrace::Effect::Ignored:
      return ", ignored: " + SublayerText(*trace.by) + " had decided for good";
    default:
      return {};
  }
}

/// Longer lists of filters are cut.
constexpr std::size_t kMostFilters = 5;

/// "filter 23 "Name"", "filters 23, 24, 25, 26, 27 and 3 more"
std::string FiltersText(const std::vector<const Filter*>& filters) {
  if (filters.size() == 1) {
    return Describe(*filters.front());
  }
  std::string text = "filters ";
  for (std::size_t i = 0; i < std::min(filters.size(), kMostFilters); ++i) {
    text.append(i == 0 ? "" : ", ").append(Catalog::FormatNumber(filters[i]->id));
  }
  const std::size_t more = filters.size() - std::min(filters.size(), kMostFilters);
  return more == 0 ? text : text + " and " + Catalog::FormatNumber(more) + " more";
}

/// A line for all near misses of the same action and field.
void AddNearMisses(const std::vector<NearMiss>& nearMisses, const Connection& connection,
                   const Labels& labels, std::string& text) {
  std::map<std::pair<bool, Field>, std::vector<const Filter*>> groups;
  for (const auto& [filter, field, action] : nearMisses) {
    groups[{action == Action::Block, field}].push_back(filter);
  }
  for (const auto& [kind, filters] : groups) {
    const auto [blocks, field] = kind;
    text += "      " + FiltersText(filters) + " would " + (blocks ? "block" : "permit") + ", but the ";
    text.append(FieldText(field)).append(field == Field::Flags ? " are " : " is ");
    text += FieldValueText(connection, field, labels) + '\n';
  }
}

void AddSublayer(const SublayerTrace& trace, World world, std::string& text) {
  text += "    sublayer " + SublayerText(*trace.sublayer) + ": ";
  if (trace.deciding == nullptr) {
    text += "no filter matches\n";
  } else {
    text += DecisionText(*trace.deciding, world) + EffectText(trace) + '\n';
    text += "      matches " + AllConditionsText(*trace.deciding) + '\n';
  }
  for (const Filter* outranked : trace.outranked) {
    text += "      outranks the " + DecisionText(*outranked, world) + '\n';
  }
  for (const Filter* unjudged : trace.unjudged) {
    const bool letsPass = !Arbitration::StrengthOf(*unjudged, world);
    text += letsPass ? "      the callout of " + Describe(*unjudged) + " lets the next filter decide\n"
                     : "      only the engine can judge " + Describe(*unjudged) + " with " +
                           AllConditionsText(*unjudged) + '\n';
  }
}

}  // namespace

std::string Describe(const Explanation& explanation, const Labels& labels) {
  std::string text = Describe(explanation.connection, labels) + ": " + Describe(explanation.verdict) + '\n';
  for (const LayerTrace& layer : explanation.layers) {
    text.append("  ").append(layer.layer->name).append(": ").append(Describe(layer.verdict)).append("\n");
    for (const SublayerTrace& sublayer : layer.sublayers) {
      AddSublayer(sublayer, explanation.world, text);
      AddNearMisses(sublayer.nearMisses, explanation.connection, labels, text);
    }
    const auto decides = [](const SublayerTrace& trace) { return trace.deciding != nullptr; };
    if (std::ranges::none_of(layer.sublayers, decides)) {
      text += "    no filter matches for certain: the engine permits\n";
    }
  }
  return text;
}

}  // namespace Policy
