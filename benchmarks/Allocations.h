#pragma once

#include <cstdint>

/// How often the program has taken memory with operator new.
std::uint64_t CountAllocations();
