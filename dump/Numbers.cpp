#include "dump/Numbers.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace Dump {

std::optional<GUID> ParseGuid(std::string_view text) {
  constexpr std::size_t kLength = 36;
  constexpr std::size_t kDashes[]{8, 13, 18, 23};
  constexpr std::size_t kBytes[]{19, 21, 24, 26, 28, 30, 32, 34};
  if (text.size() != kLength) {
    return std::nullopt;
  }
  for (std::size_t i = 0; i < kLength; ++i) {
    const bool isDash = std::ranges::find(kDashes, i) != std::end(kDashes);
    if (isDash ? text[i] != '-' : !IsHexDigit(text[i])) {
      return std::nullopt;
    }
  }
  GUID key{*ParseInteger<UINT32>(text.substr(0, 8), 16),
           *ParseInteger<UINT16>(text.substr(9, 4), 16),
           *ParseInteger<UINT16>(text.substr(14, 4), 16),
           {}};
  for (std::size_t i = 0; i < std::size(kBytes); ++i) {
    key.Data4[i] = *ParseInteger<UINT8>(text.substr(kBytes[i], 2), 16);
  }
  return key;
}

std::string HexText(UINT32 number) {
  std::array<char, 8> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number, 16).ptr;
  return "0x" + std::string(digits.data(), end);
}

std::string EightDigits(UINT32 number) {
  std::string text;
  for (int shift = 28; shift >= 0; shift -= 4) {
    text += "0123456789ABCDEF"[number >> shift & 15];
  }
  return text;
}

}  // namespace Dump
