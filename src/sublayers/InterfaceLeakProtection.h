#pragma once

#include <WfpPlatform.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "Export.h"
#include "engine/Sublayer.h"
#include "filtering/IpV4Address.h"

namespace WfpFirewall::Sublayers {

/// Keeps outgoing connections on given interfaces, except those to local, private and multicast destinations,
/// the VPN server and explicitly permitted addresses. With n interfaces, 21 * n filters, or 20 * n
/// without permitted addresses; none without interfaces.
class WFPFIREWALL_API InterfaceLeakProtection : public Sublayer {
 public:
  /// @param luids NET_LUID values of the permitted interfaces.
  /// @param serverAddress the VPN server; stays reachable on any interface.
  /// @param permittedAddresses count IPv4 addresses that stay reachable on any interface, put into the
  ///        conditions as they are; may be null. Read only while this constructor runs.
  InterfaceLeakProtection(GUID key, std::wstring name, std::wstring description, std::vector<UINT64> luids,
                          IpV4Address serverAddress, const UINT32* permittedAddresses, std::size_t count);

 private:
  void AddFiltersV4(UINT64 luid, const IpV4Address& serverAddress, const std::optional<Filter>& permitListed);
  void AddFiltersV6(UINT64 luid);
  /// A filter with nothing but the conditions on the permitted addresses, made once for all interfaces, as
  /// the list may be long; none without addresses.
  [[nodiscard]] std::optional<Filter> PermitListedAddresses() const;

  std::vector<UINT64> luids_;
  const UINT32* permittedAddresses_;
  std::size_t permittedAddressCount_;
};

}  // namespace WfpFirewall::Sublayers
