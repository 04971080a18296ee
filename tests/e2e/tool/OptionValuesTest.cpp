#include "OptionValues.h"

#include <gtest/gtest.h>

namespace {

using Policy::IpVersion;

TEST(Endpoint, MayHaveAPort) {
  const auto plain = ParseEndpoint("10.0.0.1").value();
  EXPECT_EQ(plain.address.ipVersion, IpVersion::V4);
  EXPECT_EQ(plain.address.number, Policy::Number(0x0A000001));
  EXPECT_FALSE(plain.port.has_value());
  EXPECT_EQ(ParseEndpoint("10.0.0.1:53").value().port, 53);
  EXPECT_EQ(ParseEndpoint("10.0.0.1:0").value().port, 0);
}

TEST(Endpoint, OfIpv6NeedsBracketsForAPort) {
  EXPECT_EQ(ParseEndpoint("fe80::1").value().address.number, Policy::Number(0xFE80000000000000, 1));
  EXPECT_EQ(ParseEndpoint("fe80::1:53").value().address.number, Policy::Number(0xFE80000000000000, 0x10053));
  const auto bracketed = ParseEndpoint("[fe80::1]:65535").value();
  EXPECT_EQ(bracketed.address.ipVersion, IpVersion::V6);
  EXPECT_EQ(bracketed.port, 65535);
}

TEST(Endpoint, OfAnythingElseIsNone) {
  for (const char* text : {"", ":", ":53", "10.0.0", "10.0.0.1:", "10.0.0.1:65536", "10.0.0.1:-1",
                           "10.0.0.1:5 ", "[10.0.0.1]:53", "[fe80::1]", "[fe80::1]53", "[]:53", "name:53"}) {
    EXPECT_FALSE(ParseEndpoint(text).has_value()) << text;
  }
}

TEST(Protocol, HasANameOrANumber) {
  EXPECT_EQ(ParseProtocol("tcp", IpVersion::V4), 6);
  EXPECT_EQ(ParseProtocol("udp", IpVersion::V6), 17);
  EXPECT_EQ(ParseProtocol("icmp", IpVersion::V4), 1);
  EXPECT_EQ(ParseProtocol("icmp", IpVersion::V6), 58);
  EXPECT_EQ(ParseProtocol("0", IpVersion::V4), 0);
  EXPECT_EQ(ParseProtocol("255", IpVersion::V4), 255);
  for (const char* text : {"", "TCP", "256", "-1", "6 "}) {
    EXPECT_FALSE(ParseProtocol(text, IpVersion::V4).has_value()) << text;
  }
}

TEST(Byte, IsADecimalNumberUpTo255) {
  EXPECT_EQ(ParseByte("0"), 0);
  EXPECT_EQ(ParseByte("255"), 255);
  for (const char* text : {"", "256", "-1", "0x8", "icmp"}) {
    EXPECT_FALSE(ParseByte(text).has_value()) << text;
  }
}

TEST(Luid, IsADecimalNumberAboveZero) {
  EXPECT_EQ(ParseLuid("18446744073709551615"), 18446744073709551615u);
  for (const char* text : {"", "0", "18446744073709551616", "7a", "Tunnel"}) {
    EXPECT_FALSE(ParseLuid(text).has_value()) << text;
  }
}

TEST(IpV4Text, IsInHostByteOrder) {
  EXPECT_EQ(ParseIpV4("203.0.113.1"), 0xCB007101u);
  EXPECT_FALSE(ParseIpV4("fe80::1").has_value());
}

}  // namespace
