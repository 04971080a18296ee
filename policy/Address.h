/**
 * @file
 * IP addresses and networks.
 */
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "catalog/Layers.h"
#include "policy/Number.h"

namespace Policy {

using Catalog::IpVersion;

/// An address with its IP version.
struct Address {
  IpVersion ipVersion;
  Number number;
};

/// The address of a text such as "10.0.0.1" or "fe80::1"; nothing for other texts.
std::optional<Address> ParseAddress(std::string_view text);
/// "10.0.0.1", "fe80::1"
std::string FormatAddress(IpVersion ipVersion, Number address);

/// The bits of an address.
constexpr unsigned AddressBits(IpVersion ipVersion) { return ipVersion == IpVersion::V4 ? 32 : 128; }

/// The network of an address: all addresses that differ from it in their last bits alone.
/// @param hostBits how many these are; for the network 10.0.0.0/8 it is 24.
constexpr Interval NetworkOf(Number address, unsigned hostBits) {
  const Number ones = GreatestOfBits(hostBits);
  return {{address.high & ~ones.high, address.low & ~ones.low},
          {address.high | ones.high, address.low | ones.low}};
}

}  // namespace Policy
