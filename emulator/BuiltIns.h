/**
 * @file
 * The objects that come with the system. Every engine shares them.
 */
#pragma once

#include <vector>

#include "catalog/WindowsVersion.h"
#include "emulator/KindStore.h"

namespace EngineEmulator {

/// The layers of a version of Windows, each with its fields. A layer's number is its runtime id.
const std::vector<ObjectPtr<FWPM_LAYER0>>& Layers(Catalog::WindowsVersion version);

const std::vector<ObjectPtr<FWPM_PROVIDER0>>& BuiltInProviders();
const std::vector<ObjectPtr<FWPM_SUBLAYER0>>& BuiltInSublayers();
/// A callout's number is its id.
const std::vector<ObjectPtr<FWPM_CALLOUT0>>& BuiltInCallouts();

}  // namespace EngineEmulator
