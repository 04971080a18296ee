#include <stringapiset.h>
#include <winbase.h>
#include <winerror.h>
#include <winnls.h>

#include <algorithm>
#include <locale>
#include <string>
#include <string_view>

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool IsLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }
bool IsCharacter(char32_t unit) {
  return unit <= 0x10FFFF && !IsHighSurrogate(unit) && !IsLowSurrogate(unit);
}

/// The characters of the text. A surrogate without its other half stays as it is.
std::u32string ToCharacters(std::wstring_view text) {
  std::u32string characters;
  for (const wchar_t wide : text) {
    const auto unit = static_cast<char32_t>(wide);
    if (!characters.empty() && IsHighSurrogate(characters.back()) && IsLowSurrogate(unit)) {
      characters.back() = 0x10000 + ((characters.back() - 0xD800) << 10) + (unit - 0xDC00);
    } else {
      characters += unit;
    }
  }
  return characters;
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

std::string ToUtf8(std::u32string_view characters) {
  std::string utf8;
  for (const char32_t character : characters) {
    AppendUtf8(utf8, IsCharacter(character) ? character : kReplacement);
  }
  return utf8;
}

/// Uses a fixed locale, so that the result does not depend on the language of the system.
wchar_t LowerCaseOf(wchar_t letter) {
  static const std::locale kUnicode("C.UTF-8");
  const auto& letters = std::use_facet<std::ctype<wchar_t>>(kUnicode);
  const wchar_t lower = letters.tolower(letter);
  return letter <= 0xFFFF && letters.toupper(lower) == letter ? lower : letter;
}

int Fail(DWORD code) {
  SetLastError(code);
  return 0;
}

}  // namespace

int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR text, int length, LPSTR buffer, int size,
                        LPCSTR defaultCharacter, BOOL* usedDefault) {
  if (codePage != CP_UTF8 || (flags & ~DWORD{WC_ERR_INVALID_CHARS}) != 0 || text == nullptr || length == 0 ||
      length < -1 || size < 0 || defaultCharacter != nullptr || usedDefault != nullptr) {
    return Fail(ERROR_INVALID_PARAMETER);
  }
  const std::u32string characters =
      ToCharacters(length == -1 ? std::wstring_view(text, std::wstring_view(text).size() + 1)
                                : std::wstring_view(text, static_cast<std::size_t>(length)));
  const bool strict = (flags & WC_ERR_INVALID_CHARS) != 0;
  if (strict && !std::all_of(characters.begin(), characters.end(), IsCharacter)) {
    return Fail(ERROR_NO_UNICODE_TRANSLATION);
  }
  const std::string utf8 = ToUtf8(characters);
  if (size != 0 && static_cast<std::size_t>(size) < utf8.size()) {
    return Fail(ERROR_INSUFFICIENT_BUFFER);
  }
  if (size != 0) {
    std::copy(utf8.begin(), utf8.end(), buffer);
  }
  return static_cast<int>(utf8.size());
}

int LCMapStringEx(LPCWSTR locale, DWORD flags, LPCWSTR text, int length, LPWSTR buffer, int size,
                  LPNLSVERSIONINFO version, LPVOID reserved, LPARAM sortHandle) {
  if (locale == nullptr || *locale != L'\0' || flags != LCMAP_LOWERCASE || text == nullptr || length < 1 ||
      size < 0 || version != nullptr || reserved != nullptr || sortHandle != 0) {
    return Fail(ERROR_INVALID_PARAMETER);
  }
  if (size != 0 && size < length) {
    return Fail(ERROR_INSUFFICIENT_BUFFER);
  }
  if (size != 0) {
    std::transform(text, text + length, buffer, LowerCaseOf);
  }
  return length;
}
