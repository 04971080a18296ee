#pragma once

// clang-format off: setupapi.h needs windows.h before it.
#include <WfpPlatform.h>
#include <setupapi.h>
// clang-format on

#include <cstdint>
#include <memory>
#include <string>

struct DeviceInfoListDestroyer {
  using pointer = HDEVINFO;
  void operator()(HDEVINFO set) const { SetupDiDestroyDeviceInfoList(set); }
};

/// A device of the network class in the system's own device tree, which the destructor removes. If an earlier
/// run left one with the same id, the constructor removes it first.
class TestDevice {
 public:
  struct Properties {
    std::wstring friendlyName;
    std::wstring description;
    std::uint32_t netLuidIndex;
    std::uint32_t ifType;
  };

  /// @param id instance id, such as "ROOT\\CORVANE_TEST\\0000".
  /// @throws std::runtime_error naming the call that failed.
  TestDevice(const std::wstring& id, const Properties& properties);
  ~TestDevice();
  TestDevice(const TestDevice&) = delete;
  TestDevice& operator=(const TestDevice&) = delete;

 private:
  void Register(const std::wstring& id, const Properties& properties);
  void SetDriverValues(const Properties& properties);
  void OfferNetworkInterface();

  std::unique_ptr<HDEVINFO, DeviceInfoListDestroyer> set_;
  SP_DEVINFO_DATA device_{};
};
