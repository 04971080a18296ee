#pragma once

#include <WfpPlatform.h>

#include <cstddef>
#include <string>
#include <vector>

#include "Export.h"
#include "engine/Sublayer.h"
#include "filtering/Layer.h"

namespace WfpFirewall::Sublayers {

/// Guards the interfaces of the peer-to-peer network: blocks inbound IPv4 connections from
/// 100.64.0.0/10 and permits those from given peers. A block per interface, then a permit per interface
/// if there are peers.
class WFPFIREWALL_API SkeinFirewallRules : public Sublayer {
 public:
  /// @param luids NET_LUID values of the interfaces; without any there are no filters.
  /// @param addresses IPv4 addresses of the peers in host byte order, read during construction only; null
  ///        is the same as a count of 0.
  SkeinFirewallRules(GUID key, std::wstring name, std::wstring description, std::vector<UINT64> luids,
                     const UINT32* addresses, std::size_t count);

 private:
  void AddSkeinBlockFilters(Filtering::LayerType layer);
  void AddSkeinPermitFilters(Filtering::LayerType layer);

  std::vector<UINT64> luids_;
  const UINT32* addresses_;  // valid only while the constructor runs
  std::size_t count_;
};

}  // namespace WfpFirewall::Sublayers
