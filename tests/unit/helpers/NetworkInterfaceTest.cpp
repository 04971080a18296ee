#include "helpers/NetworkInterface.h"

#include <gtest/gtest.h>

namespace WfpFirewall::Helpers {
namespace {

NetworkInterface WithAddresses(std::vector<IpV4Address> ipv4, std::vector<IpV6Address> ipv6) {
  return {L"Ethernet", L"Gigabit Adapter", std::move(ipv4), std::move(ipv6), 0x0006000001000000};
}

in6_addr Ipv6Bytes(const char* text) { return IpV6Address(text).GetAddressBytes(); }

TEST(NetworkInterface, GivesBackWhatItWasMadeFrom) {
  const NetworkInterface made =
      WithAddresses({IpV4Address("10.0.0.1"), IpV4Address("10.0.0.2")}, {IpV6Address("fe80::1")});
  EXPECT_EQ(made.GetName(), L"Ethernet");
  EXPECT_EQ(made.GetDescription(), L"Gigabit Adapter");
  EXPECT_EQ(made.GetLuid(), 0x0006000001000000u);
  ASSERT_EQ(made.GetIpV4Addresses().size(), 2u);
  EXPECT_EQ(made.GetIpV4Addresses()[0].GetAddressString(), "10.0.0.1");
  EXPECT_EQ(made.GetIpV4Addresses()[1].GetAddressString(), "10.0.0.2");
  ASSERT_EQ(made.GetIpV6Addresses().size(), 1u);
  EXPECT_EQ(made.GetIpV6Addresses()[0].GetAddressString(), "fe80::1");
}

TEST(NetworkInterface, EmptyListsRefuseEveryOfferedAddress) {
  NetworkInterface bare = WithAddresses({}, {});
  bare.OfferAddress(IpV4Address("10.0.0.1"));
  bare.OfferAddress(IpV4Address(0x0100000A));
  bare.OfferAddress(IpV6Address("fe80::1"));
  EXPECT_TRUE(bare.GetIpV4Addresses().empty());
  EXPECT_TRUE(bare.GetIpV6Addresses().empty());
}

TEST(NetworkInterface, TakesAnOfferedAddressThatItHolds) {
  NetworkInterface holder = WithAddresses({IpV4Address("10.0.0.1")}, {IpV6Address("fe80::1")});
  holder.OfferAddress(IpV4Address("10.0.0.1"));
  holder.OfferAddress(IpV6Address(Ipv6Bytes("fe80::1")));
  EXPECT_EQ(holder.GetIpV4Addresses().size(), 2u);
  EXPECT_EQ(holder.GetIpV6Addresses().size(), 2u);
}

TEST(NetworkInterface, RefusesAnOfferedAddressThatItDoesNotHold) {
  NetworkInterface holder = WithAddresses({IpV4Address("10.0.0.1")}, {IpV6Address("fe80::1")});
  holder.OfferAddress(IpV4Address("10.0.0.2"));
  holder.OfferAddress(IpV6Address(Ipv6Bytes("fe80::2")));
  EXPECT_EQ(holder.GetIpV4Addresses().size(), 1u);
  EXPECT_EQ(holder.GetIpV6Addresses().size(), 1u);
}

TEST(NetworkInterface, HoldsAnyOfferedNumberOnceItHoldsANumber) {
  NetworkInterface holder = WithAddresses({IpV4Address(1)}, {});
  holder.OfferAddress(IpV4Address(0x0100000A));
  ASSERT_EQ(holder.GetIpV4Addresses().size(), 2u);
  EXPECT_EQ(holder.GetIpV4Addresses()[1].GetAddressInt(), 0x0100000Au);
}

}  // namespace
}  // namespace WfpFirewall::Helpers
