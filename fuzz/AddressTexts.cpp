// Makes addresses, networks and filters from random texts.
#include <WfpPlatform.h>

#include <cstring>
#include <string>
#include <string_view>

#include "engine/FirewallException.h"
#include "filtering/FilterBuilder.h"
#include "filtering/Values.h"
#include "fuzz/Input.h"

namespace {

using namespace WfpFirewall::Filtering::Values;
using Fuzz::Input;
using Fuzz::Require;
using WfpFirewall::Action;
using WfpFirewall::FilterBuilder;
using WfpFirewall::FirewallException;
using WfpFirewall::IpV4Address;
using WfpFirewall::IpV6Address;
using WfpFirewall::Filtering::ConditionEqual;
using WfpFirewall::Filtering::LayerType;

constexpr std::string_view kNoIpV6Address = "Failed to convert ipv6 address";

std::string DottedQuad(std::uint32_t address) {
  std::string text;
  for (const int shift : {24, 16, 8, 0}) {
    text += std::to_string(address >> shift & 0xFF) + (shift == 0 ? "" : ".");
  }
  return text;
}

void CheckIpV4(const std::string& text, const std::string& mask) {
  const IpV4Address address(text);
  Require(text.empty() || address.GetAddressString() == text, "a text comes back as given");
  Require(address == IpV4Address(text), "equal texts are equal addresses");
  const std::uint32_t number = address.GetAddressInt();
  Require(IpV4Address(DottedQuad(number)).GetAddressInt() == number, "a dotted quad is its four octets");

  const LocalIpAddressAndMaskV4 network(text, mask);
  Require(network.GetValue()->addr == number && network.GetValue()->mask == IpV4Address(mask).GetAddressInt(),
          "a network has its texts' numbers");
  auto filter = FilterBuilder()
                    .CreateFilter(Action::Block)
                    .InLayer(LayerType::AleAuthConnectV4)
                    .WithCondition(ConditionEqual(new RemoteIpAddressV4(text)))
                    .Get();
  Require(filter.ToNativeFilter().filterCondition->conditionValue.uint32 == number,
          "a filter has its address's number");
}

void CheckIpV6(const std::string& text, std::uint8_t prefixLength) {
  Require(text.empty() || IpV6Address(text).GetAddressString() == text, "a text comes back as given");
  try {
    const in6_addr bytes = IpV6Address(text).GetAddressBytes();
    auto filter = FilterBuilder()
                      .CreateFilter(Action::Block)
                      .InLayer(LayerType::AleAuthConnectV6)
                      .WithCondition(ConditionEqual(new RemoteIpAddressAndMaskV6(text, prefixLength)))
                      .Get();
    const FWP_V6_ADDR_AND_MASK& network = *filter.ToNativeFilter().filterCondition->conditionValue.v6AddrMask;
    Require(std::memcmp(network.addr, &bytes, sizeof(bytes)) == 0 && network.prefixLength == prefixLength,
            "a filter has its network's bytes");
  } catch (const FirewallException& error) {
    Require(error.what() == kNoIpV6Address, "a text that does not parse is refused with one text");
  }
}

void CheckIpV6Bytes(const in6_addr& bytes) {
  const in6_addr parsed = IpV6Address(IpV6Address(bytes).GetAddressString()).GetAddressBytes();
  Require(std::memcmp(&parsed, &bytes, sizeof(bytes)) == 0, "formatted bytes parse back");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  const std::string text = input.TakeText();
  CheckIpV4(text, input.TakeText());
  CheckIpV6(text, input.Take<std::uint8_t>());
  const auto number = input.Take<std::uint32_t>();
  Require(IpV4Address(DottedQuad(number)).GetAddressInt() == number, "a dotted quad is its four octets");
  CheckIpV6Bytes(input.Take<in6_addr>());
  return 0;
}
