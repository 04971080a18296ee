#include "filtering/IpV4Address.h"

#include <WfpPlatform.h>

#include <array>
#include <utility>

namespace WfpFirewall {
namespace {

constexpr std::int32_t kSeeText = -1;
constexpr std::size_t kTextSizeV4 = 22;

}  // namespace

IpV4Address::IpV4Address(int address) : address_(address) {}

IpV4Address::IpV4Address(std::string text) : text_(std::move(text)), address_(kSeeText) {}

std::uint32_t IpV4Address::GetAddressInt() const {
  // Every negative number counts as kSeeText, so addresses from 128.0.0.0 on can only be given as text.
  if (address_ >= 0) {
    return static_cast<std::uint32_t>(address_);
  }
  in_addr parsed{};
  return inet_pton(AF_INET, text_.c_str(), &parsed) == 1 ? ntohl(parsed.s_addr) : 0;
}

std::string IpV4Address::GetAddressString() const {
  if (!text_.empty()) {
    return text_;
  }
  // The number is in host byte order and inet_ntop takes network byte order: the octets print reversed.
  std::array<char, kTextSizeV4> buffer{};
  inet_ntop(AF_INET, &address_, buffer.data(), buffer.size());
  return buffer.data();
}

// The texts alone: those of addresses made from numbers are empty, and so equal.
bool IpV4Address::operator==(const IpV4Address& other) const { return text_ == other.text_; }

IpV4Address IpV4AddressNone() { return IpV4Address(-1); }
IpV4Address IpV4AddressAny() { return IpV4Address(0); }
IpV4Address IpV4AddressLoopback() { return IpV4Address(0x7F000001); }
IpV4Address IpV4AddressBroadcast() { return IpV4Address(-1); }

}  // namespace WfpFirewall
