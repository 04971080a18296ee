/**
 * @file
 * A fake of the device installer, the registry, IP Helper and the system's error texts. A test program that
 * links it gets its functions instead of the platform's.
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

/// The type and the bytes of a registry value or a device registry property.
struct RegistryData {
  DWORD type;
  Bytes bytes;
};
/// REG_SZ with its terminator.
RegistryData String(const std::wstring& text);
/// REG_DWORD.
RegistryData Number(std::uint32_t number);

/// A device of the network class that is present. Reading a property that it does not have gives
/// ERROR_INVALID_DATA; reading a value, ERROR_FILE_NOT_FOUND.
struct Device {
  std::optional<RegistryData> friendlyName;
  std::optional<RegistryData> description;
  std::map<std::wstring, RegistryData> driverKey;
};
/// A device with all properties and values of a network device. Its LUID is ifType << 48 | netLuidIndex
/// << 24.
Device NetworkDevice(const std::wstring& friendlyName, const std::wstring& description,
                     std::uint32_t netLuidIndex, std::uint32_t ifType = 6);

/// An adapter of GetAdaptersAddresses.
struct Adapter {
  std::wstring friendlyName;
  std::wstring description;
  std::uint64_t luid;
  DWORD ifType = 6;             ///< IF_TYPE_ETHERNET_CSMACD
  std::vector<Bytes> gateways;  ///< the bytes of socket addresses
};
/// The socket address of an IPv4 or IPv6 address given as text.
Bytes GatewayV4(const char* address);
Bytes GatewayV6(const char* address);

/// Starts again with a machine that has no devices and one adapter, loopback: every machine has it, and the
/// product never lists it. Forgets all calls, handles and planned failures.
void Reset();
void AddDevice(const Device& device);
void AddAdapter(const Adapter& adapter);
/// Replaces the device that was added as number `index` (from 0). With OnCall, this can happen in the middle
/// of a walk over the devices.
void ReplaceDevice(std::size_t index, const Device& device);

constexpr int kEveryCall = 0;
/// Makes a call fail.
/// @param function name of the platform's function.
/// @param occurrence the number of the call since Reset, from 1; kEveryCall for all.
/// @param code the function's result, or its last error if the function only returns a BOOL or a handle.
/// @param lastError the last error after the call; `code` if absent.
void FailCall(const std::string& function, int occurrence, DWORD code,
              std::optional<DWORD> lastError = std::nullopt);
/// Runs `action` immediately before that call.
void OnCall(const std::string& function, int occurrence, std::function<void()> action);
/// The system's text for `code`. For other codes it is "System message.".
void SetSystemMessage(DWORD code, const std::string& text);

/// The handles and blocks that were taken and not given back.
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
