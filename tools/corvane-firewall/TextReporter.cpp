#include "TextReporter.h"

#include <iostream>
#include <sstream>

#include "AskedCircumstances.h"
#include "Identities.h"
#include "OpenQuestions.h"
#include "ValueJson.h"
#include "WatchText.h"
#include "catalog/Names.h"
#include "policy/Summary.h"

namespace {

const char* OnOrOff(bool on) { return on ? "on" : "off"; }

std::string Heading(const std::string& kind, const std::string& name, const GUID& key) {
  return "  " + kind + " \"" + name + "\" {" + Catalog::FormatGuid(key) + "}";
}

/// A value with its type, such as "UINT8 14" or "EMPTY".
std::string Text(const Policy::Value& value) {
  std::string type = Catalog::DataTypeName(value.type);
  const Json data = ToJson(value);
  if (data.is_null()) {
    return type;
  }
  return type + ' ' + (data.is_string() ? data.get<std::string>() : data.dump());
}

/// The provider is shown only if it is not the library's.
std::string Line(const Policy::Filter& filter) {
  std::string line = Policy::Describe(filter) + " at " + Catalog::LayerName(filter.layerKey) + ": " +
                     Catalog::ActionName(filter.action);
  const char* separator = " when ";
  for (const Policy::Condition& condition : filter.conditions) {
    line += separator + condition.text;
    separator = " and ";
  }
  if (filter.conditions.empty()) {
    line += " always";
  }
  line += "; weight " + Text(filter.weight);
  if ((filter.flags & FWPM_FILTER_FLAG_CLEAR_ACTION_RIGHT) != 0) {
    line += "; overrides other sublayers";
  }
  if (const UINT32 others = filter.flags & ~UINT32{FWPM_FILTER_FLAG_CLEAR_ACTION_RIGHT}; others != 0) {
    line += "; flags " + Catalog::FilterFlagNames(others);
  }
  if (!filter.providerKey) {
    line += "; no provider";
  } else if (*filter.providerKey != kProvider.key) {
    line += "; provider {" + Catalog::FormatGuid(*filter.providerKey) + "}";
  }
  return line;
}

/// Prints each line of a text indented.
void Print(const std::string& text) {
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::cout << "  " << line << "\n";
  }
}

}  // namespace

void TextReporter::BeginStep(const std::string& step) {
  step_ = step;
  std::cout << step << std::endl;
}

void TextReporter::Log(const std::string& line) { std::cout << "  " << line << std::endl; }

void TextReporter::ShowStatus(const Status& status) {
  std::cout << "  internet: " << OnOrOff(status.internet) << "\n  dhcp rules: " << OnOrOff(status.dhcp)
            << "\n  leak protection: " << OnOrOff(status.leakProtection)
            << "\n  local network: " << OnOrOff(status.localNetwork) << "\n";
}

void TextReporter::ShowAdapters(const std::vector<ListedAdapter>& adapters) {
  for (const ListedAdapter& adapter : adapters) {
    std::cout << "  \"" << adapter.name << "\", \"" << adapter.description << "\", LUID " << adapter.luid
              << "\n";
  }
  if (adapters.empty()) {
    std::cout << "  no network adapters\n";
  }
}

void TextReporter::ShowContents(const Contents& contents) {
  if (const Policy::Provider* provider = contents.provider) {
    std::cout << Heading("provider", provider->name, provider->key) << ": " << provider->description << "\n";
  } else {
    std::cout << "  no provider of this tool\n";
  }
  if (contents.sublayers.empty()) {
    std::cout << "  no sublayers, no filters\n";
  }
  for (const auto& [sublayer, filters] : contents.sublayers) {
    std::cout << Heading("sublayer", sublayer->listed ? sublayer->name : "", sublayer->key) << ": "
              << sublayer->description << "; weight "
              << (sublayer->listed ? std::to_string(sublayer->weight) : "unknown") << "; filters "
              << filters.size() << "\n";
    for (const Policy::Filter* filter : filters) {
      std::cout << "    " << Line(*filter) << "\n";
    }
  }
}

void TextReporter::ShowExplanation(const Policy::Explanation& explanation,
                                   const ExplanationContext& context) {
  Print(context.trace ? Policy::Describe(explanation, context.labels)
                      : Policy::Summarize(explanation, context.owners, context.labels, SettledByOptions()));
  std::string told;
  for (const ToldCircumstance& circumstance : context.told) {
    told += (told.empty() ? "" : "; ") + circumstance.name + ' ' + circumstance.text;
  }
  std::cout << "    asked " << told << "\n";
}

void TextReporter::ShowMap(const Policy::Map& map, const Policy::Labels& labels) {
  Print(Policy::Describe(map, labels));
}

void TextReporter::ShowPromises(const std::vector<Promises::PromiseResult>& promises,
                                const Policy::Owners& owners, const Policy::Labels& labels) {
  for (const Promises::PromiseResult& promise : promises) {
    Print(promise.alone ? Promises::DescribeInCompany(promise, owners, labels)
                        : Promises::Describe(promise, labels));
  }
  if (promises.empty()) {
    std::cout << "  no feature is switched on in this run: nothing is promised\n";
  }
}

void TextReporter::ShowFindings(const std::vector<Policy::Finding>& findings, const Policy::Owners& owners,
                                Policy::Detail detail) {
  Print(Policy::Describe(findings, owners, detail));
}

void TextReporter::ShowAgreement(const Replay::Agreement& agreement) {
  std::cout << "  emulated: " << Catalog::WindowsVersionName(agreement.windows)
            << "\n  filters: " << agreement.filters << ", accepted " << agreement.accepted
            << "\n  weights that the engine chose: " << agreement.automaticWeights << ", equal "
            << agreement.equalWeights
            << "\n  pairs of filters in a sublayer of a layer: " << agreement.orderedPairs
            << ", in the same order " << agreement.sameOrder << "\n  sublayers: " << agreement.sublayers
            << ", of equal weight " << agreement.equalSublayers << "\n";
  for (const Replay::Refusal& refusal : agreement.refusals) {
    std::cout << "  refused: " << refusal.count << ", " << refusal.reason << "\n    such as "
              << refusal.example << "\n";
  }
}

std::unique_ptr<Watch::Audience> TextReporter::StartWatching() { return std::make_unique<WatchText>(); }

void TextReporter::ShowCalibration(const ToldCalibration& calibration) {
  std::cout
      << (calibration.isSimulated
              ? "  SIMULATED: connections were made in thought, with the readings to expect. It shows that "
                "the experiments work, and nothing about an engine.\n"
              : "  on Windows " + calibration.windows + ", " + calibration.time + "\n");
  Print(Calibrate::Describe(calibration.found));
}

void TextReporter::ShowFile(const std::string& path) { std::cout << "  written: " << path << "\n"; }

void TextReporter::EndStep() { std::cout << "  done" << std::endl; }

void TextReporter::Fail(const Failure& failure) {
  std::cerr << (step_.empty() ? "error" : step_ + " failed") << ": ";
  if (const auto code = failure.Code()) {
    std::cerr << CodeName(*code) << ": ";
  }
  std::cerr << failure.what() << "\n";
  if (const std::string hint = failure.Hint(engine_); !hint.empty()) {
    std::cerr << "hint: " << hint << "\n";
  }
}
