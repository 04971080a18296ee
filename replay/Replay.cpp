#include "replay/Replay.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <unordered_map>

#include "catalog/Guid.h"
#include "dump/WindowsOf.h"
#include "emulator/Control.h"
#include "replay/ReadEngine.h"
#include "replay/StandIns.h"

namespace Replay {
namespace {

using Catalog::WindowsVersion;

/// Lets the emulated engine be of a version of Windows, and take what clients cannot add.
void BeLiveEngineOf(WindowsVersion version) {
  EngineEmulator::Switches switches;
  switches.windowsBuild = Catalog::FirstBuildOf(version);
  // Live engines and drivers set some that clients cannot.
  switches.refuseUnknownFlags = 0;
  EngineEmulator::SetSwitches(switches);
}

UINT64 EffectiveWeight(const FWPM_FILTER0& filter) {
  const FWP_VALUE0& weight = filter.effectiveWeight;
  return weight.type == FWP_UINT64 && weight.uint64 != nullptr ? *weight.uint64 : 0;
}

bool HasAutomaticWeight(const FWPM_FILTER0& filter) {
  return filter.weight.type == FWP_EMPTY || filter.weight.type == FWP_UINT8;
}

/// A filter's weight in both engines.
struct Weighed {
  UINT64 id;
  UINT64 original;
  UINT64 replayed;
};

/// The filters of a sublayer at a layer.
using Group = std::vector<Weighed>;
using Groups = std::map<GUID, std::map<GUID, Group, Catalog::KeyOrder>, Catalog::KeyOrder>;

/// Whether both engines ask the same one of two filters first. Of equal weights it is the newer.
bool HaveSameOrder(const Weighed& older, const Weighed& newer) {
  return (newer.original >= older.original) == (newer.replayed >= older.replayed);
}

void ComparePairs(Group group, Agreement& agreement) {
  std::ranges::stable_sort(group, {}, &Weighed::id);
  for (std::size_t newer = 1; newer < group.size(); ++newer) {
    for (std::size_t older = 0; older < newer; ++older) {
      ++agreement.orderedPairs;
      agreement.sameOrder += HaveSameOrder(group[older], group[newer]) ? 1 : 0;
    }
  }
}

/// @param ids that the filters of the state got in the emulated engine; 0 for a refused one.
void CompareFilters(const Dump::EngineState& state, const std::vector<UINT64>& ids,
                    const Dump::EngineState& emulated, Agreement& agreement) {
  std::unordered_map<UINT64, UINT64> weights;
  for (const FWPM_FILTER0& filter : emulated.filters) {
    weights.emplace(filter.filterId, EffectiveWeight(filter));
  }
  Groups groups;
  for (std::size_t i = 0; i < ids.size(); ++i) {
    const FWPM_FILTER0& filter = state.filters[i];
    ++agreement.filters;
    agreement.automaticWeights += HasAutomaticWeight(filter) ? 1 : 0;
    if (ids[i] == 0) {
      continue;
    }
    const Weighed weighed{filter.filterId, EffectiveWeight(filter), weights.at(ids[i])};
    ++agreement.accepted;
    agreement.equalWeights += HasAutomaticWeight(filter) && weighed.original == weighed.replayed ? 1 : 0;
    groups[filter.layerKey][filter.subLayerKey].push_back(weighed);
  }
  for (const auto& [layer, sublayers] : groups) {
    for (const auto& [sublayer, group] : sublayers) {
      ComparePairs(group, agreement);
    }
  }
}

void CompareSublayers(const Dump::EngineState& state, const Dump::EngineState& emulated,
                      Agreement& agreement) {
  std::map<GUID, UINT16, Catalog::KeyOrder> weights;
  for (const FWPM_SUBLAYER0& sublayer : emulated.subLayers) {
    weights.emplace(sublayer.subLayerKey, sublayer.weight);
  }
  for (const FWPM_SUBLAYER0& sublayer : state.subLayers) {
    const auto replayed = weights.find(sublayer.subLayerKey);
    ++agreement.sublayers;
    agreement.equalSublayers += replayed != weights.end() && replayed->second == sublayer.weight ? 1 : 0;
  }
}

Agreement ReplayAs(WindowsVersion version, const Dump::EngineState& state) {
  const EngineEmulator::FreshEngine fresh;
  BeLiveEngineOf(version);
  const EngineCalls engine = LinkedEngine();
  Agreement agreement;
  agreement.windows = version;
  Filling filling =
      FillEngine(engine, WithStandIns(state), FlagsToAdd::AllButDisabled, EngineEmulator::LastRefusal);
  agreement.refusals = std::move(filling.refusals);
  const EngineContents emulated = ReadEngine(engine);
  CompareFilters(state, filling.filterIds, emulated.state, agreement);
  CompareSublayers(state, emulated.state, agreement);
  return agreement;
}

}  // namespace

Agreement ReplayIntoEmulator(const Dump::EngineState& state) {
  // Of versions that agree as well, the newest.
  Agreement best;
  bool isFirst = true;
  for (const WindowsVersion version : Dump::WindowsOf(state)) {
    Agreement agreement = ReplayAs(version, state);
    if (isFirst || agreement.equalWeights >= best.equalWeights) {
      best = std::move(agreement);
      isFirst = false;
    }
  }
  return best;
}

}  // namespace Replay
