/**
 * @file
 * What the engine checks before it takes an object. Each function gives the first thing that is wrong.
 */
#pragma once

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
/// The sublayer key must be filled in already, if the layer exists.
Refusal Check(const FWPM_FILTER0& filter, const CheckContext& context);

/// That the field is there, that type and match fit it, and that the data are sound.
Refusal CheckCondition(const FWPM_FILTER_CONDITION0& condition, const Catalog::Layer& layer,
                       const Switches& switches);

/// A name that is there, and texts that are Unicode.
Refusal CheckDisplayData(const FWPM_DISPLAY_DATA0& data, const CheckContext& context);

/// Data for a size that is not zero, and a size that a client can mean.
Refusal CheckBlob(const FWP_BYTE_BLOB& blob);

/// A provider that exists and does not end before what refers to it. Null is no reference.
Refusal CheckProviderReference(const GUID* providerKey, const CheckContext& context);

/// Whether a reference cannot outlive what it points to.
bool MayRefer(const Origin& referrer, const Origin& target);

/// Whether the counts and sizes in a filter are ones that a client can mean. Where they are not, its arrays
/// cannot be read. Null pointers are no concern of this.
bool IsReadable(const FWPM_FILTER0& filter);

/// At most so many conditions. The engine has no documented limit; more than this is no count but garbage.
inline constexpr UINT32 kMostConditions = 100'000;
inline constexpr UINT32 kMostBytes = 16 * 1024 * 1024;

}  // namespace EngineEmulator
