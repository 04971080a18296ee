/**
 * @file
 * Letters of ASCII, whatever the locale.
 */
#pragma once

namespace Policy {

constexpr bool IsAscii(char character) { return static_cast<unsigned char>(character) < 0x80; }
constexpr char ToLower(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}
constexpr char ToUpper(char character) {
  return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
}

}  // namespace Policy
