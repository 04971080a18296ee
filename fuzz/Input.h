/**
 * @file
 * What the fuzz targets share: reading a case off its bytes, and stopping where a rule is broken.
 */
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <span>
#include <string>
#include <vector>

namespace Fuzz {

/// Ends the run with a finding unless the rule holds.
inline void Require(bool holds, const char* rule) {
  if (!holds) {
    std::fprintf(stderr, "Broken rule: %s\n", rule);
    std::abort();
  }
}

/// The bytes of a case, taken from front to back. Past their end everything reads as zero.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : rest_(data, size) {}

  bool IsEmpty() const { return rest_.empty(); }

  /// The next bytes, fewer at the end.
  std::span<const std::uint8_t> TakeBytes(std::size_t count) {
    const auto bytes = rest_.first(std::min(count, rest_.size()));
    rest_ = rest_.subspan(bytes.size());
    return bytes;
  }

  /// A number, least significant byte first, or any other plain record.
  template <class Plain>
  Plain Take() {
    Plain value{};
    const auto bytes = TakeBytes(sizeof(value));
    if (!bytes.empty()) {
      std::memcpy(&value, bytes.data(), bytes.size());
    }
    return value;
  }

  /// One byte's choice among the first `count` numbers, at most 256.
  std::size_t TakeIndex(std::size_t count) { return Take<std::uint8_t>() % count; }

  /// One byte's choice among the entries of a table.
  template <class Table>
  const auto& TakeOneOf(const Table& table) {
    return *std::next(std::begin(table), static_cast<std::ptrdiff_t>(TakeIndex(std::size(table))));
  }

  bool TakeFlag() { return TakeIndex(2) == 1; }

  /// A length and that many characters.
  std::string TakeText() {
    const auto bytes = TakeBytes(Take<std::uint8_t>());
    return {bytes.begin(), bytes.end()};
  }

  /// A length and that many UTF-16 units, well-formed or not, without zeros.
  std::wstring TakeWideText() {
    std::wstring text;
    for (std::size_t left = TakeIndex(kLongestWideText); left > 0; --left) {
      text += static_cast<wchar_t>(std::max<std::uint16_t>(1, Take<std::uint16_t>()));
    }
    return text;
  }

 private:
  static constexpr std::size_t kLongestWideText = 32;

  std::span<const std::uint8_t> rest_;
};

}  // namespace Fuzz
