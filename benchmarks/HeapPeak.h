#pragma once

#include <cstddef>

/// What operator new has handed out in this program, in bytes.
namespace HeapPeak {

/// Forgets the peak so far.
void Restart();
/// The most held at once since Restart, beyond what was held then.
std::size_t Get();

}  // namespace HeapPeak
