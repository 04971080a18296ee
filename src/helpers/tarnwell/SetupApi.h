#pragma once

// clang-format off: setupapi.h needs windows.h before it.
#include <WfpPlatform.h>
#include <setupapi.h>
// clang-format on

#include <memory>

namespace Tarnwell {

struct DeviceInfoListDestroyer {
  using pointer = HDEVINFO;
  void operator()(HDEVINFO set) const { SetupDiDestroyDeviceInfoList(set); }
};
using DeviceInfoSetHandle = std::unique_ptr<HDEVINFO, DeviceInfoListDestroyer>;

/// The present devices that offer an interface of that class.
/// @throws std::runtime_error when the device installer fails.
DeviceInfoSetHandle OpenPresentDevices(const GUID& interfaceClass);

}  // namespace Tarnwell
