#pragma once

#include "Export.h"
#include "engine/Sublayer.h"

namespace WfpFirewall::Sublayers {

/// A copy of the machine's application blocks, so that what Windows Firewall blocks stays blocked
/// despite this library's permits. A snapshot: blocks added later are not in it. Takes its identity from what
/// the host handed over at Initialize.
class WFPFIREWALL_API BlockAppsBlockedInWinFirewall : public Sublayer {
 public:
  /// @throws FirewallException as Engine::GetAllBlockedAppsFilters.
  BlockAppsBlockedInWinFirewall();
};

}  // namespace WfpFirewall::Sublayers
