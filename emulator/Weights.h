/**
 * @file
 * The weights that filters compete with.
 */
#pragma once

#include <WfpPlatform.h>

namespace EngineEmulator {

/// The weight of a filter that has passed the checks. One of 64 bits is taken as it is. Otherwise the top
/// four bits are the range given, or zero, and the rest is the engine's. How Windows computes it is not
/// documented; this has the properties that are known: each field has its share, in a place that depends on
/// the layer, IP_REMOTE_ADDRESS the highest; an exact value weighs more than a range, and a range of
/// everything nothing; the more conditions, the heavier; no conditions weigh 0.
UINT64 EffectiveWeight(const FWPM_FILTER0& filter);

}  // namespace EngineEmulator
