#include "emulator/SublayerWeights.h"

#include <algorithm>
#include <functional>

namespace EngineEmulator {

SublayerWeights::SublayerWeights(const KindStore<FWPM_SUBLAYER0>& sublayers) {
  for (const ObjectPtr<FWPM_SUBLAYER0>& sublayer : sublayers.All()) {
    Take(sublayer->Record().weight);
  }
}

UINT16 SublayerWeights::NearestFree(UINT16 wanted) const {
  constexpr int kHighest = 0xFFFF;
  const auto place = std::ranges::lower_bound(taken_, wanted);
  if (place == taken_.end() || *place != wanted) {
    return wanted;
  }
  // Without a gap between them, weights are as far apart as their places.
  const auto isWithoutGap = [&](const UINT16& weight) { return weight - wanted == &weight - &*place; };
  const auto above = std::partition_point(place, taken_.end(), isWithoutGap);
  const auto below = std::partition_point(taken_.begin(), place, std::not_fn(isWithoutGap));
  const int higher = *(above - 1) + 1;
  const int lower = *below - 1;
  const bool isHigherNearer = higher - wanted <= wanted - lower;
  return static_cast<UINT16>(lower < 0 || (higher <= kHighest && isHigherNearer) ? higher : lower);
}

void SublayerWeights::Take(UINT16 weight) {
  const auto place = std::ranges::lower_bound(taken_, weight);
  if (place == taken_.end() || *place != weight) {
    taken_.insert(place, weight);
  }
}

void SublayerWeights::Free(UINT16 weight) { std::erase(taken_, weight); }

}  // namespace EngineEmulator
