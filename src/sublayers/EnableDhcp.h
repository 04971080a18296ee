#pragma once

#include <WfpPlatform.h>

#include <string>

#include "Export.h"
#include "engine/Sublayer.h"

namespace WfpFirewall::Sublayers {

/// Lets DHCP and DHCPv6 through at the connect and flow-established layers. Six permits, no blocks.
class WFPFIREWALL_API EnableDhcp : public Sublayer {
 public:
  EnableDhcp(const GUID& key, const std::wstring& name, const std::wstring& description);

 private:
  void AddDhcpFilters();
};

}  // namespace WfpFirewall::Sublayers
