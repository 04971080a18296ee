#include "policy/Summary.h"

#include <algorithm>
#include <array>
#include <map>
#include <span>
#include <utility>
#include <vector>

#include "catalog/Format.h"
#include "catalog/Names.h"
#include "policy/Arbitration.h"
#include "policy/Certainty.h"
#include "policy/ConditionText.h"
#include "policy/ModelledField.h"

namespace Policy {
namespace {

/// Of longer lists the rest is counted.
constexpr std::size_t kMostFiltersOfAGroup = 3;
constexpr std::size_t kMostEndings = 4;
constexpr std::size_t kMostMisses = 3;

std::string MoreText(std::size_t count, std::size_t shown, const std::string& indent) {
  return count <= shown ? "" : indent + "and " + Catalog::FormatNumber(count - shown) + " more\n";
}

std::string_view ParticipleOf(Action action) { return action == Action::Block ? "blocked" : "permitted"; }

/// What would have to be known to judge a filter that perhaps matches.
std::string OpenQuestion(const Filter& filter, const Explanation& explanation, const Settlers& settlers) {
  for (const Condition& condition : filter.conditions) {
    std::vector<const Condition*> ofField;
    for (const Condition& other : filter.conditions) {
      if (other.fieldKey == condition.fieldKey) {
        ofField.push_back(&other);
      }
    }
    const bool isJudged = ModelledField(condition)
                              ? condition.test.kind != Test::Kind::Unreadable
                              : CertaintyOf(ofField, explanation.connection.direction,
                                            explanation.circumstances) != Certainty::InDoubt;
    if (isJudged) {
      continue;
    }
    const std::string decidedBy(condition.field == nullptr ? "" : DecidedBy(*condition.field));
    const auto settler = settlers.find(decidedBy);
    return (decidedBy.empty() ? Catalog::FieldName(condition.fieldKey) : decidedBy) +
           (settler == settlers.end() ? "" : ": " + settler->second);
  }
  return "several conditions on one field";
}

/// "would block", also of a callout that the world of the explanation has block.
std::string DeedText(const Filter& filter, World world) {
  const auto strength = Arbitration::StrengthOf(filter, world);
  if (!strength) {
    return "would ask its callout";
  }
  return *strength <= Strength::Block ? "would block" : "would permit";
}

std::string OpenLine(const Filter& filter, World world, const Owners& owners) {
  return "    " + owners.Describe(filter) + ' ' + DeedText(filter, world) + " when " +
         ConditionsText(filter) + '\n';
}

std::string OpenText(const Explanation& explanation, const Owners& owners, const Settlers& settlers) {
  std::map<std::string, std::vector<const Filter*>> groups;
  for (const LayerTrace& layer : explanation.layers) {
    for (const SublayerTrace& sublayer : layer.sublayers) {
      for (const Filter* filter : sublayer.turning) {
        groups[OpenQuestion(*filter, explanation, settlers)].push_back(filter);
      }
    }
  }
  std::string text;
  for (const auto& [question, filters] : groups) {
    text += "  open: " + question + '\n';
    const std::size_t shown = std::min(filters.size(), kMostFiltersOfAGroup);
    for (const Filter* filter : std::span(filters).first(shown)) {
      text += OpenLine(*filter, explanation.world, owners);
    }
    text += MoreText(filters.size(), shown, "    ");
  }
  return text;
}

/// Of a blocked connection: one line for each field by which filters miss that would permit it.
std::string MissesText(const Explanation& explanation, const Labels& labels) {
  std::map<Field, std::vector<const Filter*>> groups;
  for (const LayerTrace& layer : explanation.layers) {
    for (const SublayerTrace& sublayer : layer.sublayers) {
      for (const auto& [filter, field, action] : sublayer.nearMisses) {
        if (action == Action::Permit) {
          groups[field].push_back(filter);
        }
      }
    }
  }
  std::string text;
  for (const auto& [field, filters] : groups) {
    text += "  it would be permitted by ";
    for (std::size_t i = 0; i < std::min(filters.size(), kMostMisses); ++i) {
      text.append(i == 0 ? "" : ", ").append(Describe(*filters[i]));
    }
    if (filters.size() > kMostMisses) {
      text.append(" and ").append(Catalog::FormatNumber(filters.size() - kMostMisses)).append(" more");
    }
    text.append(", but the ").append(FieldText(field)).append(field == Field::Flags ? " are " : " is ");
    text.append(FieldValueText(explanation.connection, field, labels)).append("\n");
  }
  return text;
}

/// The deciding filter's layer and conditions.
std::string DecidingText(const Filter* deciding) {
  return deciding == nullptr ? ""
                             : "  at " + Catalog::LayerName(deciding->layerKey) + ", which matches " +
                                   ConditionsText(*deciding) + '\n';
}

}  // namespace

std::string EndingText(const Ending& ending, const Owners& owners) {
  if (!ending.outcome.action) {
    return "not known: it hangs on filters that cannot be judged from what was given";
  }
  const std::string text(ParticipleOf(*ending.outcome.action));
  if (ending.deciding == nullptr) {
    return text + ": no filter matches";
  }
  return text + (Arbitration::IsCallout(*ending.deciding) ? " by the callout of " : " by ") +
         owners.Describe(*ending.deciding);
}

std::string Summarize(const Explanation& explanation, const Owners& owners, const Labels& labels,
                      const Settlers& settlers) {
  std::string text = Describe(explanation.connection, labels) + '\n';
  const std::vector<Ending>& endings = explanation.endings;
  if (endings.size() == 1) {
    text += "  " + EndingText(endings.front(), owners) + '\n' + DecidingText(endings.front().deciding);
  } else {
    text += "  it depends on what filters alone do not tell:\n";
    const std::size_t shown = std::min(endings.size(), kMostEndings);
    for (const Ending& ending : std::span(endings).first(shown)) {
      text += "    with " + Describe(ending.outcome.choices) + ' ' + EndingText(ending, owners) + '\n';
    }
    text += MoreText(endings.size(), shown, "    ");
  }
  if (explanation.verdict.IsUnsure()) {
    text += OpenText(explanation, owners, settlers);
  }
  if (explanation.verdict.In(explanation.world) == Action::Block) {
    text += MissesText(explanation, labels);
  }
  return text;
}

}  // namespace Policy
