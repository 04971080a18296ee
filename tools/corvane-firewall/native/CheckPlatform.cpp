#include "CheckPlatform.h"

#include "Steps.h"

namespace {

std::string StepsThatRunHere() {
  std::string names;
  for (const Step& step : AllSteps()) {
    if (!NeedsWindows(step.effect)) {
      names += names.empty() ? step.name : std::string(", ") + step.name;
    }
  }
  return names;
}

}  // namespace

void CheckPlatform(const Plan& plan) {
  for (const PlannedStep& planned : plan.steps) {
    if (NeedsWindows(planned.step->effect)) {
      throw UsageError(std::string("The step ") + planned.step->name + " needs Windows",
                       "the steps that run on this system are " + StepsThatRunHere());
    }
  }
  if (!plan.dnsApp.empty()) {
    throw UsageError("--dns-app is for steps that need Windows", "leave it out on this system");
  }
  if (plan.engine == Engine::System) {
    throw UsageError("This system has no filtering engine",
                     "read a dump with --engine FILE.xml, or let the emulated engine begin with it: --engine "
                     "emulated --start FILE.xml. On Windows, netsh wfp show state file=FILE.xml writes one");
  }
}
