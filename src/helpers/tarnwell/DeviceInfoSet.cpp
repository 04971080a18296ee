#include "helpers/tarnwell/DeviceInfoSet.h"

#include <memory>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include "helpers/tarnwell/RegistryProperty.h"
#include "helpers/tarnwell/SetupApi.h"
#include "helpers/tarnwell/Utilities.h"

namespace Tarnwell {
namespace {

constexpr auto kDeviceInfoSetUnit = "DeviceInfoSet.cpp";

// Parts of the error texts: they stay the same when the code moves to other lines.
constexpr int kEnumLine = 73;
constexpr int kOpenKeyLine = 309;

/// GUID_DEVINTERFACE_NET; MinGW-w64 has no ndisguid.h.
constexpr GUID kNetworkInterfaceClass{
    0xCAC88484, 0x7515, 0x4C03, {0x82, 0xE6, 0x71, 0xA8, 0x7A, 0xBA, 0xC3, 0x61}};

struct RegistryKeyCloser {
  void operator()(HKEY key) const { RegCloseKey(key); }
};
using RegistryKey = std::unique_ptr<std::remove_pointer_t<HKEY>, RegistryKeyCloser>;

RegistryKey OpenDriverKey(HDEVINFO set, SP_DEVINFO_DATA& device) {
  const HKEY key = SetupDiOpenDevRegKey(set, &device, DICS_FLAG_GLOBAL, 0, DIREG_DRV, KEY_READ);
  if (key == INVALID_HANDLE_VALUE) {
    RaiseSystemError(kDeviceInfoSetUnit, kOpenKeyLine, GetLastError(), "SetupDiOpenDevRegKey");
  }
  return RegistryKey(key);
}

template <class Content>
Content Expect(RegistryProperty property, const std::string& name) {
  if (auto* content = std::get_if<Content>(&property)) {
    return std::move(*content);
  }
  throw std::runtime_error(name + " has an unexpected registry type.");
}

/// The layout of NET_LUID: 24 reserved bits, 24 bits of index, 16 bits of type.
std::uint64_t ComposeLuid(std::uint64_t netLuidIndex, std::uint64_t ifType) {
  return (netLuidIndex & 0xFFFFFF) << 24 | (ifType & 0xFFFF) << 48;
}

NetworkDevice ReadDevice(HDEVINFO set, SP_DEVINFO_DATA& device) {
  const RegistryKey key = OpenDriverKey(set, device);
  auto friendlyName =
      Expect<std::wstring>(ReadDeviceProperty(set, device, SPDRP_FRIENDLYNAME), "SPDRP_FRIENDLYNAME");
  auto description =
      Expect<std::wstring>(ReadDeviceProperty(set, device, SPDRP_DEVICEDESC), "SPDRP_DEVICEDESC");
  const auto index = Expect<std::uint32_t>(ReadRegistryValue(key.get(), L"NetLuidIndex"), "NetLuidIndex");
  const auto type = Expect<std::uint32_t>(ReadRegistryValue(key.get(), L"*IfType"), "*IfType");
  return {std::move(friendlyName), std::move(description), ComposeLuid(index, type)};
}

}  // namespace

void ForEachNetworkDevice(const std::function<void(NetworkDevice)>& visit) {
  const DeviceInfoSetHandle set = OpenPresentDevices(kNetworkInterfaceClass);
  SP_DEVINFO_DATA device{};
  device.cbSize = sizeof(device);
  for (DWORD index = 0; SetupDiEnumDeviceInfo(set.get(), index, &device); ++index) {
    visit(ReadDevice(set.get(), device));
  }
  const DWORD code = GetLastError();
  if (code != ERROR_NO_MORE_ITEMS) {
    RaiseSystemError(kDeviceInfoSetUnit, kEnumLine, code, "SetupDiEnumDeviceInfo");
  }
}

}  // namespace Tarnwell
