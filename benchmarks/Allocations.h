#pragma once

#include <cstdint>

/// The number of calls of operator new so far.
std::uint64_t CountAllocations();
