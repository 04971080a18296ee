/**
 * @file
 * The memory that the engine hands out to its clients.
 */
#pragma once

#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "emulator/Records.h"

namespace EngineEmulator {

/// Owns every block between the call that hands it out and FwpmFreeMemory0.
class EngineMemory {
 public:
  /// Hands a block out under the address of its root.
  /// @param function the call that does.
  template <class Root>
  Root* HandOut(const char* function, Block<Root> block) {
    Root* const root = block.root;
    numbers_.emplace(root, next_);
    blocks_.emplace(next_, HandedOut{function, std::move(block.bytes)});
    ++next_;
    return root;
  }

  /// Takes a block back. False if no block that is out has this address.
  bool Free(const void* root) {
    const auto found = numbers_.find(root);
    if (found == numbers_.end()) {
      return false;
    }
    blocks_.erase(found->second);
    numbers_.erase(found);
    return true;
  }

  [[nodiscard]] std::size_t Count() const { return blocks_.size(); }

  /// The calls whose blocks have not come back, oldest first.
  [[nodiscard]] std::vector<std::string> Functions() const {
    std::vector<std::string> functions;
    for (const auto& [number, block] : blocks_) {
      functions.emplace_back(block.function);
    }
    return functions;
  }

 private:
  struct HandedOut {
    const char* function;
    std::unique_ptr<std::byte[]> bytes;
  };
  std::unordered_map<const void*, UINT64> numbers_;
  std::map<UINT64, HandedOut> blocks_;
  UINT64 next_ = 0;
};

}  // namespace EngineEmulator
