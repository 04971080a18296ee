#include "emulator/Weights.h"

#include <span>

#include "catalog/Layers.h"
#include "emulator/GuessedWeights.h"

namespace EngineEmulator {
namespace {

UINT64 AutomaticWeight(const FWPM_FILTER0& filter, const Rules& rules) {
  return GuessedWeight(std::span(filter.filterCondition, filter.numFilterConditions),
                       *Catalog::FindLayer(filter.layerKey, rules.Version()));
}

}  // namespace

UINT64 EffectiveWeight(const FWPM_FILTER0& filter, const Rules& rules) {
  switch (filter.weight.type) {
    case FWP_UINT64:
      return *filter.weight.uint64;
    case FWP_UINT8:
      return UINT64{filter.weight.uint8} << FWPM_AUTO_WEIGHT_BITS | AutomaticWeight(filter, rules);
    default:
      return AutomaticWeight(filter, rules);
  }
}

}  // namespace EngineEmulator
