#pragma once

#include <WfpPlatform.h>

#include <string>
#include <vector>

#include "Export.h"
#include "engine/Sublayer.h"

namespace WfpFirewall::Sublayers {

/// Keeps name look-ups inside the tunnel: remote port 53 is open on given interfaces and for one
/// application only. With n interfaces, 4 * (n + 2) filters.
class WFPFIREWALL_API DnsLeakProtection : public Sublayer {
 public:
  /// @param luids NET_LUID values of the interfaces on which port 53 stays open.
  /// @param permittedApp full path of the executable whose look-ups stay open on any interface.
  /// @throws FirewallException "Failed to retrieve app blob" when that path has no identifier.
  DnsLeakProtection(GUID key, std::wstring name, std::wstring description, std::vector<UINT64> luids,
                    std::wstring permittedApp);

 private:
  void AddFiltersTo(Filtering::LayerType layer);

  std::vector<UINT64> luids_;
  std::wstring permittedApp_;
};

}  // namespace WfpFirewall::Sublayers
