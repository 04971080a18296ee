#include "filtering/IpV6Address.h"

#include <array>
#include <utility>

#include "engine/FirewallException.h"

namespace WfpFirewall {
namespace {

constexpr std::size_t kTextSizeV6 = 65;

}  // namespace

IpV6Address::IpV6Address(std::string text) : text_(std::move(text)) {}

// hasBytes_ stays false: an address made from bytes can be printed, but GetAddressBytes refuses it.
IpV6Address::IpV6Address(in6_addr bytes) : bytes_(bytes) {}

in6_addr IpV6Address::GetAddressBytes() const {
  if (hasBytes_) {
    return bytes_;
  }
  in6_addr parsed{};
  if (inet_pton(AF_INET6, text_.c_str(), &parsed) != 1) {
    throw FirewallException("Failed to convert ipv6 address");
  }
  return parsed;
}

std::string IpV6Address::GetAddressString() const {
  if (!text_.empty()) {
    return text_;
  }
  std::array<char, kTextSizeV6> buffer{};
  inet_ntop(AF_INET6, &bytes_, buffer.data(), buffer.size());
  return buffer.data();
}

}  // namespace WfpFirewall
