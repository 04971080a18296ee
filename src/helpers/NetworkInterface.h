#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Export.h"
#include "filtering/IpV4Address.h"
#include "filtering/IpV6Address.h"

namespace WfpFirewall::Helpers {

/// One network adapter of the machine.
class WFPFIREWALL_API NetworkInterface {
 public:
  NetworkInterface(std::wstring name, std::wstring description, std::vector<IpV4Address> ipv4Addresses,
                   std::vector<IpV6Address> ipv6Addresses, std::uint64_t luid);

  /// What users call the adapter.
  [[nodiscard]] std::wstring GetName() const;
  /// What the device is.
  [[nodiscard]] std::wstring GetDescription() const;
  [[nodiscard]] std::vector<IpV4Address> GetIpV4Addresses() const;
  [[nodiscard]] std::vector<IpV6Address> GetIpV6Addresses() const;
  /// The NET_LUID as a 64-bit number.
  [[nodiscard]] std::uint64_t GetLuid() const;

  /// Appends the address if the list of its kind already holds an equal one; otherwise does nothing.
  void OfferAddress(const IpV4Address& address);
  void OfferAddress(const IpV6Address& address);

 private:
  std::wstring name_;
  std::wstring description_;
  std::vector<IpV4Address> ipv4Addresses_;
  std::vector<IpV6Address> ipv6Addresses_;
  std::uint64_t luid_;
};

}  // namespace WfpFirewall::Helpers
