#include "benchmarks/Allocations.h"

#include <cstdlib>
#include <new>

namespace {

std::uint64_t allocations = 0;

}  // namespace

std::uint64_t CountAllocations() { return allocations; }

// The other forms of new and delete call these.
void* operator new(std::size_t size) {
  ++allocations;
  void* memory = std::malloc(size);  // NOLINT(cppcoreguidelines-no-malloc): this is operator new.
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

void operator delete(void* memory) noexcept {
  std::free(memory);  // NOLINT(cppcoreguidelines-no-malloc): this is operator delete.
}

void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }
