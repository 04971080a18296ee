#pragma once

#include <cstdint>

/// The number of calls of operator new so far.
std::uint64_t CountAllocations();

/// The number of bytes that these calls have asked for.
std::uint64_t CountAllocatedBytes();
