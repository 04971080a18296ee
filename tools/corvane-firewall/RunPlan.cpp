#include "RunPlan.h"

#include <algorithm>
#include <exception>
#include <iostream>
#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "AssumedReadings.h"
#include "DumpedPolicy.h"
#include "EngineObjects.h"
#include "ForeignBlocks.h"
#include "JsonReporter.h"
#include "Text.h"
#include "TextReporter.h"
#include "dump/DumpError.h"
#include "policy/Diagram.h"

namespace {

std::unique_ptr<Reporter> MakeReporter(bool asJson, std::optional<Engine> engine) {
  if (asJson) {
    return std::make_unique<JsonReporter>(engine);
  }
  return std::make_unique<TextReporter>(engine);
}

void Fail(Reporter& reporter, const Failure& failure) {
  reporter.Fail(failure);
  reporter.Finish();
}

bool Holds(const Plan& plan) {
  return plan.engine == Engine::System && !plan.noHold &&
         std::ranges::any_of(
             plan.steps, [](const PlannedStep& planned) { return planned.step->effect == Effect::Installs; });
}

void WaitForEnter() {
  std::cerr << "The rules hold as long as this program runs: press Enter or Ctrl+C to end both." << std::endl;
  std::string line;
  std::getline(std::cin, line);
}

/// @param library as in StepContext.
/// @param dump that the engine is or began with; null if there is none.
/// @param notes are logged by the first step.
void RunSteps(const Plan& plan, const FirewallCommands* library, const DumpedPolicy* dump,
              std::vector<std::string> notes, Reporter& reporter) {
  const Assumed assumed = ReadAssumed(plan.assume);
  if (!assumed.note.empty()) {
    notes.push_back(assumed.note);
  }
  const bool isOrderInferred = dump != nullptr && dump->isOrderInferred;
  if (isOrderInferred) {
    notes.emplace_back("The dump lacks the sublayers; their order is inferred from that of the filters.");
    std::rotate(notes.begin(), notes.end() - 1, notes.end());
  }
  for (std::size_t i = 0; i < plan.steps.size(); ++i) {
    const PlannedStep& planned = plan.steps[i];
    reporter.BeginStep(planned.step->name);
    for (const std::string& note : std::exchange(notes, {})) {
      reporter.Log(note);
    }
    planned.step->run({library, plan.engine == Engine::Dump ? dump : nullptr, isOrderInferred, reporter,
                       plan.engine, plan.dnsApp, std::span(plan.steps).first(i), assumed.settled},
                      planned.options);
    reporter.EndStep();
  }
  reporter.Finish();
}

void RunOnEngine(const Plan& plan, Reporter& reporter) {
  std::optional<DumpedPolicy> start;
  if (!plan.start.empty()) {
    start.emplace(ReadDumpedPolicy(ToPath(plan.start)));
  }
  const std::unique_ptr<FirewallCommands> library = LoadFirewall(plan.engine, ToWide(plan.dnsApp));
  std::vector<std::string> notes;
  if (start) {
    notes = FillEmulatedEngine(*start);
  }
  if (!plan.blockedApps.empty()) {
    AddForeignBlocks(plan.blockedApps);
  }
  RunSteps(plan, library.get(), start ? &*start : nullptr, std::move(notes), reporter);
  if (Holds(plan)) {
    WaitForEnter();
  }
}

void RunOnDump(const Plan& plan, Reporter& reporter) {
  const DumpedPolicy dump = ReadDumpedPolicy(ToPath(plan.dump));
  RunSteps(plan, nullptr, &dump, {}, reporter);
}

}  // namespace

int RunPlan(const Plan& plan) {
  const std::unique_ptr<Reporter> reporter = MakeReporter(plan.json, plan.engine);
  try {
    (plan.engine == Engine::Dump ? RunOnDump : RunOnEngine)(plan, *reporter);
    return 0;
  } catch (const Dump::DumpError& error) {
    Fail(*reporter, Failure(error.what(), "netsh wfp show state file=FILE.xml writes a dump."));
    return 2;
  } catch (const BadAssumptions& error) {
    Fail(*reporter, error);
    return 2;
  } catch (const Failure& failure) {
    Fail(*reporter, failure);
  } catch (const Policy::DiagramTooLarge& error) {
    Fail(*reporter, Failure(error.what(), "The step explain tells about one connection at a time."));
  } catch (const std::exception& error) {
    Fail(*reporter, Failure(error.what(), ""));
  }
  return 1;
}

int RefuseCommandLine(const UsageError& error, bool asJson) {
  const std::unique_ptr<Reporter> reporter = MakeReporter(asJson, std::nullopt);
  Fail(*reporter, error);
  return 2;
}
