/**
 * @file
 * Bytes as tests write them.
 */
#pragma once

#include <WfpPlatform.h>

#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The bytes of "01 00 0480"; blanks are for the reader.
inline std::vector<UINT8> FromHex(std::string_view digits) {
  std::string rest;
  for (const char digit : digits) {
    if (digit != ' ') {
      rest += digit;
    }
  }
  std::vector<UINT8> bytes;
  for (std::size_t i = 0; i + 1 < rest.size(); i += 2) {
    bytes.push_back(static_cast<UINT8>(std::stoul(rest.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}

/// "01000480"
inline std::string ToHex(std::span<const UINT8> bytes) {
  std::string digits;
  for (const UINT8 value : bytes) {
    digits += "0123456789abcdef"[value >> 4];
    digits += "0123456789abcdef"[value & 15];
  }
  return digits;
}
inline std::string ToHex(const FWP_BYTE_BLOB& blob) {
  return ToHex(std::span<const UINT8>(blob.data, blob.size));
}
