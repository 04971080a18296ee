#pragma once

#include <cstdint>

namespace Tarnwell {

/// The index of the interface with that NET_LUID.
/// @throws std::runtime_error when the system knows no such interface.
std::uint32_t LuidToIndex(std::uint64_t luid);

}  // namespace Tarnwell
