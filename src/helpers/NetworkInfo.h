#pragma once

#include <functional>
#include <vector>

#include "Export.h"
#include "helpers/NetworkInterface.h"

namespace WfpFirewall::Helpers {

/// The machine's network adapters.
class WFPFIREWALL_API NetworkInfo {
 public:
  /// Adapters known to the device installer, then those of IP Helper that are not among them; loopback
  /// is left out. The address lists are always empty.
  /// @throws NetworkInfoException "Failed to get interfaces. " when nothing was found and IP Helper
  ///         failed. Failures of the device installer are never reported.
  static std::vector<NetworkInterface> GetInterfaces();

  /// Copies of the interfaces for which the predicate holds, in their order.
  /// @throws std::bad_function_call for an empty predicate.
  static std::vector<NetworkInterface> Filter(const std::vector<NetworkInterface>& interfaces,
                                              const std::function<bool(const NetworkInterface&)>& predicate);
};

}  // namespace WfpFirewall::Helpers
