/**
 * @file
 * Sets of small numbers as words of bits.
 */
#pragma once

#include <WfpPlatform.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <span>
#include <vector>

namespace Policy {

using BitWord = UINT64;
inline constexpr std::size_t kBitsPerWord = 64;

constexpr std::size_t WordsFor(std::size_t bits) { return (bits + kBitsPerWord - 1) / kBitsPerWord; }

inline bool HasBit(const BitWord* words, std::size_t bit) {
  return (words[bit / kBitsPerWord] >> (bit % kBitsPerWord) & 1) != 0;
}

inline void SetBit(BitWord* words, std::size_t bit, bool value = true) {
  const BitWord mask = BitWord{1} << (bit % kBitsPerWord);
  BitWord& word = words[bit / kBitsPerWord];
  word = value ? word | mask : word & ~mask;
}

/// The first bit set from `begin` on; `end` if there is none before it.
inline std::size_t FirstBit(const BitWord* words, std::size_t begin, std::size_t end) {
  while (begin < end) {
    const BitWord rest = words[begin / kBitsPerWord] >> (begin % kBitsPerWord);
    if (rest != 0) {
      const std::size_t bit = begin + static_cast<std::size_t>(std::countr_zero(rest));
      return bit < end ? bit : end;
    }
    begin = (begin / kBitsPerWord + 1) * kBitsPerWord;
  }
  return end;
}

/// The last bit set from `begin` to before `end`; `end` if there is none.
inline std::size_t LastBit(const BitWord* words, std::size_t begin, std::size_t end) {
  for (std::size_t after = end; after > begin;) {
    const std::size_t last = after - 1;
    const BitWord rest = words[last / kBitsPerWord] << (kBitsPerWord - 1 - last % kBitsPerWord);
    if (rest != 0) {
      const auto behind = static_cast<std::size_t>(std::countl_zero(rest));
      return behind <= last - begin ? last - behind : end;
    }
    after = last / kBitsPerWord * kBitsPerWord;
  }
  return end;
}

/// Clears the bits from `begin` to before `end`.
inline void ClearBits(BitWord* words, std::size_t begin, std::size_t end) {
  while (begin < end) {
    const std::size_t count = std::min(kBitsPerWord - begin % kBitsPerWord, end - begin);
    const BitWord ones = count == kBitsPerWord ? ~BitWord{0} : (BitWord{1} << count) - 1;
    words[begin / kBitsPerWord] &= ~(ones << (begin % kBitsPerWord));
    begin += count;
  }
}

/// Calls `visit` with every bit set from `begin` to before `end`.
template <class Visit>
void ForEachBit(const BitWord* words, std::size_t begin, std::size_t end, Visit visit) {
  for (std::size_t bit = FirstBit(words, begin, end); bit < end; bit = FirstBit(words, bit + 1, end)) {
    visit(bit);
  }
}

/// Sets, each with a number that it gets when it is first met: 0, 1, 2 and so on.
class WordTable {
 public:
  /// @param width the words that each set takes.
  explicit WordTable(std::size_t width) : width_(width), buckets_(kFirstBuckets, kEmpty) {}

  /// The number of a set, and whether it is new.
  struct Entry {
    std::size_t index;
    bool isNew;
  };
  Entry Intern(const BitWord* words);

  const BitWord* operator[](std::size_t index) const { return words_.data() + index * width_; }
  [[nodiscard]] std::size_t Size() const { return size_; }

 private:
  static constexpr std::size_t kFirstBuckets = 64;
  static constexpr UINT32 kEmpty = 0xFFFFFFFF;

  [[nodiscard]] std::size_t HashOf(const BitWord* words) const;
  UINT32& BucketOf(const BitWord* words);
  void Grow();

  std::size_t width_;
  std::size_t size_ = 0;
  std::vector<BitWord> words_;
  std::vector<UINT32> buckets_;
};

}  // namespace Policy
