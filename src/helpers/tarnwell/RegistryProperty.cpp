#include "helpers/tarnwell/RegistryProperty.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "helpers/tarnwell/Utilities.h"

namespace Tarnwell {
namespace {

constexpr auto kRegistryPropertyUnit = "RegistryProperty.cpp";
constexpr auto kUnitName = "RegistryProperty";

// Parts of the error texts: they stay the same when the code moves to other lines.
constexpr int kNumberLine = 27;
constexpr int kBigEndianNumberLine = 31;
constexpr int kLongNumberLine = 35;
constexpr int kPropertySizeLine = 52;
constexpr int kPropertyLine = 56;
constexpr int kValueSizeLine = 66;
constexpr int kValueLine = 70;
constexpr auto kNumberCheck = "in_prop_data.size () >= sizeof (std::uint32_t)";
constexpr auto kLongNumberCheck = "in_prop_data.size () >= sizeof (std::uint64_t)";

constexpr std::array<std::wstring_view, 12> kTypeNames{
    L"REG_NONE",
    L"REG_SZ",
    L"REG_EXPAND_SZ",
    L"REG_BINARY",
    L"REG_DWORD",
    L"REG_DWORD_BIG_ENDIAN",
    L"REG_LINK",
    L"REG_MULTI_SZ",
    L"REG_RESOURCE_LIST",
    L"REG_FULL_RESOURCE_DESCRIPTOR",
    L"REG_RESOURCE_REQUIREMENTS_LIST",
    L"REG_QWORD",
};

/// The characters of the data; an incomplete one at the end is dropped.
std::wstring ToCharacters(std::span<const std::byte> data) {
  std::wstring text(data.size() / sizeof(wchar_t), L'\0');
  std::ranges::copy(data.first(text.size() * sizeof(wchar_t)), reinterpret_cast<std::byte*>(text.data()));
  return text;
}

/// The characters before the first zero.
std::wstring ToString(std::span<const std::byte> data) {
  const std::wstring characters = ToCharacters(data);
  return characters.substr(0, characters.find(L'\0'));
}

std::vector<std::wstring> ToStrings(std::span<const std::byte> data) {
  const std::wstring characters = ToCharacters(data);
  std::vector<std::wstring> strings;
  for (std::size_t start = 0; start < characters.size() && characters[start] != L'\0';
       start += strings.back().size() + 1) {
    strings.emplace_back(characters.c_str() + start);
  }
  return strings;
}

template <class Number>
Number ToNumber(std::span<const std::byte> data, const char* check, int line) {
  if (data.size() < sizeof(Number)) {
    RaiseFailedAssertion(check, line, kRegistryPropertyUnit, kUnitName);
  }
  Number number = 0;
  std::memcpy(&number, data.data(), sizeof(number));
  return number;
}

std::uint32_t Reversed(std::uint32_t number) {
  return number << 24 | (number & 0xFF00) << 8 | (number >> 8 & 0xFF00) | number >> 24;
}

}  // namespace

std::wstring_view RegistryTypeName(DWORD type) {
  return type < kTypeNames.size() ? kTypeNames[type] : std::wstring_view();
}

RegistryProperty DecodeRegistryProperty(DWORD type, std::span<const std::byte> data) {
  switch (type) {
    case REG_SZ:
    case REG_EXPAND_SZ:
    case REG_LINK:
      return ToString(data);
    case REG_MULTI_SZ:
      return ToStrings(data);
    case REG_DWORD:
      return ToNumber<std::uint32_t>(data, kNumberCheck, kNumberLine);
    case REG_DWORD_BIG_ENDIAN:
      return Reversed(ToNumber<std::uint32_t>(data, kNumberCheck, kBigEndianNumberLine));
    case REG_QWORD:
      return ToNumber<std::uint64_t>(data, kLongNumberCheck, kLongNumberLine);
    case REG_BINARY:
    case REG_RESOURCE_LIST:
    case REG_FULL_RESOURCE_DESCRIPTOR:
    case REG_RESOURCE_REQUIREMENTS_LIST:
      return std::vector<std::byte>(data.begin(), data.end());
    default:
      return std::monostate();
  }
}

RegistryProperty ReadDeviceProperty(HDEVINFO set, SP_DEVINFO_DATA& device, DWORD property) {
  DWORD type = REG_NONE;
  DWORD size = 0;
  if (!SetupDiGetDeviceRegistryPropertyW(set, &device, property, &type, nullptr, 0, &size)) {
    const DWORD code = GetLastError();
    if (code != ERROR_SUCCESS && code != ERROR_INSUFFICIENT_BUFFER && code != ERROR_MORE_DATA) {
      RaiseSystemError(kRegistryPropertyUnit, kPropertySizeLine, code, "FromCallback");
    }
  }
  std::vector<std::byte> data(size);
  if (!SetupDiGetDeviceRegistryPropertyW(set, &device, property, &type, reinterpret_cast<BYTE*>(data.data()),
                                         static_cast<DWORD>(data.size()), &size)) {
    RaiseSystemError(kRegistryPropertyUnit, kPropertyLine, GetLastError(), "FromCallback");
  }
  data.resize(std::min<std::size_t>(data.size(), size));
  return DecodeRegistryProperty(type, data);
}

RegistryProperty ReadRegistryValue(HKEY key, const wchar_t* name) {
  DWORD type = REG_NONE;
  DWORD size = 0;
  LONG result = RegQueryValueExW(key, name, nullptr, &type, nullptr, &size);
  if (result != ERROR_SUCCESS) {
    RaiseSystemError(kRegistryPropertyUnit, kValueSizeLine, static_cast<DWORD>(result), "RegQueryValueExW");
  }
  std::vector<std::byte> data(size);
  result = RegQueryValueExW(key, name, nullptr, &type, reinterpret_cast<BYTE*>(data.data()), &size);
  if (result != ERROR_SUCCESS) {
    RaiseSystemError(kRegistryPropertyUnit, kValueLine, static_cast<DWORD>(result), "RegQueryValueExW");
  }
  data.resize(std::min<std::size_t>(data.size(), size));
  return DecodeRegistryProperty(type, data);
}

}  // namespace Tarnwell
