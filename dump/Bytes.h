/**
 * @file
 * Numbers in bytes, least significant byte first.
 */
#pragma once

#include <WfpPlatform.h>

#include <cstddef>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

#include "dump/Sddl.h"

namespace Dump {

using Bytes = std::vector<UINT8>;

/// Writes an unsigned number over bytes that are there.
template <class Number>
void WriteNumber(Bytes& bytes, std::size_t offset, Number number) {
  static_assert(std::is_unsigned_v<Number>);
  for (std::size_t i = 0; i < sizeof(Number); ++i) {
    bytes[offset + i] = static_cast<UINT8>(UINT64{number} >> 8 * i);
  }
}

/// Adds an unsigned number at the end.
template <class Number>
void AppendNumber(Bytes& bytes, Number number) {
  bytes.resize(bytes.size() + sizeof(Number));
  WriteNumber(bytes, bytes.size() - sizeof(Number), number);
}

inline void AppendBytes(Bytes& bytes, std::span<const UINT8> more) {
  bytes.insert(bytes.end(), more.begin(), more.end());
}

/// Adds zeros up to a multiple of four.
inline void Align(Bytes& bytes) { bytes.resize((bytes.size() + 3) / 4 * 4); }

/// Takes bytes from front to back.
/// @throws SddlError when more is taken than there is.
class ByteReader {
 public:
  /// @param what what the bytes are: "an access control list".
  ByteReader(std::span<const UINT8> bytes, const char* what) : rest_(bytes), what_(what) {}

  [[nodiscard]] std::span<const UINT8> Rest() const { return rest_; }

  std::span<const UINT8> TakeBytes(std::size_t count) {
    if (count > rest_.size()) {
      throw SddlError(std::string(what_) + " is cut off");
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
  const char* what_;
};

}  // namespace Dump
