/**
 * @file
 * Keys written as text in tables, and their order.
 */
#pragma once

#include <WfpPlatform.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>

namespace Catalog {

/// The number that a run of hexadecimal digits stands for; lower-case digits only.
constexpr UINT32 ParseHex(std::string_view digits) {
  UINT32 number = 0;
  for (const char digit : digits) {
    const std::size_t value = std::string_view("0123456789abcdef").find(digit);
    if (value == std::string_view::npos) {
      throw "not a lower-case hexadecimal digit";
    }
    number = number * 16 + static_cast<UINT32>(value);
  }
  return number;
}

/// "c38d57d1-05a7-4c33-904f-7fbceee60e82"_guid; a malformed text does not compile.
consteval GUID operator""_guid(const char* characters, std::size_t length) {
  const std::string_view text(characters, length);
  if (length != 36 || text[8] != '-' || text[13] != '-' || text[18] != '-' || text[23] != '-') {
    throw "not of the form 8-4-4-4-12";
  }
  GUID key{ParseHex(text.substr(0, 8)),
           static_cast<UINT16>(ParseHex(text.substr(9, 4))),
           static_cast<UINT16>(ParseHex(text.substr(14, 4))),
           {}};
  constexpr std::size_t kBytePositions[]{19, 21, 24, 26, 28, 30, 32, 34};
  for (std::size_t i = 0; i < std::size(kBytePositions); ++i) {
    key.Data4[i] = static_cast<UINT8>(ParseHex(text.substr(kBytePositions[i], 2)));
  }
  return key;
}

/// A strict order of keys, that of their texts.
constexpr bool Precedes(const GUID& left, const GUID& right) {
  if (left.Data1 != right.Data1) {
    return left.Data1 < right.Data1;
  }
  if (left.Data2 != right.Data2) {
    return left.Data2 < right.Data2;
  }
  if (left.Data3 != right.Data3) {
    return left.Data3 < right.Data3;
  }
  return std::ranges::lexicographical_compare(left.Data4, right.Data4);
}

/// The same order for containers.
struct KeyOrder {
  bool operator()(const GUID& left, const GUID& right) const { return Precedes(left, right); }
};

}  // namespace Catalog
