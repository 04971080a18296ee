#pragma once

// clang-format off: setupapi.h needs windows.h before it.
#include <WfpPlatform.h>
#include <setupapi.h>
// clang-format on

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace Tarnwell {

/// The content of a device registry property or a registry value: nothing, a 32-bit number, a string, raw
/// bytes, a list of strings or a 64-bit number.
using RegistryProperty = std::variant<std::monostate, std::uint32_t, std::wstring, std::vector<std::byte>,
                                      std::vector<std::wstring>, std::uint64_t>;

/// The name of a registry type, such as "REG_SZ"; empty for an unknown type.
std::wstring_view RegistryTypeName(DWORD type);

/// Decodes registry data. A string ends at its first zero, a list of strings at its first empty string;
/// terminators may be missing. An unknown type gives nothing.
/// @throws std::runtime_error when the data of a number is too short.
RegistryProperty DecodeRegistryProperty(DWORD type, std::span<const std::byte> data);

/// @param property one of the SPDRP_ codes.
/// @throws std::runtime_error when the device lacks it, or as DecodeRegistryProperty.
RegistryProperty ReadDeviceProperty(HDEVINFO set, SP_DEVINFO_DATA& device, DWORD property);

/// @param key open for reading.
/// @throws std::runtime_error when the key lacks the value, or as DecodeRegistryProperty.
RegistryProperty ReadRegistryValue(HKEY key, const wchar_t* name);

}  // namespace Tarnwell
