/**
 * @file
 * For all fuzz targets: reads values from the bytes of a case, and stops if a requirement is not met.
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

/// Ends the run with a finding if `holds` is false.
inline void Require(bool holds, const char* rule) {
  if (!holds) {
    std::fprintf(stderr, "Broken rule: %s\n", rule);
    std::abort();
  }
}

/// The bytes of a case, read from front to back. After their end every value is zero.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : rest_(data, size) {}

  [[nodiscard]] bool IsEmpty() const { return rest_.empty(); }

  /// The next `count` bytes; fewer at the end.
  std::span<const std::uint8_t> TakeBytes(std::size_t count) {
    const auto bytes = rest_.first(std::min(count, rest_.size()));
    rest_ = rest_.subspan(bytes.size());
    return bytes;
  }

  /// A number, least significant byte first, or another plain record.
  template <class Plain>
  Plain Take() {
    Plain value{};
    const auto bytes = TakeBytes(sizeof(value));
    if (!bytes.empty()) {
      std::memcpy(&value, bytes.data(), bytes.size());
    }
    return value;
  }

  /// A number below `count`, chosen by one byte. @param count at most 256.
  std::size_t TakeIndex(std::size_t count) { return Take<std::uint8_t>() % count; }

  /// An entry of a table, chosen by one byte.
  template <class Table>
  const auto& TakeOneOf(const Table& table) {
    return *std::next(std::begin(table), static_cast<std::ptrdiff_t>(TakeIndex(std::size(table))));
  }

  bool TakeFlag() { return TakeIndex(2) == 1; }

  /// Reads a length and that many characters.
  std::string TakeText() {
    const auto bytes = TakeBytes(Take<std::uint8_t>());
    return {bytes.begin(), bytes.end()};
  }

  /// Reads a length and that many UTF-16 units, which may be invalid text but have no zeros.
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
