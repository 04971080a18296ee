/**
 * @file
 * What the engine checks before it takes an object. Each function gives the first thing that is wrong.
 */
#pragma once

#include <string_view>

#include "catalog/Layers.h"
#include "emulator/ObjectStore.h"
#include "emulator/Refusal.h"
#include "emulator/Switches.h"

namespace EngineEmulator {

/// What an object is checked against.
struct CheckContext {
  const ObjectStore& objects;
  Origin origin;  ///< that of the object to be
  const Switches& switches;
};

Refusal Check(const FWPM_PROVIDER0& provider, const CheckContext& context);
Refusal Check(const FWPM_SUBLAYER0& sublayer, const CheckContext& context);
Refusal Check(const FWPM_CALLOUT0& callout, const CheckContext& context);
Refusal Check(const FWPM_PROVIDER_CONTEXT0& providerContext, const CheckContext& context);
/// The sublayer key must be filled in already, if the layer exists.
Refusal Check(const FWPM_FILTER0& filter, const CheckContext& context);

/// Whether the layer has the field, type and match fit it, and the data are sound.
Refusal CheckCondition(const FWPM_FILTER_CONDITION0& condition, const Catalog::Layer& layer,
                       const Switches& switches);

/// The part of it that no layer decides on: that the match type exists, and the data are there and sound.
Refusal CheckSoundness(const FWPM_FILTER_CONDITION0& condition, const Switches& switches);

/// Whether the match goes with the type of a sound condition's value.
/// @param field the name of the condition's field.
Refusal CheckMatch(const FWPM_FILTER_CONDITION0& condition, std::string_view field, const Switches& switches);

/// Whether there is a SID, of a plausible length.
Refusal CheckSid(const SID* sid);

/// Whether there is a name, and all texts are Unicode.
Refusal CheckDisplayData(const FWPM_DISPLAY_DATA0& data, const CheckContext& context);

/// Whether the size is plausible, and data are there unless it is zero.
Refusal CheckBlob(const FWP_BYTE_BLOB& blob);

/// Whether the provider exists and lives as long as what refers to it. Null: there is no reference to check.
Refusal CheckProviderReference(const GUID* providerKey, const CheckContext& context);

/// Whether a reference cannot outlive what it points to.
bool MayRefer(const Origin& referrer, const Origin& target);

/// Whether the counts and sizes in a filter are plausible; if not, its arrays must not be read. Null pointers
/// are checked elsewhere.
bool IsReadable(const FWPM_FILTER0& filter);

/// The most conditions of a filter. The engine has no documented limit; a count above this is taken for
/// garbage.
inline constexpr UINT32 kMostConditions = 100'000;
inline constexpr UINT32 kMostBytes = 16 * 1024 * 1024;

}  // namespace EngineEmulator
