#pragma once

#include <WfpPlatform.h>

#include <stdexcept>
#include <string_view>

/// Parses a text such as "c38d57d1-05a7-4c33-904f-7fbceee60e82".
/// @throws std::invalid_argument for any other form.
inline GUID GuidFromText(std::string_view text) {
  std::string_view rest = text;
  const auto hex = [&](int digits) {
    unsigned long long number = 0;
    for (int i = 0; i < digits; ++i) {
      const std::size_t digit = std::string_view("0123456789abcdef").find(rest.empty() ? '?' : rest.front());
      if (digit == std::string_view::npos) throw std::invalid_argument("GUID text");
      number = number * 16 + digit;
      rest.remove_prefix(1);
    }
    return number;
  };
  const auto dash = [&] {
    if (!rest.starts_with('-')) throw std::invalid_argument("GUID text");
    rest.remove_prefix(1);
  };

  GUID guid{};
  guid.Data1 = static_cast<decltype(guid.Data1)>(hex(8));
  dash();
  guid.Data2 = static_cast<decltype(guid.Data2)>(hex(4));
  dash();
  guid.Data3 = static_cast<decltype(guid.Data3)>(hex(4));
  dash();
  for (int i = 0; i < 8; ++i) {
    if (i == 2) dash();
    guid.Data4[i] = static_cast<unsigned char>(hex(2));
  }
  if (!rest.empty()) throw std::invalid_argument("GUID text");
  return guid;
}
