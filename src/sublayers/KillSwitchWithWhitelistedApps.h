#pragma once

#include <WfpPlatform.h>

#include <string>
#include <vector>

#include "Export.h"
#include "sublayers/KillSwitch.h"

namespace WfpFirewall::Sublayers {

/// A kill switch that lets given applications through: its filters, then one permit per application in
/// each of the kill switch's layers.
class WFPFIREWALL_API KillSwitchWithWhitelistedApps : public KillSwitch {
 public:
  /// @param killSwitch copied, left unchanged.
  /// @param apps full paths of executables.
  /// @throws FirewallException "Failed to retrieve app blob" for a path that has no identifier.
  KillSwitchWithWhitelistedApps(KillSwitch& killSwitch, std::vector<std::wstring> apps);

  /// Appends the application permits. The constructor has done so; a second run appends them again.
  void BuildFilters() override;

  /// A copy of the paths, in the order given.
  [[nodiscard]] std::vector<std::wstring> GetApps() const;

 private:
  std::vector<std::wstring> apps_;
};

}  // namespace WfpFirewall::Sublayers
