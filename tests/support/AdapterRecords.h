/**
 * @file
 * Adapters of the faked platform as the records of GetAdaptersAddresses.
 */
#pragma once

#include "support/FakePlatform.h"

// clang-format off: it needs the headers above.
#include <iphlpapi.h>
// clang-format on

#include <cstddef>
#include <vector>

namespace FakePlatform {

/// The bytes that the records take.
std::size_t SizeOfRecords(const std::vector<Adapter>& adapters);

/// Writes the records, linked in order, into a zeroed buffer of that size. Gives the first; null for none.
IP_ADAPTER_ADDRESSES* WriteRecords(const std::vector<Adapter>& adapters, void* buffer);

}  // namespace FakePlatform
