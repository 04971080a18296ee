/**
 * @file
 * The weights of sublayers: no two sublayers have the same one.
 */
#pragma once

#include "emulator/KindStore.h"

namespace EngineEmulator {

/// The weights that are taken.
class SublayerWeights {
 public:
  SublayerWeights() = default;
  explicit SublayerWeights(const KindStore<FWPM_SUBLAYER0>& sublayers);

  /// The free weight nearest to the one asked for; of two that are equally near, the higher. At least one
  /// must be free.
  [[nodiscard]] UINT16 NearestFree(UINT16 wanted) const;
  void Take(UINT16 weight);
  void Free(UINT16 weight);

 private:
  std::vector<UINT16> taken_;  ///< rising
};

}  // namespace EngineEmulator
