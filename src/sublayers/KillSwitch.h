#pragma once

#include <WfpPlatform.h>

#include <string>

#include "Export.h"
#include "engine/Sublayer.h"

namespace WfpFirewall::Sublayers {

/// Cuts the machine off the network: blocks every connection except loopback and those to a fixed list of
/// local, link-local, multicast and broadcast destinations. Name look-ups to these are blocked too. 51
/// filters.
class WFPFIREWALL_API KillSwitch : public Sublayer {
 public:
  KillSwitch(GUID key, std::wstring name, std::wstring description);
  KillSwitch(const KillSwitch&) = default;
  KillSwitch(KillSwitch&&) = default;
  KillSwitch& operator=(const KillSwitch&) = default;
  KillSwitch& operator=(KillSwitch&&) = default;
  ~KillSwitch() override = default;

  /// Appends the class's own filters. The constructor has done so; a second run appends them again.
  virtual void BuildFilters();
};

}  // namespace WfpFirewall::Sublayers
