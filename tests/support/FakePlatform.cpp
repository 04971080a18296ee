#include "support/FakePlatform.h"

// The Windows SDK would declare the functions of iphlpapi.h, two of which are defined here, as imported.
#define IPHLPAPI_DLL_LINKAGE
// clang-format off: these need the headers above.
#include <iphlpapi.h>
#include <setupapi.h>
// clang-format on

#include <algorithm>
#include <cstring>
#include <list>
#include <set>
#include <sstream>
#include <utility>

#include "support/AdapterRecords.h"

namespace FakePlatform {
namespace {

struct Failure {
  DWORD code;
  DWORD lastError;
};
using Occurrence = std::pair<std::string, int>;

struct Machine {
  std::vector<Device> devices;
  std::vector<Adapter> adapters{
      {L"Loopback Pseudo-Interface 1", L"Software Loopback Interface 1", 0x0018000001000000, 24, {}}};
  std::map<DWORD, std::string> messages;
  std::map<Occurrence, Failure> failures;
  std::map<Occurrence, std::function<void()>> actions;
  std::map<std::string, int> counts;
  std::vector<std::string> calls;
  std::set<HDEVINFO> sets;
  std::map<HKEY, std::size_t> keys;
  std::list<std::string> givenMessages;
};
Machine machine;
/// Reset does not change it, so that a handle is never used twice and an old one is not valid.
std::uintptr_t lastHandle = 0;
/// The last error after a function succeeds. It is no code of the platform, so a caller that takes it for the
/// reason of a failure is noticed.
constexpr DWORD kStaleError = 0xDEAD;

std::ostream& operator<<(std::ostream& out, const GUID& guid) {
  out << guid.Data1 << '-' << guid.Data2 << '-' << guid.Data3;
  for (const unsigned byte : guid.Data4) {
    out << '-' << byte;
  }
  return out;
}

std::string Narrow(const wchar_t* text) {
  std::string narrow;
  for (; *text != L'\0'; ++text) {
    narrow.push_back(static_cast<char>(*text));
  }
  return narrow;
}

/// Records a call. Gives the failure that is planned for it, if any.
template <class... Arguments>
std::optional<Failure> Enter(const std::string& function, const Arguments&... arguments) {
  const Occurrence occurrence{function, ++machine.counts[function]};
  std::ostringstream call;
  [[maybe_unused]] const char* separator = "";
  call << std::hex << function << '(';
  ((call << std::exchange(separator, ", ") << arguments), ...);
  call << ')';
  machine.calls.push_back(call.str());
  if (const auto action = machine.actions.find(occurrence); action != machine.actions.end()) {
    action->second();
  }
  for (const Occurrence& key : {occurrence, Occurrence{function, kEveryCall}}) {
    if (const auto failure = machine.failures.find(key); failure != machine.failures.end()) {
      SetLastError(failure->second.lastError);
      return failure->second;
    }
  }
  SetLastError(kStaleError);
  return std::nullopt;
}

BOOL Fail(DWORD code) {
  SetLastError(code);
  return FALSE;
}

template <class Handle>
Handle NewHandle() {
  return reinterpret_cast<Handle>(++lastHandle);
}

/// The device that a record of a set stands for. Sets the last error and gives null if there is none.
const Device* Find(HDEVINFO set, const SP_DEVINFO_DATA* record) {
  if (!machine.sets.contains(set)) {
    SetLastError(ERROR_INVALID_HANDLE);
    return nullptr;
  }
  if (record->cbSize != sizeof(SP_DEVINFO_DATA) || record->DevInst >= machine.devices.size()) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return nullptr;
  }
  return &machine.devices[record->DevInst];
}

template <class SocketAddress>
Bytes ToBytes(const SocketAddress& address) {
  const auto* first = reinterpret_cast<const std::uint8_t*>(&address);
  return {first, first + sizeof(address)};
}

}  // namespace

RegistryData String(const std::wstring& text) {
  const auto* first = reinterpret_cast<const std::uint8_t*>(text.c_str());
  return {REG_SZ, {first, first + (text.size() + 1) * sizeof(wchar_t)}};
}

RegistryData Number(std::uint32_t number) {
  const auto byte = [number](int index) { return static_cast<std::uint8_t>(number >> (8 * index)); };
  return {REG_DWORD, {byte(0), byte(1), byte(2), byte(3)}};
}

Device NetworkDevice(const std::wstring& friendlyName, const std::wstring& description,
                     std::uint32_t netLuidIndex, std::uint32_t ifType) {
  return {String(friendlyName),
          String(description),
          {{L"NetLuidIndex", Number(netLuidIndex)}, {L"*IfType", Number(ifType)}}};
}

Bytes GatewayV4(const char* address) {
  sockaddr_in socketAddress{};
  socketAddress.sin_family = AF_INET;
  inet_pton(AF_INET, address, &socketAddress.sin_addr);
  return ToBytes(socketAddress);
}

Bytes GatewayV6(const char* address) {
  sockaddr_in6 socketAddress{};
  socketAddress.sin6_family = AF_INET6;
  inet_pton(AF_INET6, address, &socketAddress.sin6_addr);
  return ToBytes(socketAddress);
}

void Reset() { machine = Machine(); }

void AddDevice(const Device& device) { machine.devices.push_back(device); }

void AddAdapter(const Adapter& adapter) { machine.adapters.push_back(adapter); }

void ReplaceDevice(std::size_t index, const Device& device) { machine.devices.at(index) = device; }

void FailCall(const std::string& function, int occurrence, DWORD code, std::optional<DWORD> lastError) {
  machine.failures[{function, occurrence}] = {code, lastError.value_or(code)};
}

void OnCall(const std::string& function, int occurrence, std::function<void()> action) {
  machine.actions[{function, occurrence}] = std::move(action);
}

void SetSystemMessage(DWORD code, const std::string& text) { machine.messages[code] = text; }

OpenHandles GetOpenHandles() {
  return {static_cast<int>(machine.sets.size()), static_cast<int>(machine.keys.size()),
          static_cast<int>(machine.givenMessages.size())};
}

std::vector<std::string> GetCalls() { return machine.calls; }

}  // namespace FakePlatform

#if defined(_WIN32)
#define IMPORTED(function) Fake##function
#else
#define IMPORTED(function) function
#endif

using namespace FakePlatform;

extern "C" {

HDEVINFO WINAPI IMPORTED(SetupDiGetClassDevsW)(const GUID* classGuid, PCWSTR enumerator, HWND window,
                                               DWORD flags) {
  if (Enter("SetupDiGetClassDevsW", *classGuid, enumerator != nullptr, window != nullptr, flags)) {
    return INVALID_HANDLE_VALUE;
  }
  return *machine.sets.insert(NewHandle<HDEVINFO>()).first;
}

BOOL WINAPI IMPORTED(SetupDiEnumDeviceInfo)(HDEVINFO set, DWORD index, PSP_DEVINFO_DATA record) {
  if (Enter("SetupDiEnumDeviceInfo", index)) {
    return FALSE;
  }
  if (index >= machine.devices.size()) {
    return Fail(ERROR_NO_MORE_ITEMS);
  }
  record->DevInst = index;
  return Find(set, record) != nullptr;
}

BOOL WINAPI IMPORTED(SetupDiGetDeviceRegistryPropertyW)(HDEVINFO set, PSP_DEVINFO_DATA record, DWORD property,
                                                        PDWORD type, PBYTE buffer, DWORD size,
                                                        PDWORD requiredSize) {
  const auto failure = Enter("SetupDiGetDeviceRegistryPropertyW", record->DevInst, property);
  const Device* device = Find(set, record);
  if (device == nullptr) {
    return FALSE;
  }
  const auto& data = property == SPDRP_FRIENDLYNAME ? device->friendlyName : device->description;
  if (!data || (property != SPDRP_FRIENDLYNAME && property != SPDRP_DEVICEDESC)) {
    return Fail(failure ? failure->lastError : ERROR_INVALID_DATA);
  }
  *type = data->type;
  *requiredSize = static_cast<DWORD>(data->bytes.size());
  if (failure) {
    return Fail(failure->lastError);
  }
  if (size < data->bytes.size()) {
    return Fail(ERROR_INSUFFICIENT_BUFFER);
  }
  std::copy(data->bytes.begin(), data->bytes.end(), buffer);
  return TRUE;
}

HKEY WINAPI IMPORTED(SetupDiOpenDevRegKey)(HDEVINFO set, PSP_DEVINFO_DATA record, DWORD scope, DWORD profile,
                                           DWORD keyType, REGSAM access) {
  const auto failure = Enter("SetupDiOpenDevRegKey", record->DevInst, scope, profile, keyType, access);
  if (failure || Find(set, record) == nullptr) {
    return static_cast<HKEY>(INVALID_HANDLE_VALUE);
  }
  return machine.keys.emplace(NewHandle<HKEY>(), record->DevInst).first->first;
}

BOOL WINAPI IMPORTED(SetupDiDestroyDeviceInfoList)(HDEVINFO set) {
  Enter("SetupDiDestroyDeviceInfoList");
  return machine.sets.erase(set) == 1 ? TRUE : Fail(ERROR_INVALID_HANDLE);
}

LONG WINAPI IMPORTED(RegQueryValueExW)(HKEY key, LPCWSTR name, LPDWORD, LPDWORD type, LPBYTE buffer,
                                       LPDWORD size) {
  if (const auto failure = Enter("RegQueryValueExW", Narrow(name))) {
    return static_cast<LONG>(failure->code);
  }
  const auto device = machine.keys.find(key);
  if (device == machine.keys.end()) {
    return ERROR_INVALID_HANDLE;
  }
  const auto& values = machine.devices[device->second].driverKey;
  const auto value = values.find(name);
  if (value == values.end()) {
    return ERROR_FILE_NOT_FOUND;
  }
  const Bytes& bytes = value->second.bytes;
  *type = value->second.type;
  const DWORD room = std::exchange(*size, static_cast<DWORD>(bytes.size()));
  if (buffer != nullptr && room < bytes.size()) {
    return ERROR_MORE_DATA;
  }
  if (buffer != nullptr) {
    std::copy(bytes.begin(), bytes.end(), buffer);
  }
  return ERROR_SUCCESS;
}

LONG WINAPI IMPORTED(RegCloseKey)(HKEY key) {
  Enter("RegCloseKey");
  return machine.keys.erase(key) == 1 ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

DWORD WINAPI IMPORTED(FormatMessageA)(DWORD flags, LPCVOID, DWORD code, DWORD language, LPSTR buffer, DWORD,
                                      va_list*) {
  if (Enter("FormatMessageA", flags, code, language) || (flags & FORMAT_MESSAGE_ALLOCATE_BUFFER) == 0) {
    return 0;
  }
  const auto text = machine.messages.find(code);
  std::string& message =
      machine.givenMessages.emplace_back(text == machine.messages.end() ? "System message." : text->second);
  char* given = message.data();
  std::memcpy(buffer, &given, sizeof(given));
  return static_cast<DWORD>(message.size());
}

HLOCAL WINAPI IMPORTED(LocalFree)(HLOCAL memory) {
  Enter("LocalFree");
  return std::erase_if(machine.givenMessages,
                       [memory](const std::string& message) { return message.data() == memory; }) == 1
             ? nullptr
             : memory;
}

ULONG WINAPI GetAdaptersAddresses(ULONG family, ULONG flags, PVOID, PIP_ADAPTER_ADDRESSES buffer,
                                  PULONG size) {
  const auto failure = Enter("GetAdaptersAddresses", family, flags, *size);
  const std::size_t needed = SizeOfRecords(machine.adapters);
  const ULONG room = std::exchange(*size, static_cast<ULONG>(needed));
  if (failure) {
    return failure->code;
  }
  if (room < needed) {
    return ERROR_BUFFER_OVERFLOW;
  }
  WriteRecords(machine.adapters, buffer);
  return NO_ERROR;
}

NETIO_STATUS WINAPI ConvertInterfaceLuidToIndex(const NET_LUID* luid, PNET_IFINDEX index) {
  if (const auto failure = Enter("ConvertInterfaceLuidToIndex", luid->Value)) {
    return failure->code;
  }
  const auto adapter =
      std::find_if(machine.adapters.begin(), machine.adapters.end(),
                   [luid](const Adapter& candidate) { return candidate.luid == luid->Value; });
  if (adapter == machine.adapters.end()) {
    return ERROR_FILE_NOT_FOUND;
  }
  *index = static_cast<NET_IFINDEX>(adapter - machine.adapters.begin()) + 1;
  return NO_ERROR;
}

#if defined(_WIN32)
// The platform's headers declare these functions as imported: callers use a pointer named __imp_<function>.
// It is defined here, so that the linker does not take that of the import library.
// NOLINTNEXTLINE(bugprone-macro-parentheses): the names take no parentheses.
#define IMPORT_POINTER(function) decltype(&function) __imp_##function = &Fake##function;
IMPORT_POINTER(SetupDiGetClassDevsW)
IMPORT_POINTER(SetupDiEnumDeviceInfo)
IMPORT_POINTER(SetupDiGetDeviceRegistryPropertyW)
IMPORT_POINTER(SetupDiOpenDevRegKey)
IMPORT_POINTER(SetupDiDestroyDeviceInfoList)
IMPORT_POINTER(RegQueryValueExW)
IMPORT_POINTER(RegCloseKey)
IMPORT_POINTER(FormatMessageA)
IMPORT_POINTER(LocalFree)
// For callers, these two are imported with the Windows SDK and ordinary functions with MinGW-w64.
decltype(&GetAdaptersAddresses) __imp_GetAdaptersAddresses = &GetAdaptersAddresses;
decltype(&ConvertInterfaceLuidToIndex) __imp_ConvertInterfaceLuidToIndex = &ConvertInterfaceLuidToIndex;
#endif

}  // extern "C"
