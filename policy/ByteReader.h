/**
 * @file
 * Bytes of unknown origin, read from front to back.
 */
#pragma once

#include <WfpPlatform.h>

#include <cstddef>
#include <span>
#include <stdexcept>

namespace Policy {

/// Bytes that are not what they should be.
class MalformedError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Takes bytes, and numbers with their least significant byte first.
/// @throws MalformedError when more is taken than there is.
class ByteReader {
 public:
  explicit ByteReader(std::span<const UINT8> bytes) : rest_(bytes) {}

  [[nodiscard]] std::span<const UINT8> Rest() const { return rest_; }

  std::span<const UINT8> TakeBytes(std::size_t count) {
    if (count > rest_.size()) {
      throw MalformedError("bytes are cut off");
    }
    const auto bytes = rest_.first(count);
    rest_ = rest_.subspan(count);
    return bytes;
  }

  template <class Number>
  Number Take() {
    UINT64 number = 0;
    const auto bytes = TakeBytes(sizeof(Number));
    for (std::size_t i = sizeof(Number); i > 0; --i) {
      number = number << 8 | bytes[i - 1];
    }
    return static_cast<Number>(number);
  }

 private:
  std::span<const UINT8> rest_;
};

}  // namespace Policy
