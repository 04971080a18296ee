#include "filtering/IpV4Address.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>

#include "support/LeftOf.h"

namespace WfpFirewall {
namespace {

TEST(IpV4Address, NumberComesBackAsGiven) {
  EXPECT_EQ(IpV4Address(0x7F000001).GetAddressInt(), 0x7F000001u);
  EXPECT_EQ(IpV4Address(0).GetAddressInt(), 0u);
  EXPECT_EQ(IpV4Address(0x7FFFFFFF).GetAddressInt(), 0x7FFFFFFFu);
}

TEST(IpV4Address, NumberPrintsWithItsOctetsReversed) {
  EXPECT_EQ(IpV4Address(0x7F000001).GetAddressString(), "1.0.0.127");
  EXPECT_EQ(IpV4Address(0x01020304).GetAddressString(), "4.3.2.1");
}

TEST(IpV4Address, NegativeNumberIsLostBecauseItReadsAsSeeTheText) {
  EXPECT_EQ(IpV4Address(-1).GetAddressInt(), 0u);
  EXPECT_EQ(IpV4Address(-2).GetAddressInt(), 0u);
  EXPECT_EQ(IpV4Address(std::numeric_limits<int>::min()).GetAddressInt(), 0u);
}

TEST(IpV4Address, TextGivesItsNumberInHostOrder) {
  EXPECT_EQ(IpV4Address("10.0.0.1").GetAddressInt(), 0x0A000001u);
  EXPECT_EQ(IpV4Address("1.2.3.4").GetAddressInt(), 0x01020304u);
}

TEST(IpV4Address, TextReachesAddressesThatANumberCannot) {
  EXPECT_EQ(IpV4Address("128.0.0.0").GetAddressInt(), 0x80000000u);
  EXPECT_EQ(IpV4Address("255.255.255.255").GetAddressInt(), 0xFFFFFFFFu);
}

TEST(IpV4Address, TextComesBackAsGiven) {
  EXPECT_EQ(IpV4Address("10.0.0.1").GetAddressString(), "10.0.0.1");
  EXPECT_EQ(IpV4Address("not an address").GetAddressString(), "not an address");
}

TEST(IpV4Address, TakesItsTextOver) {
  EXPECT_EQ(LeftOf(std::string("10.0.0.1"), [](std::string&& text) { IpV4Address{std::move(text)}; }), "");
}

TEST(IpV4Address, TextThatDoesNotParseGivesZero) {
  EXPECT_EQ(IpV4Address("").GetAddressInt(), 0u);
  EXPECT_EQ(IpV4Address("not an address").GetAddressInt(), 0u);
  EXPECT_EQ(IpV4Address("10.0.0.256").GetAddressInt(), 0u);
  EXPECT_EQ(IpV4Address("fe80::1").GetAddressInt(), 0u);
}

TEST(IpV4Address, EmptyTextPrintsLikeTheNumberMinusOne) {
  EXPECT_EQ(IpV4Address("").GetAddressString(), "255.255.255.255");
}

TEST(IpV4Address, EqualityComparesTheTexts) {
  EXPECT_TRUE(IpV4Address("1.2.3.4") == IpV4Address("1.2.3.4"));
  EXPECT_FALSE(IpV4Address("1.2.3.4") == IpV4Address("1.2.3.5"));
  EXPECT_FALSE(IpV4Address("1.2.3.4") == IpV4Address("1.2.3.40"));
  EXPECT_FALSE(IpV4Address("1.2.3.4") == IpV4Address("01.2.3.4"));
}

TEST(IpV4Address, TextAndItsNumberAreUnequal) {
  EXPECT_FALSE(IpV4Address("1.2.3.4") == IpV4Address(0x01020304));
  EXPECT_FALSE(IpV4Address(0x01020304) == IpV4Address("1.2.3.4"));
}

TEST(IpV4Address, AnyTwoNumbersAreEqual) { EXPECT_TRUE(IpV4Address(1) == IpV4Address(2)); }

TEST(IpV4Address, EqualsItself) {
  const IpV4Address address(7);
  EXPECT_TRUE(address == address);
}

TEST(IpV4Address, CopiesKeepTextAndNumber) {
  const IpV4Address text("10.0.0.1");
  const IpV4Address number(0x0A000001);
  EXPECT_EQ(IpV4Address(text).GetAddressString(), "10.0.0.1");
  EXPECT_EQ(IpV4Address(number).GetAddressInt(), 0x0A000001u);
}

TEST(IpV4Address, WellKnownAddresses) {
  EXPECT_EQ(IpV4AddressAny().GetAddressInt(), 0u);
  EXPECT_EQ(IpV4AddressAny().GetAddressString(), "0.0.0.0");
  EXPECT_EQ(IpV4AddressLoopback().GetAddressInt(), 0x7F000001u);
  EXPECT_EQ(IpV4AddressLoopback().GetAddressString(), "1.0.0.127");
  EXPECT_EQ(IpV4AddressNone().GetAddressString(), "255.255.255.255");
  EXPECT_EQ(IpV4AddressBroadcast().GetAddressString(), "255.255.255.255");
}

TEST(IpV4Address, NoneAndBroadcastHaveNoNumberForAFilter) {
  EXPECT_EQ(IpV4AddressNone().GetAddressInt(), 0u);
  EXPECT_EQ(IpV4AddressBroadcast().GetAddressInt(), 0u);
}

TEST(IpV4Address, WellKnownAddressesAreAllEqual) {
  EXPECT_TRUE(IpV4AddressNone() == IpV4AddressBroadcast());
  EXPECT_TRUE(IpV4AddressNone() == IpV4AddressAny());
  EXPECT_TRUE(IpV4AddressBroadcast() == IpV4AddressAny());
  EXPECT_TRUE(IpV4AddressLoopback() == IpV4AddressAny());
}

}  // namespace
}  // namespace WfpFirewall
