#include "e2e/discovery/TestDevice.h"

#include <stdexcept>
#include <type_traits>

namespace {

/// GUID_DEVCLASS_NET and GUID_DEVINTERFACE_NET.
constexpr GUID kNetworkClass{0x4D36E972, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}};
constexpr GUID kNetworkInterfaceClass{
    0xCAC88484, 0x7515, 0x4C03, {0x82, 0xE6, 0x71, 0xA8, 0x7A, 0xBA, 0xC3, 0x61}};

struct RegistryKeyCloser {
  void operator()(HKEY key) const { RegCloseKey(key); }
};
using RegistryKey = std::unique_ptr<std::remove_pointer_t<HKEY>, RegistryKeyCloser>;

void Check(bool succeeded, const char* call) {
  if (!succeeded) {
    throw std::runtime_error(std::string(call) + " failed with " + std::to_string(GetLastError()));
  }
}

HDEVINFO CreateSet() {
  const HDEVINFO set = SetupDiCreateDeviceInfoList(&kNetworkClass, nullptr);
  Check(set != INVALID_HANDLE_VALUE, "SetupDiCreateDeviceInfoList");
  return set;
}

void SetNumber(HKEY key, const wchar_t* name, DWORD number) {
  const LONG result =
      RegSetValueExW(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof(number));
  SetLastError(static_cast<DWORD>(result));
  Check(result == ERROR_SUCCESS, "RegSetValueExW");
}

}  // namespace

TestDevice::TestDevice(const std::wstring& id, const Properties& properties) : set_(CreateSet()) {
  device_.cbSize = sizeof(device_);
  if (SetupDiOpenDeviceInfoW(set_.get(), id.c_str(), nullptr, 0, &device_)) {
    Check(SetupDiRemoveDevice(set_.get(), &device_), "SetupDiRemoveDevice");
    set_.reset(CreateSet());
  }
  Register(id, properties);
  SetDriverValues(properties);
  OfferNetworkInterface();
}

TestDevice::~TestDevice() { SetupDiRemoveDevice(set_.get(), &device_); }

void TestDevice::Register(const std::wstring& id, const Properties& properties) {
  Check(SetupDiCreateDeviceInfoW(set_.get(), id.c_str(), &kNetworkClass, properties.description.c_str(),
                                 nullptr, 0, &device_),
        "SetupDiCreateDeviceInfoW");
  Check(SetupDiRegisterDeviceInfo(set_.get(), &device_, 0, nullptr, nullptr, nullptr),
        "SetupDiRegisterDeviceInfo");
  Check(SetupDiSetDeviceRegistryPropertyW(
            set_.get(), &device_, SPDRP_FRIENDLYNAME,
            reinterpret_cast<const BYTE*>(properties.friendlyName.c_str()),
            static_cast<DWORD>((properties.friendlyName.size() + 1) * sizeof(wchar_t))),
        "SetupDiSetDeviceRegistryPropertyW");
}

void TestDevice::SetDriverValues(const Properties& properties) {
  const HKEY key =
      SetupDiCreateDevRegKeyW(set_.get(), &device_, DICS_FLAG_GLOBAL, 0, DIREG_DRV, nullptr, nullptr);
  Check(key != INVALID_HANDLE_VALUE, "SetupDiCreateDevRegKeyW");
  const RegistryKey owner(key);
  SetNumber(key, L"NetLuidIndex", properties.netLuidIndex);
  SetNumber(key, L"*IfType", properties.ifType);
}

void TestDevice::OfferNetworkInterface() {
  SP_DEVICE_INTERFACE_DATA offered{};
  offered.cbSize = sizeof(offered);
  Check(SetupDiCreateDeviceInterfaceW(set_.get(), &device_, &kNetworkInterfaceClass, nullptr, 0, &offered),
        "SetupDiCreateDeviceInterfaceW");
}
