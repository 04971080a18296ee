#pragma once

#include <cstddef>

/// Counts the bytes that operator new has given out in this program.
namespace HeapPeak {

/// Forgets the peak so far.
void Restart();
/// The most bytes in use at one time since Restart, less those in use at Restart.
std::size_t Get();
/// The bytes in use now, less those in use at Restart.
std::size_t InUse();

}  // namespace HeapPeak
