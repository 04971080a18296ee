#pragma once

#include <WfpPlatform.h>

#include <vector>

#include "Export.h"
#include "sublayers/KillSwitch.h"

namespace WfpFirewall::Sublayers {

/// A kill switch confined to traffic that does not run over given interfaces: each of its filters gets
/// one more condition per interface.
class WFPFIREWALL_API KillSwitchFilteredByInterface : public KillSwitch {
 public:
  /// @param killSwitch copied, left unchanged.
  /// @param luids NET_LUID values of the interfaces to spare.
  KillSwitchFilteredByInterface(KillSwitch& killSwitch, std::vector<UINT64> luids);

  /// Adds the interface conditions. The constructor has done so; a second run adds them again.
  void BuildFilters() override;

 private:
  std::vector<UINT64> luids_;
};

}  // namespace WfpFirewall::Sublayers
