/**
 * @file
 * Text in UTF-8, UTF-16 and wide characters.
 */
#pragma once

#include <string>
#include <string_view>

namespace Dump {

/// What stands for a character that is none.
inline constexpr char32_t kReplacement = 0xFFFD;

constexpr bool IsHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
constexpr bool IsLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }
constexpr bool IsCharacter(char32_t unit) {
  return unit <= 0x10FFFF && !IsHighSurrogate(unit) && !IsLowSurrogate(unit);
}
/// The character of a pair of surrogates.
constexpr char32_t FromSurrogates(char32_t high, char32_t low) {
  return 0x10000 + ((high - 0xD800) << 10) + (low - 0xDC00);
}

/// Takes the first character off a text that is not empty; 0xFFFFFFFF and one byte where it is not UTF-8.
char32_t TakeCharacter(std::string_view& text);
inline constexpr char32_t kNotUtf8 = 0xFFFFFFFF;

void AppendUtf8(std::string& text, char32_t character);

/// Hands the one or two units of UTF-16 of a character to a function.
template <class Append>
void ForEachUnit(char32_t character, Append append) {
  if (character < 0x10000) {
    append(static_cast<char16_t>(character));
  } else {
    append(static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10)));
    append(static_cast<char16_t>(0xDC00 + (character & 0x3FF)));
  }
}

/// Text in UTF-8 as the platform's wide characters. What is not UTF-8 becomes U+FFFD.
std::wstring ToWide(std::string_view text);
/// The reverse; what is no character becomes U+FFFD.
std::string FromWide(std::wstring_view text);

/// The text in quotes, for a message: without control characters, of a long one only the beginning of its
/// first line.
std::string Quote(std::string_view text);

}  // namespace Dump
