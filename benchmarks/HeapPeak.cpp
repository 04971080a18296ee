#include "HeapPeak.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

// The benchmarks have one thread.
std::size_t inUse = 0;
std::size_t atRestart = 0;
std::size_t peak = 0;

}  // namespace

void HeapPeak::Restart() { atRestart = peak = inUse; }

std::size_t HeapPeak::Get() { return peak - atRestart; }

std::size_t HeapPeak::InUse() { return inUse - atRestart; }

void* operator new(std::size_t size) {
  void* memory = std::malloc(size);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  inUse += malloc_usable_size(memory);
  peak = std::max(peak, inUse);
  return memory;
}

void operator delete(void* memory) noexcept {
  inUse -= malloc_usable_size(memory);
  std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }
