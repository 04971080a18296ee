// Explanations in words.
#include <algorithm>

#include "catalog/Format.h"
#include "catalog/Names.h"
#include "policy/Arbitration.h"
#include "policy/Decide.h"

namespace Policy {
namespace {

std::string SublayerText(const Sublayer& sublayer) {
  const std::string name = sublayer.name.empty() ? Catalog::SublayerName(sublayer.key) : sublayer.name;
  return '"' + name + "\" (weight " +
         (sublayer.listed ? Catalog::FormatNumber(sublayer.weight) : std::string("unknown")) + ')';
}

/// "hard permit of filter 12 "Name""
std::string DecisionText(const Filter& filter) {
  const std::string action = filter.action == FWP_ACTION_BLOCK ? "block" : "permit";
  return (filter.IsHard() ? "hard " : "soft ") + action + " of " + Describe(filter);
}

std::string ConditionsText(const Filter& filter) {
  if (filter.conditions.empty()) {
    return "every connection";
  }
  std::string text;
  for (const Condition& condition : filter.conditions) {
    text.append(text.empty() ? "" : " & ").append(condition.text);
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

void AddSublayer(const SublayerTrace& trace, std::string& text) {
  text += "    sublayer " + SublayerText(*trace.sublayer) + ": ";
  if (trace.deciding == nullptr) {
    text += "no filter matches\n";
  } else {
    text += DecisionText(*trace.deciding) + EffectText(trace) + '\n';
    text += "      matches " + ConditionsText(*trace.deciding) + '\n';
  }
  for (const Filter* outranked : trace.outranked) {
    text += "      outranks the " + DecisionText(*outranked) + '\n';
  }
  for (const Filter* unjudged : trace.unjudged) {
    const bool isCallout = Arbitration::IsCallout(*unjudged);
    text += "      only the engine can judge " + Describe(*unjudged) +
            (isCallout ? ", whose callout decides\n" : " with " + ConditionsText(*unjudged) + '\n');
  }
}

}  // namespace

std::string Describe(const Explanation& explanation, const Labels& labels) {
  std::string text = Describe(explanation.connection, labels) + ": " + Describe(explanation.verdict) + '\n';
  for (const LayerTrace& layer : explanation.layers) {
    text.append("  ").append(layer.layer->name).append(": ").append(Describe(layer.verdict)).append("\n");
    for (const SublayerTrace& sublayer : layer.sublayers) {
      AddSublayer(sublayer, text);
    }
    const auto decides = [](const SublayerTrace& trace) { return trace.deciding != nullptr; };
    if (std::ranges::none_of(layer.sublayers, decides)) {
      text += "    no filter matches for certain: the engine permits\n";
    }
  }
  return text;
}

}  // namespace Policy
