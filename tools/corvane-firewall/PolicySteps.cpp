#include "PolicySteps.h"

#include "ActiveFeatures.h"
#include "AskedConnection.h"
#include "OutputFile.h"
#include "ReportPage.h"

void ExplainStep(const StepContext& context, const StepOptions& options) {
  const Policy::Snapshot snapshot = context.ReadEngine();
  const Policy::Labels labels = context.ReadAdapterNames();
  const Policy::Decider decider(snapshot);
  if (context.dump != nullptr) {
    CheckAskedOfDump(options);
  }
  for (const std::string& remote : options.remotes) {
    context.reporter.ShowExplanation(decider.Explain(AskedConnection(remote, options)), labels);
  }
}

void MapStep(const StepContext& context, const StepOptions&) {
  const Policy::Labels labels = context.ReadAdapterNames();
  context.reporter.ShowMap(Policy::MakeMap(context.ReadEngine(), labels), labels);
}

void ProveStep(const StepContext& context, const StepOptions&) {
  const Policy::Snapshot snapshot = context.ReadEngine();
  const Promises::Features features = ActiveFeatures(context.before, context.dnsApp, snapshot);
  context.reporter.ShowPromises(Promises::Prove(snapshot, features), context.ReadAdapterNames());
}

void LintStep(const StepContext& context, const StepOptions&) {
  const Policy::Snapshot snapshot = context.ReadEngine();
  context.reporter.ShowFindings(Policy::Lint(snapshot));
}

void ReportStep(const StepContext& context, const StepOptions& options) {
  const std::string& path = options.file.front();
  const Policy::Snapshot snapshot = context.ReadEngine();
  const Promises::Features features = ActiveFeatures(context.before, context.dnsApp, snapshot);
  WriteFile(path, MakePage({context.engine, snapshot, Promises::Prove(snapshot, features),
                            context.ReadAdapterNames(), context.isOrderInferred}));
  context.reporter.ShowFile(path);
}
