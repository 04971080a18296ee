/**
 * @file
 * Numbers and keys to and from text.
 */
#pragma once

#include <WfpPlatform.h>

#include <charconv>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "catalog/Format.h"

namespace Dump {

// Of ASCII, whatever the locale.
inline bool IsDigit(char character) { return character >= '0' && character <= '9'; }
inline char ToLower(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}
inline bool IsLetter(char character) { return ToLower(character) >= 'a' && ToLower(character) <= 'z'; }
inline bool IsHexDigit(char character) {
  return IsDigit(character) || (ToLower(character) >= 'a' && ToLower(character) <= 'f');
}
inline bool IsBlank(char character) {
  return character == ' ' || character == '\t' || character == '\r' || character == '\n';
}

/// A character of the names in the platform's headers.
inline bool IsSymbolCharacter(char character) {
  return (character >= 'A' && character <= 'Z') || IsDigit(character) || character == '_';
}

/// The number that all of a text makes; empty for anything else and for one that is too large.
template <class Number>
std::optional<Number> ParseInteger(std::string_view text, int base = 10) {
  Number number{};
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number, base);
  return result.ec == std::errc() && result.ptr == end ? std::optional(number) : std::nullopt;
}

/// The key "c38d57d1-05a7-4c33-904f-7fbceee60e82"; empty for anything else.
std::optional<GUID> ParseGuid(std::string_view text);

/// "0x1f"
std::string HexText(UINT32 number);

/// "0000000A": flags as netsh prints them.
std::string EightDigits(UINT32 number);

/// Adds two lower-case hexadecimal digits.
inline void AppendHex(std::string& text, UINT8 byte) {
  text += "0123456789abcdef"[byte >> 4];
  text += "0123456789abcdef"[byte & 15];
}

}  // namespace Dump
