#include "policy/Address.h"

#include <array>

#include "catalog/Format.h"

namespace Policy {

std::optional<Address> ParseAddress(std::string_view text) {
  const std::string terminated(text);
  std::array<UINT8, 16> bytes{};
  if (inet_pton(AF_INET6, terminated.c_str(), bytes.data()) == 1) {
    return Address{IpVersion::V6, FromBytes(bytes.data())};
  }
  // Reading it as IPv6 may have written some bytes before it failed.
  bytes.fill(0);
  if (inet_pton(AF_INET, terminated.c_str(), bytes.data() + 12) == 1) {
    return Address{IpVersion::V4, FromBytes(bytes.data())};
  }
  return std::nullopt;
}

std::string FormatAddress(IpVersion ipVersion, Number address) {
  return ipVersion == IpVersion::V4 ? Catalog::FormatIpV4(static_cast<UINT32>(address.low))
                                    : Catalog::FormatIpV6(ToBytes(address).data());
}

}  // namespace Policy
