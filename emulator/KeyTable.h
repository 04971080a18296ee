/**
 * @file
 * The numbers of objects by their keys.
 */
#pragma once

#include <bit>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "emulator/GuidHash.h"

namespace EngineEmulator {

/// A hash table with open addressing: its entries lie in one piece of memory, apart from the objects. So the
/// processor's caches serve a look-up among very many objects too, and the table grows without reading them.
class KeyTable {
 public:
  /// Empty when the table has no such key.
  [[nodiscard]] std::optional<UINT64> Find(const GUID& key) const {
    if (slots_.empty()) {
      return std::nullopt;
    }
    const Slot& slot = slots_[PlaceOf(key)];
    return slot.IsFree() ? std::nullopt : std::optional(slot.number);
  }

  /// @param number less than the highest that 64 bits hold. Takes the place of what the key had.
  void Set(const GUID& key, UINT64 number) {
    if (2 * (count_ + 1) > slots_.size()) {
      Grow();
    }
    Slot& slot = slots_[PlaceOf(key)];
    count_ += slot.IsFree() ? 1 : 0;
    slot = {key, number};
  }

  /// The table must have the key.
  void Erase(const GUID& key) {
    std::size_t place = PlaceOf(key);
    slots_[place] = Slot();
    --count_;
    // What lies behind it was perhaps put there because its own slot was taken.
    for (place = After(place); !slots_[place].IsFree(); place = After(place)) {
      const Slot moved = std::exchange(slots_[place], Slot());
      slots_[PlaceOf(moved.key)] = moved;
    }
  }

 private:
  static constexpr std::size_t kFewestSlots = 16;

  struct Slot {
    static constexpr UINT64 kNone = UINT64_MAX;

    GUID key{};
    UINT64 number = kNone;

    [[nodiscard]] bool IsFree() const { return number == kNone; }
  };

  /// The slot where the key is, or the free one where it belongs: that of its hash, or the first free one
  /// after that.
  [[nodiscard]] std::size_t PlaceOf(const GUID& key) const {
    // Keys of a series differ in a few bits; the highest bits of the product depend on all of them.
    constexpr UINT64 kOddFactor = 0x9E3779B97F4A7C15;
    const int shift = std::countl_zero(UINT64{slots_.size() - 1});
    auto place = static_cast<std::size_t>((GuidHash()(key) * kOddFactor) >> shift);
    while (!slots_[place].IsFree() && !(slots_[place].key == key)) {
      place = After(place);
    }
    return place;
  }

  [[nodiscard]] std::size_t After(std::size_t place) const { return (place + 1) % slots_.size(); }

  void Grow() {
    std::vector<Slot> slots(slots_.empty() ? kFewestSlots : 2 * slots_.size());
    slots.swap(slots_);
    for (const Slot& slot : slots) {
      if (!slot.IsFree()) {
        slots_[PlaceOf(slot.key)] = slot;
      }
    }
  }

  std::vector<Slot> slots_;  ///< none or a power of two; at least half of them are free
  std::size_t count_ = 0;    ///< those that are not
};

}  // namespace EngineEmulator
