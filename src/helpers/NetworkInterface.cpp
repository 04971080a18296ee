#include "helpers/NetworkInterface.h"

#include <algorithm>
#include <utility>

namespace WfpFirewall::Helpers {
namespace {

bool Same(const IpV4Address& left, const IpV4Address& right) { return left == right; }
bool Same(const IpV6Address& left, const IpV6Address& right) {
  return left.GetAddressString() == right.GetAddressString();
}

// Takes only an address that the list already holds. The lists of the machine's interfaces start empty and so
// stay empty; the rule sets need none, they name interfaces by LUID alone.
template <class Address>
void Offer(std::vector<Address>& addresses, const Address& address) {
  if (std::any_of(addresses.begin(), addresses.end(),
                  [&address](const Address& held) { return Same(held, address); })) {
    addresses.push_back(address);
  }
}

}  // namespace

NetworkInterface::NetworkInterface(std::wstring name, std::wstring description,
                                   std::vector<IpV4Address> ipv4Addresses,
                                   std::vector<IpV6Address> ipv6Addresses, std::uint64_t luid)
    : name_(std::move(name)),
      description_(std::move(description)),
      ipv4Addresses_(std::move(ipv4Addresses)),
      ipv6Addresses_(std::move(ipv6Addresses)),
      luid_(luid) {}

std::wstring NetworkInterface::GetName() const { return name_; }
std::wstring NetworkInterface::GetDescription() const { return description_; }
std::vector<IpV4Address> NetworkInterface::GetIpV4Addresses() const { return ipv4Addresses_; }
std::vector<IpV6Address> NetworkInterface::GetIpV6Addresses() const { return ipv6Addresses_; }
std::uint64_t NetworkInterface::GetLuid() const { return luid_; }

void NetworkInterface::OfferAddress(const IpV4Address& address) { Offer(ipv4Addresses_, address); }
void NetworkInterface::OfferAddress(const IpV6Address& address) { Offer(ipv6Addresses_, address); }

}  // namespace WfpFirewall::Helpers
