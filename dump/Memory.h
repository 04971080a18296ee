/**
 * @file
 * Memory that records of the platform point into.
 */
#pragma once

#include <WfpPlatform.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <memory_resource>
#include <span>
#include <string_view>
#include <type_traits>

namespace Dump {

/// Blocks that live until it dies; moving it leaves them where they are.
class Memory {
 public:
  /// @return a zeroed array; null for none.
  template <class Plain>
  Plain* MakeArray(std::size_t count) {
    static_assert(std::is_trivially_destructible_v<Plain>);
    if (count == 0) {
      return nullptr;
    }
    void* block = resource_->allocate(count * sizeof(Plain), std::max(alignof(Plain), alignof(UINT64)));
    auto* array = static_cast<Plain*>(block);
    std::uninitialized_value_construct_n(array, count);
    return array;
  }

  template <class Plain>
  Plain* Make(const Plain& value) {
    Plain* copy = MakeArray<Plain>(1);
    *copy = value;
    return copy;
  }

  /// @return null for no bytes.
  UINT8* MakeBytes(std::span<const UINT8> bytes) {
    UINT8* copy = MakeArray<UINT8>(bytes.size());
    std::ranges::copy(bytes, copy);
    return copy;
  }

  /// A text with its zero.
  wchar_t* MakeText(std::wstring_view text) {
    auto* copy = MakeArray<wchar_t>(text.size() + 1);
    std::ranges::copy(text, copy);
    return copy;
  }

 private:
  std::unique_ptr<std::pmr::monotonic_buffer_resource> resource_ =
      std::make_unique<std::pmr::monotonic_buffer_resource>();
};

}  // namespace Dump
