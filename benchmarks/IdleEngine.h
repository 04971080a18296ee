/**
 * @file
 * An engine that does nothing: it defines the functions that the library calls, and each succeeds at once
 * whatever it is given. It only knows which sublayers there are, because the library asks for them.
 */
#pragma once

#include <cstdint>

namespace IdleEngine {

/// The calls since the program began, FwpmFreeMemory0 included.
std::uint64_t CountCalls();

}  // namespace IdleEngine
