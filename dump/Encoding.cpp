#include "dump/Encoding.h"

#include <algorithm>
#include <cstddef>

namespace Dump {
namespace {

struct Lead {
  unsigned char first;  ///< of the lead bytes
  unsigned char last;
  unsigned char mask;     ///< of the bits that belong to the character
  std::size_t following;  ///< bytes
  char32_t least;         ///< character that needs so many bytes
};
constexpr Lead kLeads[]{
    {0x00, 0x7F, 0x7F, 0, 0},
    {0xC0, 0xDF, 0x1F, 1, 0x80},
    {0xE0, 0xEF, 0x0F, 2, 0x800},
    {0xF0, 0xF7, 0x07, 3, 0x10000},
};

constexpr bool IsContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

/// The character that a text begins with; kNotUtf8 if it begins with none.
char32_t Decode(const Lead& lead, std::string_view text) {
  char32_t character = static_cast<unsigned char>(text[0]) & lead.mask;
  if (text.size() <= lead.following) {
    return kNotUtf8;
  }
  for (const char byte : text.substr(1, lead.following)) {
    if (!IsContinuation(byte)) {
      return kNotUtf8;
    }
    character = character << 6 | (static_cast<unsigned char>(byte) & 0x3F);
  }
  return character >= lead.least && IsCharacter(character) ? character : kNotUtf8;
}

}  // namespace

char32_t TakeCharacter(std::string_view& text) {
  const auto first = static_cast<unsigned char>(text[0]);
  for (const Lead& lead : kLeads) {
    if (first < lead.first || first > lead.last) {
      continue;
    }
    const char32_t character = Decode(lead, text);
    text.remove_prefix(character == kNotUtf8 ? 1 : 1 + lead.following);
    return character;
  }
  text.remove_prefix(1);
  return kNotUtf8;
}

void AppendUtf8(std::string& text, char32_t character) {
  const auto append = [&text](char32_t byte) { text += static_cast<char>(byte); };
  const auto continuation = [&](int shift) { append(0x80 | ((character >> shift) & 0x3F)); };
  if (character < 0x80) {
    append(character);
  } else if (character < 0x800) {
    append(0xC0 | character >> 6);
    continuation(0);
  } else if (character < 0x10000) {
    append(0xE0 | character >> 12);
    continuation(6);
    continuation(0);
  } else {
    append(0xF0 | character >> 18);
    continuation(12);
    continuation(6);
    continuation(0);
  }
}

std::wstring ToWide(std::string_view text) {
  std::wstring wide;
  wide.reserve(text.size());
  while (!text.empty()) {
    const char32_t taken = TakeCharacter(text);
    const char32_t character = taken == kNotUtf8 ? kReplacement : taken;
    if constexpr (sizeof(wchar_t) == sizeof(char16_t)) {
      ForEachUnit(character, [&wide](char16_t unit) { wide += static_cast<wchar_t>(unit); });
    } else {
      wide += static_cast<wchar_t>(character);
    }
  }
  return wide;
}

std::string FromWide(std::wstring_view text) {
  std::string utf8;
  utf8.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t character = static_cast<std::make_unsigned_t<wchar_t>>(text[i]);
    const char32_t next = i + 1 < text.size() ? static_cast<std::make_unsigned_t<wchar_t>>(text[i + 1]) : 0;
    if (IsHighSurrogate(character) && IsLowSurrogate(next)) {
      character = FromSurrogates(character, next);
      ++i;
    }
    AppendUtf8(utf8, IsCharacter(character) ? character : kReplacement);
  }
  return utf8;
}

std::string Quote(std::string_view text) {
  constexpr std::size_t kMostShown = 40;
  const auto isControl = [](char character) {
    return static_cast<unsigned char>(character) < 0x20 || character == 0x7F;
  };
  const std::string_view line = text.substr(0, std::min(text.find_first_of("\r\n"), text.size()));
  std::size_t size = std::min(line.size(), kMostShown);
  while (size > 0 && size < line.size() && IsContinuation(line[size])) {
    --size;
  }
  std::string quoted(line.substr(0, size));
  std::ranges::replace_if(quoted, isControl, ' ');
  return '"' + quoted + (size < text.size() ? "..." : "") + '"';
}

}  // namespace Dump
