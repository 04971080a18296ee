/**
 * @file
 * Which filters the engine finds by an index.
 */
#pragma once

#include <WfpPlatform.h>

namespace EngineEmulator {

/// Whether the engine sets FWPM_FILTER_FLAG_INDEXED: where connections are authorised, on filters that test
/// the application or the local port for one value.
bool IsIndexed(const FWPM_FILTER0& filter);

}  // namespace EngineEmulator
