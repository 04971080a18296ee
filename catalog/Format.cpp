#include "catalog/Format.h"

#include <algorithm>
#include <cwchar>

namespace Catalog {
namespace {

void AppendHex(std::string& text, UINT32 number, int digits) {
  for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) {
    text += "0123456789abcdef"[(number >> shift) & 15];
  }
}

/// Empty if the text is not well-formed.
std::string ToUtf8(const std::wstring& text) {
  const auto convert = [&text](char* target, int size) {
    return WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, text.data(), static_cast<int>(text.size()),
                               target, size, nullptr, nullptr);
  };
  std::string utf8(static_cast<std::size_t>(convert(nullptr, 0)), '\0');
  convert(utf8.data(), static_cast<int>(utf8.size()));
  return utf8;
}

bool IsControl(wchar_t character) { return character < 0x20 || character == 0x7f; }

/// The text in UTF-8; empty if it is not fit to be shown.
std::string Printable(const std::wstring& text) {
  return text.empty() || std::ranges::any_of(text, IsControl) ? std::string() : ToUtf8(text);
}

}  // namespace

std::string FormatHex(UINT32 number) {
  std::string text = "0x";
  AppendHex(text, number, 8);
  return text;
}

std::string FormatBytes(std::span<const UINT8> bytes) {
  if (bytes.empty()) {
    return "empty";
  }
  std::string text;
  for (const UINT8 byte : bytes) {
    AppendHex(text, byte, 2);
  }
  return text;
}

std::string FormatIpV4(UINT32 address) {
  return FormatNumber(address >> 24) + '.' + FormatNumber((address >> 16) & 0xff) + '.' +
         FormatNumber((address >> 8) & 0xff) + '.' + FormatNumber(address & 0xff);
}

std::string FormatIpV6(const UINT8* address) {
  std::array<char, INET6_ADDRSTRLEN> text{};
  inet_ntop(AF_INET6, address, text.data(), text.size());
  return text.data();
}

std::string FormatSid(const SID& sid) {
  UINT64 authority = 0;
  for (const UINT8 byte : sid.IdentifierAuthority.Value) {
    authority = authority << 8 | byte;
  }
  std::string text = "S-" + FormatNumber(unsigned{sid.Revision}) + '-' + FormatNumber(authority);
  const DWORD* parts = sid.SubAuthority;
  const std::size_t count = std::min<std::size_t>(sid.SubAuthorityCount, SID_MAX_SUB_AUTHORITIES);
  for (std::size_t i = 0; i < count; ++i) {
    text += '-' + FormatNumber(parts[i]);
  }
  return text;
}

std::string FormatText(const wchar_t* text) {
  const auto* bytes = reinterpret_cast<const UINT8*>(text);
  const std::string utf8 = Printable(text);
  return utf8.empty() ? FormatBytes({bytes, (std::wcslen(text) + 1) * sizeof(wchar_t)}) : utf8;
}

std::string FormatTextOrBytes(std::span<const UINT8> bytes) {
  std::wstring text;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    text += static_cast<wchar_t>(bytes[i] | bytes[i + 1] << 8);
  }
  const bool terminated = bytes.size() % 2 == 0 && text.ends_with(L'\0');
  if (terminated) {
    text.pop_back();
  }
  const std::string utf8 = terminated ? Printable(text) : std::string();
  return utf8.empty() ? FormatBytes(bytes) : utf8;
}

}  // namespace Catalog
