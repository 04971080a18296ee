#include "PolicySteps.h"

#include <map>

#include "ActiveFeatures.h"
#include "AskedCircumstances.h"
#include "AskedConnection.h"
#include "Identities.h"
#include "OutputFile.h"
#include "Progress.h"
#include "ReportPage.h"
#include "catalog/Format.h"
#include "catalog/Guid.h"
#include "catalog/Names.h"

namespace {

/// Each filter of a layer is compared with each other one.
constexpr std::size_t kMostFiltersOfALayer = 10'000;

/// What the engine, or the dump, holds, to tell what becomes of connections.
/// @throws Failure also when there are too many filters for that.
Policy::Snapshot ReadPolicyOf(const StepContext& context) {
  Policy::Snapshot snapshot = context.ReadEngine();
  std::map<GUID, std::size_t, Catalog::KeyOrder> counts;
  for (const Policy::Filter& filter : snapshot.filters) {
    if (++counts[filter.layerKey] > kMostFiltersOfALayer) {
      throw Failure("More than " + Catalog::FormatNumber(kMostFiltersOfALayer) + " filters are at " +
                        Catalog::LayerName(filter.layerKey),
                    "The steps list, export and replay take any number.");
    }
  }
  return snapshot;
}

/// The features that are on. Where none can be switched on, those that take no arguments: what the filters
/// that are there make of their promises.
Promises::Features ProvedFeatures(const StepContext& context, const Policy::Snapshot& snapshot) {
  if (context.library != nullptr || snapshot.filters.empty()) {
    return ActiveFeatures(context.before, context.dnsApp, snapshot);
  }
  context.reporter.Log(
      "Features can be switched on only on Windows; this is what the filters that are there make of the "
      "promises of "
      "those that take no arguments.");
  Promises::Features features;
  features.killSwitch.emplace();
  features.dhcp = true;
  features.localNetworkBlock = true;
  return features;
}

/// What promises are for unless something else is asked: every program, and every network that the machine
/// has settled in.
Policy::Circumstances SettledNetworks() {
  Policy::Circumstances circumstances;
  circumstances.quarantine = Policy::Circumstances::Quarantine::Over;
  return circumstances;
}

}  // namespace

void ExplainStep(const StepContext& context, const StepOptions& options) {
  const Policy::Snapshot snapshot = ReadPolicyOf(context);
  const Policy::Labels labels = context.ReadAdapterNames();
  const AskedCircumstances asked = AskCircumstances(options, snapshot);
  const Policy::Decider decider(snapshot, asked.circumstances);
  const Policy::Owners owners(snapshot, kProvider.key);
  if (context.library == nullptr) {
    CheckAskedOfDump(options);
  }
  const ExplanationContext shown{owners, labels, asked.told, !options.trace.empty()};
  for (const std::string& remote : options.remotes) {
    const Policy::Connection connection = AskedConnection(remote, options, asked);
    context.reporter.ShowExplanation(decider.Explain(connection), shown);
    if (const auto other = AcceptingEnd(connection)) {
      context.reporter.ShowExplanation(decider.Explain(*other), shown);
    }
  }
}

void MapStep(const StepContext& context, const StepOptions& options) {
  const Policy::Labels labels = context.ReadAdapterNames();
  const Policy::Snapshot snapshot = ReadPolicyOf(context);
  const AskedCircumstances asked = AskCircumstances(options, snapshot);
  const Policy::Map map =
      Policy::MakeMap(snapshot, labels, asked.circumstances, Progress().Of("parts of the map"));
  context.reporter.ShowMap(map, labels);
}

void ProveStep(const StepContext& context, const StepOptions& options) {
  const Policy::Snapshot snapshot = ReadPolicyOf(context);
  const Promises::Features features = ProvedFeatures(context, snapshot);
  const bool isAsked = !options.who.empty() || !options.profile.empty();
  const Policy::Circumstances circumstances =
      isAsked ? AskCircumstances(options, snapshot).circumstances : SettledNetworks();
  context.reporter.ShowPromises(Promises::ProveInCompany(snapshot, features, kProvider.key, circumstances),
                                Policy::Owners(snapshot, kProvider.key), context.ReadAdapterNames());
}

void LintStep(const StepContext& context, const StepOptions& options) {
  const Policy::Snapshot snapshot = ReadPolicyOf(context);
  context.reporter.ShowFindings(Policy::Lint(snapshot, Progress().Of("parts of the lint")),
                                Policy::Owners(snapshot, kProvider.key),
                                options.all.empty() ? Policy::Detail::Brief : Policy::Detail::Whole);
}

void ReportStep(const StepContext& context, const StepOptions& options) {
  const std::string& path = options.file.front();
  const Policy::Snapshot snapshot = ReadPolicyOf(context);
  const Promises::Features features = ActiveFeatures(context.before, context.dnsApp, snapshot);
  WriteFile(path, MakePage({context.engine, snapshot,
                            Promises::ProveInCompany(snapshot, features, kProvider.key, SettledNetworks()),
                            context.ReadAdapterNames(), Policy::Owners(snapshot, kProvider.key),
                            context.isOrderInferred, AskCircumstances(options, snapshot)}));
  context.reporter.ShowFile(path);
}
