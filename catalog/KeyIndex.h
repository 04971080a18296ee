/**
 * @file
 * Look-up by key in a table that is written in the order of its documentation.
 */
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

#include "catalog/Guid.h"

namespace Catalog {

/// Finds entries of a constant table by their member `key`. The table must outlive the index and hold no
/// key twice.
template <class Entry, std::size_t kCount>
class KeyIndex {
 public:
  constexpr explicit KeyIndex(const std::array<Entry, kCount>& table) {
    for (std::size_t i = 0; i < kCount; ++i) {
      sorted_[i] = &table[i];
    }
    std::ranges::sort(sorted_, Precedes, KeyOf);
  }

  /// The entry with a key; null if there is none.
  [[nodiscard]] const Entry* Find(const GUID& key) const {
    const auto found = std::ranges::lower_bound(sorted_, key, Precedes, KeyOf);
    return found != sorted_.end() && (*found)->key == key ? *found : nullptr;
  }

 private:
  static constexpr const GUID& KeyOf(const Entry* entry) { return entry->key; }

  std::array<const Entry*, kCount> sorted_{};
};

}  // namespace Catalog
