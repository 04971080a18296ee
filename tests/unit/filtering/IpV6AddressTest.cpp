#include "filtering/IpV6Address.h"

#include <gmock/gmock.h>

#include <string>
#include <utility>

#include "support/LeftOf.h"
#include "unit/engine/FailsWith.h"

namespace WfpFirewall {
namespace {

using testing::ElementsAre;

in6_addr LinkLocalOne() {
  in6_addr bytes{};
  bytes.s6_addr[0] = 0xfe;
  bytes.s6_addr[1] = 0x80;
  bytes.s6_addr[15] = 0x01;
  return bytes;
}

TEST(IpV6Address, TextGivesItsBytesInNetworkOrder) {
  EXPECT_THAT(IpV6Address("fe80::1").GetAddressBytes().s6_addr,
              ElementsAre(0xfe, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x01));
  EXPECT_THAT(IpV6Address("2001:db8:1:2:3:4:5:6").GetAddressBytes().s6_addr,
              ElementsAre(0x20, 0x01, 0x0d, 0xb8, 0, 1, 0, 2, 0, 3, 0, 4, 0, 5, 0, 6));
}

TEST(IpV6Address, TextComesBackAsGiven) {
  EXPECT_EQ(IpV6Address("FE80:0::0:1").GetAddressString(), "FE80:0::0:1");
  EXPECT_EQ(IpV6Address("not an address").GetAddressString(), "not an address");
}

TEST(IpV6Address, TakesItsTextOver) {
  EXPECT_EQ(LeftOf(std::string("fe80::1"), [](std::string&& text) { IpV6Address{std::move(text)}; }), "");
}

TEST(IpV6Address, TextThatDoesNotParseThrowsWhenItsBytesAreAskedFor) {
  for (const char* text : {"not an address", "10.0.0.1", "fe80::1::2", "fe80::/10", ""}) {
    const IpV6Address address{std::string(text)};
    EXPECT_THAT([&] { (void)address.GetAddressBytes(); }, FailsWith("Failed to convert ipv6 address"))
        << text;
  }
}

TEST(IpV6Address, BytesAreFormatted) {
  EXPECT_EQ(IpV6Address(LinkLocalOne()).GetAddressString(), "fe80::1");
  EXPECT_EQ(IpV6Address(in6_addr{}).GetAddressString(), "::");
}

TEST(IpV6Address, AddressMadeFromBytesThrowsWhenItsBytesAreAskedFor) {
  const IpV6Address address(LinkLocalOne());
  EXPECT_THAT([&] { (void)address.GetAddressBytes(); }, FailsWith("Failed to convert ipv6 address"));
}

}  // namespace
}  // namespace WfpFirewall
