#pragma once

#include <cstdint>

#include "filtering/Condition.h"
#include "filtering/Values.h"

namespace WfpFirewall::Sublayers {

/// The remote port of name look-ups.
inline constexpr std::uint16_t kDnsPort = 53;

/// An IPv4 network in a rule set's table, as texts that are read when the rule set is built.
struct NetworkV4 {
  const char* address;
  const char* mask;
};

/// The same for IPv6.
struct NetworkV6 {
  const char* address;
  int prefixLength;
};

inline Filtering::Condition RemoteIn(const NetworkV4& network) {
  return Filtering::ConditionEqual(
      new Filtering::Values::RemoteIpAddressAndMaskV4(network.address, network.mask));
}

inline Filtering::Condition RemoteIn(const NetworkV6& network) {
  return Filtering::ConditionEqual(
      new Filtering::Values::RemoteIpAddressAndMaskV6(network.address, network.prefixLength));
}

}  // namespace WfpFirewall::Sublayers
