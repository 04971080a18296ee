#include "policy/Address.h"

#include <gmock/gmock.h>

#include <array>

namespace {

using Policy::Interval;
using Policy::NetworkOf;
using Policy::Number;

constexpr Number kGreatest{0xFFFFFFFFFFFFFFFF, 0xFFFFFFFFFFFFFFFF};

TEST(Network, IsAllAddressesThatDifferInTheLastBits) {
  EXPECT_EQ(NetworkOf(0x0A010203, 24), (Interval{0x0A000000, 0x0AFFFFFF}));
  EXPECT_EQ(NetworkOf(0x0A010203, 0), (Interval{0x0A010203, 0x0A010203}));
  EXPECT_EQ(NetworkOf(0x0A010203, 32), (Interval{0, 0xFFFFFFFF}));
}

TEST(Network, OfIpV6CrossesTheMiddle) {
  const Number address{0xFE80000000000001, 0x0000000000000002};
  EXPECT_EQ(NetworkOf(address, 0), (Interval{address, address}));
  EXPECT_EQ(NetworkOf(address, 64), (Interval{{0xFE80000000000001, 0}, {0xFE80000000000001, ~UINT64{0}}}));
  EXPECT_EQ(NetworkOf(address, 65), (Interval{{0xFE80000000000000, 0}, {0xFE80000000000001, ~UINT64{0}}}));
  EXPECT_EQ(NetworkOf(address, 128), (Interval{0, kGreatest}));
}

TEST(Bytes, OfANumberAreInNetworkOrder) {
  constexpr std::array<UINT8, 16> kBytes{0xFE, 0x80, 0, 0, 0, 0, 0, 1, 2, 0, 0, 0, 0, 0, 0, 3};
  EXPECT_EQ(Policy::FromBytes(kBytes.data()), Number(0xFE80000000000001, 0x0200000000000003));
  EXPECT_EQ(Policy::ToBytes({0xFE80000000000001, 0x0200000000000003}), kBytes);
}

}  // namespace
