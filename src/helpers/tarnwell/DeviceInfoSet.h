#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace Tarnwell {

/// A network adapter as the device installer knows it.
struct NetworkDevice {
  std::wstring friendlyName;
  std::wstring description;
  std::uint64_t luid;  ///< the NET_LUID as a 64-bit number
};

/// Hands each present network device to the visitor, in the device installer's order.
/// @throws std::runtime_error when a call fails or a device lacks one of its properties; by then the
///         visitor has had the devices before it.
void ForEachNetworkDevice(const std::function<void(NetworkDevice)>& visit);

}  // namespace Tarnwell
