#pragma once

#include <cstdint>
#include <string>

#include "Export.h"

namespace WfpFirewall {

/// An IPv4 address, held as the dotted-quad text or as the number that it was made from.
class WFPFIREWALL_API IpV4Address {
 public:
  /// @param address host byte order. A number with its top bit set (128.0.0.0 and above) counts as "see the
  ///        text": such addresses must be given as text.
  explicit IpV4Address(int address);
  /// @param text dotted quad, not checked here.
  explicit IpV4Address(std::string text);

  /// The address in host byte order; 0 when the text does not parse.
  [[nodiscard]] std::uint32_t GetAddressInt() const;
  /// The text as given. An address made from a number prints with its octets reversed.
  [[nodiscard]] std::string GetAddressString() const;
  /// Compares the texts only: any two addresses made from numbers are equal.
  bool operator==(const IpV4Address& other) const;

 private:
  std::string text_;
  std::int32_t address_;
};

// All four are made from numbers and so compare equal. 255.255.255.255 has its top bit set: GetAddressInt
// gives 0 for it.
WFPFIREWALL_API IpV4Address IpV4AddressNone();       ///< 255.255.255.255
WFPFIREWALL_API IpV4Address IpV4AddressAny();        ///< 0.0.0.0
WFPFIREWALL_API IpV4Address IpV4AddressLoopback();   ///< 127.0.0.1
WFPFIREWALL_API IpV4Address IpV4AddressBroadcast();  ///< 255.255.255.255

}  // namespace WfpFirewall
