#include "EngineObjects.h"

#include <ctime>
#include <iomanip>
#include <map>
#include <sstream>

#include "EngineClient.h"
#include "Failure.h"
#include "catalog/Guid.h"
#include "replay/FillEngine.h"
#include "replay/Replay.h"
#include "replay/StandIns.h"

namespace {

/// "2026-11-22T09:16:19.000Z"
std::string Now() {
  const std::time_t now = std::time(nullptr);
  std::ostringstream text;
  text << std::put_time(std::gmtime(&now), "%Y-%m-%dT%H:%M:%S.000Z");
  return text.str();
}

/// Why the engine refused what it last refused.
std::string LastRefusal(const EmulatorControl& emulator) {
  std::string text(emulator.lastRefusal(nullptr, 0), '\0');
  emulator.lastRefusal(text.data(), text.size());
  text.pop_back();
  return text;
}

/// All that the emulated engine needs to hold the dump's filters. Sublayers that the dump does not list weigh
/// as their inferred order has it.
Dump::EngineState ObjectsToAdd(const DumpedPolicy& dump) {
  std::map<GUID, UINT16, Catalog::KeyOrder> weights;
  for (const Policy::Sublayer& sublayer : dump.snapshot.sublayers) {
    weights.emplace(sublayer.key, sublayer.weight);
  }
  Dump::EngineState objects = Replay::WithStandIns(dump.state);
  for (FWPM_SUBLAYER0& subLayer : objects.subLayers) {
    subLayer.weight = weights.at(subLayer.subLayerKey);
  }
  return objects;
}

}  // namespace

Replay::EngineContents ReadEngineObjects() {
  try {
    Replay::EngineContents contents = Replay::ReadEngine(FindObjectCalls());
    contents.state.timeStamp = Now();
    return contents;
  } catch (const Replay::EngineError& error) {
    throw Failure(error.Code(), "The filtering engine cannot be read: " + std::string(error.what()));
  }
}

std::vector<std::string> FillEmulatedEngine(const DumpedPolicy& dump) {
  const EmulatorControl emulator = FindEmulatorControl();
  emulator.setRule("windowsBuild", Catalog::FirstBuildOf(Replay::ReplayIntoEmulator(dump.state).windows));
  emulator.setRule("keepAsGiven", 1);
  const Replay::Filling filling =
      Replay::FillEngine(FindObjectCalls(), ObjectsToAdd(dump), Replay::FlagsToAdd::All,
                         [&emulator] { return LastRefusal(emulator); });
  emulator.setRule("keepAsGiven", 0);
  std::vector<std::string> notes;
  for (const Replay::Refusal& refusal : filling.refusals) {
    notes.push_back("The emulated engine does not hold " + std::to_string(refusal.count) +
                    " of the dump's objects: " + refusal.reason + ", as for " + refusal.example);
  }
  return notes;
}
