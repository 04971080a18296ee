#include <stringapiset.h>
#include <winbase.h>
#include <winerror.h>
#include <winnls.h>

#include <algorithm>
#include <cwchar>
#include <functional>
#include <locale>
#include <string>
#include <string_view>

namespace {

constexpr wchar_t kReplacement = 0xFFFD;

bool IsHighSurrogate(wchar_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool IsLowSurrogate(wchar_t unit) { return unit >= 0xDC00 && unit < 0xE000; }
bool IsCharacter(wchar_t unit) {
  return unit >= 0 && unit <= 0x10FFFF && !IsHighSurrogate(unit) && !IsLowSurrogate(unit);
}

/// A fixed locale, so that no result depends on the language of the system.
const std::locale& Unicode() {
  static const std::locale kUnicode("C.UTF-8");
  return kUnicode;
}

/// The characters of the text. A surrogate without its other half stays as it is.
std::wstring ToCharacters(std::wstring_view text) {
  std::wstring characters;
  for (const wchar_t unit : text) {
    if (!characters.empty() && IsHighSurrogate(characters.back()) && IsLowSurrogate(unit)) {
      characters.back() = 0x10000 + ((characters.back() - 0xD800) << 10) + (unit - 0xDC00);
    } else {
      characters += unit;
    }
  }
  return characters;
}

std::string ToUtf8(std::wstring characters) {
  std::ranges::replace_if(characters, std::not_fn(IsCharacter), kReplacement);
  std::string utf8(characters.size() * 4, '\0');
  std::mbstate_t state{};
  const wchar_t* unread = nullptr;
  char* end = nullptr;
  std::use_facet<std::codecvt<wchar_t, char, std::mbstate_t>>(Unicode()).out(
      state, characters.data(), characters.data() + characters.size(), unread, utf8.data(),
      utf8.data() + utf8.size(), end);
  utf8.resize(static_cast<std::size_t>(end - utf8.data()));
  return utf8;
}

wchar_t LowerCaseOf(wchar_t letter) {
  const auto& letters = std::use_facet<std::ctype<wchar_t>>(Unicode());
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
  const std::wstring characters =
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
