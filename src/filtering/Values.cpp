#include "filtering/Values.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace WfpFirewall::Filtering::Values {
namespace {

FWP_V6_ADDR_AND_MASK MakeNetworkV6(const IpV6Address& address, int prefixLength) {
  const in6_addr bytes = address.GetAddressBytes();
  FWP_V6_ADDR_AND_MASK network{};
  std::copy(std::begin(bytes.s6_addr), std::end(bytes.s6_addr), std::begin(network.addr));
  network.prefixLength = static_cast<UINT8>(prefixLength);
  return network;
}

}  // namespace

IpAddressV4::IpAddressV4(std::string text) : IpAddressV4(IpV4Address(std::move(text))) {}

IpAddressV4::IpAddressV4(const IpV4Address& address) : Value(address.GetAddressInt()) {}

IpAddressAndMaskV4::IpAddressAndMaskV4(std::string address, std::string mask)
    : IpAddressAndMaskV4(IpV4Address(std::move(address)), IpV4Address(std::move(mask))) {}

IpAddressAndMaskV4::IpAddressAndMaskV4(const IpV4Address& address, const IpV4Address& mask)
    : Value(FWP_V4_ADDR_AND_MASK{address.GetAddressInt(), mask.GetAddressInt()}) {}

IpAddressAndMaskV6::IpAddressAndMaskV6(const IpV6Address& address, int prefixLength)
    : Value(MakeNetworkV6(address, prefixLength)) {}

IpAddressAndMaskV6::IpAddressAndMaskV6(std::string address, int prefixLength)
    : IpAddressAndMaskV6(IpV6Address(std::move(address)), prefixLength) {}

}  // namespace WfpFirewall::Filtering::Values
