#include "helpers/tarnwell/SetupApi.h"

#include "helpers/tarnwell/Utilities.h"

namespace Tarnwell {
namespace {

/// Part of the error text: it stays the same when the code moves to another line.
constexpr int kGetClassDevsLine = 18;

}  // namespace

DeviceInfoSetHandle OpenPresentDevices(const GUID& interfaceClass) {
  const HDEVINFO set =
      SetupDiGetClassDevsW(&interfaceClass, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
  if (set == INVALID_HANDLE_VALUE) {
    RaiseSystemError("SetupApi.cpp", kGetClassDevsLine, GetLastError(), "SetupDiGetClassDevsW");
  }
  return DeviceInfoSetHandle(set);
}

}  // namespace Tarnwell
