#include "benchmarks/Allocations.h"

#include <cstdlib>
#include <new>

namespace {

std::uint64_t allocations = 0;
std::uint64_t bytes = 0;

}  // namespace

std::uint64_t CountAllocations() { return allocations; }
std::uint64_t CountAllocatedBytes() { return bytes; }

// The other forms of new and delete call these.
void* operator new(std::size_t size) {
  ++allocations;
  bytes += size;
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
