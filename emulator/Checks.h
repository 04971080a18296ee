/**
 * @file
 * What the engine checks before it takes an object. Each function gives the code of the first fault found,
 * or ERROR_SUCCESS.
 */
#pragma once

#include "emulator/Policy.h"

namespace EngineEmulator {

DWORD Check(const FWPM_PROVIDER0& provider, const Policy& policy, const Origin& origin);
DWORD Check(const FWPM_SUBLAYER0& sublayer, const Policy& policy, const Origin& origin);
/// The sublayer key must be filled in already, if the layer exists.
DWORD Check(const FWPM_FILTER0& filter, const Policy& policy, const Origin& origin);

/// A name that is there, and texts that are Unicode.
DWORD CheckDisplayData(const FWPM_DISPLAY_DATA0& data);

/// Data for a size that is not zero.
DWORD CheckBlob(const FWP_BYTE_BLOB& blob);

/// A provider that exists and does not end before what refers to it. Null is no reference.
DWORD CheckProviderReference(const GUID* providerKey, const Policy& policy, const Origin& referrer);

/// Whether a reference cannot outlive what it points to.
bool MayRefer(const Origin& referrer, const Origin& target);

/// The fault that comes first.
template <class... Codes>
DWORD FirstFault(DWORD first, Codes... others) {
  if constexpr (sizeof...(others) == 0) {
    return first;
  } else {
    return first != ERROR_SUCCESS ? first : FirstFault(others...);
  }
}

}  // namespace EngineEmulator
