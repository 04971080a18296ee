#include "benchmarks/Allocations.h"

#include <cstdlib>
#include <new>

namespace {

std::uint64_t allocations = 0;

}  // namespace

std::uint64_t CountAllocations() { return allocations; }

// The standard library's other forms call these.
void* operator new(std::size_t size) {
  ++allocations;
  void* memory = std::malloc(size);  // NOLINT(cppcoreguidelines-no-malloc): beneath operator new.
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

void operator delete(void* memory) noexcept {
  std::free(memory);  // NOLINT(cppcoreguidelines-no-malloc): beneath operator delete.
}

void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }
