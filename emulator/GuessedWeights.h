/**
 * @file
 * Weights where it is not known how Windows computes them.
 */
#pragma once

#include <WfpPlatform.h>

#include <span>

#include "catalog/Layers.h"

namespace EngineEmulator {

/// A weight below 2^60 by conditions at a layer, which have passed the checks. Each field has its share, in a
/// place that depends on the layer, IP_REMOTE_ADDRESS the highest; an exact value weighs more than a range,
/// and a range of everything nothing; the more conditions, the heavier; no conditions weigh 0.
UINT64 GuessedWeight(std::span<const FWPM_FILTER_CONDITION0> conditions, const Catalog::Layer& layer);

}  // namespace EngineEmulator
