#pragma once

#include <WfpPlatform.h>

#include <string>

#include "Export.h"

namespace WfpFirewall {

/// An IPv6 address, held as the text or the bytes that it was made from.
class WFPFIREWALL_API IpV6Address {
 public:
  /// @param text textual form, not checked here.
  explicit IpV6Address(std::string text);
  /// @param bytes network byte order. Serves GetAddressString only; see GetAddressBytes.
  explicit IpV6Address(in6_addr bytes);

  /// The 16 bytes of the text, in network byte order.
  /// @throws FirewallException "Failed to convert ipv6 address" when the text is no IPv6 address; an
  ///         address made from bytes has no text and throws too.
  [[nodiscard]] in6_addr GetAddressBytes() const;
  /// The text as given, or the bytes formatted.
  [[nodiscard]] std::string GetAddressString() const;

 private:
  std::string text_;
  bool hasBytes_ = false;
  in6_addr bytes_{};
};

}  // namespace WfpFirewall
