/**
 * @file
 * The memory that the engine hands out to its clients.
 */
#pragma once

#include <unordered_map>

#include "emulator/Records.h"

namespace EngineEmulator {

/// Owns every block between the call that hands it out and FwpmFreeMemory0.
class EngineMemory {
 public:
  /// Hands a block out under the address of its root.
  template <class Root>
  Root* HandOut(Block<Root> block) {
    Root* const root = block.root;
    blocks_.emplace(root, std::move(block.bytes));
    return root;
  }

  /// Takes a block back. False for an address that is not a block's, or no longer.
  bool Free(const void* root) { return blocks_.erase(root) != 0; }

  std::size_t Count() const { return blocks_.size(); }

 private:
  std::unordered_map<const void*, std::unique_ptr<std::byte[]>> blocks_;
};

}  // namespace EngineEmulator
