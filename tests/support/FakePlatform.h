/**
 * @file
 * A scripted machine in place of the device installer, the registry, IP Helper and the system's error
 * texts. A test program that links it gets its functions instead of the platform's.
 */
#pragma once

#include <WfpPlatform.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace FakePlatform {

using Bytes = std::vector<std::uint8_t>;

/// What a registry value or a device registry property holds.
struct RegistryData {
  DWORD type;
  Bytes bytes;
};
/// REG_SZ with its terminator.
RegistryData String(const std::wstring& text);
/// REG_DWORD.
RegistryData Number(std::uint32_t number);

/// A present device of the network class. What is absent reads as an error: ERROR_INVALID_DATA for a
/// property, ERROR_FILE_NOT_FOUND for a value.
struct Device {
  std::optional<RegistryData> friendlyName;
  std::optional<RegistryData> description;
  std::map<std::wstring, RegistryData> driverKey;
};
/// A device with everything that a network device has. Its LUID is ifType << 48 | netLuidIndex << 24.
Device NetworkDevice(const std::wstring& friendlyName, const std::wstring& description,
                     std::uint32_t netLuidIndex, std::uint32_t ifType = 6);

/// An adapter of GetAdaptersAddresses.
struct Adapter {
  std::wstring friendlyName;
  std::wstring description;
  std::uint64_t luid;
  DWORD ifType = 6;             ///< IF_TYPE_ETHERNET_CSMACD
  std::vector<Bytes> gateways;  ///< socket addresses as they lie in memory
};
/// The socket address of a dotted-quad or IPv6 address.
Bytes GatewayV4(const char* address);
Bytes GatewayV6(const char* address);

/// A machine without devices whose one adapter is loopback (which every machine has, and which no
/// interface list shows), without failures, calls or open handles.
void Reset();
void AddDevice(const Device& device);
void AddAdapter(const Adapter& adapter);
/// Puts `device` in the place of the one added as number `index` (from 0), also between two calls of a
/// walk: see OnCall.
void ReplaceDevice(std::size_t index, const Device& device);

constexpr int kEveryCall = 0;
/// Makes a call fail.
/// @param function name of the platform's function.
/// @param occurrence which call since Reset, from 1; kEveryCall for all.
/// @param code the function's result, or its last error where the result is only yes or no.
/// @param lastError what GetLastError gives after it; `code` if absent.
void FailCall(const std::string& function, int occurrence, DWORD code,
              std::optional<DWORD> lastError = std::nullopt);
/// Runs `action` right before that call.
void OnCall(const std::string& function, int occurrence, std::function<void()> action);
/// The system's text for `code`. For other codes it is "System message.".
void SetSystemMessage(DWORD code, const std::string& text);

/// What was taken and not given back.
struct OpenHandles {
  int deviceSets = 0;
  int keys = 0;
  int messages = 0;
  bool operator==(const OpenHandles&) const = default;
};
OpenHandles GetOpenHandles();

/// Every call since Reset with its arguments, such as "SetupDiOpenDevRegKey(0, 1, 0, 2, 20019)". Numbers
/// are hexadecimal; a device is shown by its number, from 0.
std::vector<std::string> GetCalls();

}  // namespace FakePlatform
