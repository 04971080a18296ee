#include "WatchStep.h"

#include <chrono>

#include "EngineClient.h"
#include "Failure.h"
#include "Identities.h"
#include "Interruption.h"
#include "OptionValues.h"
#include "watch/Watcher.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kSwitchOn =
    "\"netsh wfp set options netevents=on\" switches it on, for everybody and for good.";

Failure FailureOf(const Watch::WatchError& error) {
  switch (error.Code()) {
    case static_cast<DWORD>(FWP_E_NET_EVENTS_DISABLED):
      return {"The engine does not collect net events, so it remembers none", kSwitchOn};
    case ERROR_CALL_NOT_IMPLEMENTED:
      return {"This engine does not tell of its drops", "Windows 10 and later do."};
    default:
      return {error.Code(), "The filtering engine cannot be watched: " + std::string(error.what())};
  }
}

void RunUntilTheEnd(Watch::Watcher& watcher, const StepOptions& options) {
  const Interruption interruption;
  if (options.duration.empty()) {
    watcher.Run(&Interruption::IsAskedFor);
    return;
  }
  const Clock::time_point end = Clock::now() + ParseSeconds(options.duration.front()).value();
  watcher.Run([end] { return Interruption::IsAskedFor() || Clock::now() >= end; });
}

}  // namespace

void WatchStep(const StepContext& context, const StepOptions& options) {
  if (!options.last.empty() && !options.duration.empty()) {
    throw Failure("What the engine remembers takes no time to list", "Give either --last or --for.");
  }
  const Watch::EventCalls engine = FindEventCalls();
  const std::unique_ptr<Watch::Audience> audience = context.reporter.StartWatching();
  Watch::Watcher watcher(
      engine, [] { return Policy::ReadEngine(FindPolicyCalls()); }, kProvider.key, *audience);
  try {
    if (options.last.empty()) {
      RunUntilTheEnd(watcher, options);
    } else {
      watcher.TellRemembered();
    }
  } catch (const Watch::LostSubscription& error) {
    throw Failure(error.Code(),
                  "The engine does not answer any more: its service was stopped, and with it the watch");
  } catch (const Watch::WatchError& error) {
    throw FailureOf(error);
  } catch (const Policy::SnapshotError& error) {
    throw Failure(error.Code(), "The filtering engine cannot be read: " + std::string(error.what()));
  }
}
