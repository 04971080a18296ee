/**
 * @file
 * An engine that does nothing: the functions that the library calls return success at once, whatever the
 * arguments. It only remembers which sublayers exist, because the library looks them up.
 */
#pragma once

#include <cstdint>
#include <functional>

namespace IdleEngine {

/// The number of calls since the program started, with those of FwpmFreeMemory0.
std::uint64_t CountCalls();

/// @param call made when the first filter after a sublayer is added.
void AtFirstFilter(std::function<void()> call);

}  // namespace IdleEngine
