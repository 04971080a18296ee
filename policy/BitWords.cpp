#include "policy/BitWords.h"

#include <algorithm>

namespace Policy {

std::size_t WordTable::HashOf(const BitWord* words) const {
  UINT64 hash = 0x9E3779B97F4A7C15;
  for (std::size_t i = 0; i < width_; ++i) {
    hash = (hash ^ words[i]) * 0xFF51AFD7ED558CCD;
    hash ^= hash >> 32;
  }
  return static_cast<std::size_t>(hash);
}

UINT32& WordTable::BucketOf(const BitWord* words) {
  for (std::size_t bucket = HashOf(words);; ++bucket) {
    UINT32& index = buckets_[bucket & (buckets_.size() - 1)];
    if (index == kEmpty || std::equal(words, words + width_, (*this)[index])) {
      return index;
    }
  }
}

void WordTable::Grow() {
  buckets_.assign(buckets_.size() * 2, kEmpty);
  for (std::size_t i = 0; i < size_; ++i) {
    BucketOf((*this)[i]) = static_cast<UINT32>(i);
  }
}

WordTable::Entry WordTable::Intern(const BitWord* words) {
  if (size_ * 2 >= buckets_.size()) {
    Grow();
  }
  UINT32& index = BucketOf(words);
  if (index != kEmpty) {
    return {index, false};
  }
  index = static_cast<UINT32>(size_);
  words_.insert(words_.end(), words, words + width_);
  return {size_++, true};
}

}  // namespace Policy
