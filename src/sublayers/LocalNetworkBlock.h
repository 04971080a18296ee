#pragma once

#include <WfpPlatform.h>

#include <string>

#include "Export.h"
#include "engine/Sublayer.h"

namespace WfpFirewall::Sublayers {

/// Cuts the machine off its local networks: blocks connections to and from the private IPv4 ranges and
/// the IPv6 link-local and unique-local ranges, except to port 53. 15 filters.
class WFPFIREWALL_API LocalNetworkBlock : public Sublayer {
 public:
  LocalNetworkBlock(GUID key, std::wstring name, std::wstring description);

 private:
  void AddLocalNetworkFilters();
};

}  // namespace WfpFirewall::Sublayers
