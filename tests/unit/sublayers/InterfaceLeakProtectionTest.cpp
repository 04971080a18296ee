#include "sublayers/InterfaceLeakProtection.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>

#include "unit/sublayers/InterfaceLeakTables.h"
#include "unit/sublayers/RuleSetFixture.h"

namespace WfpFirewall::Sublayers {
namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::SizeIs;

constexpr UINT64 kTunnel = 1689399632855040;
constexpr UINT64 kBackup = 1688849860263936;
constexpr std::array<UINT32, 3> kAddresses{0x01020304, 0xC8010203, 0xFFFFFFFF};

class InterfaceLeakProtectionTest : public RuleSetFixture {
 protected:
  static InterfaceLeakProtection Make(std::vector<UINT64> luids, const UINT32* addresses, std::size_t count,
                                      const char* server = "198.51.100.7") {
    return {kInterfaceLeakKey,
            L"Interface",
            L"Keeps traffic on the tunnel",
            std::move(luids),
            IpV4Address(server),
            addresses,
            count};
  }
  static InterfaceLeakProtection Make(std::vector<UINT64> luids) {
    return Make(std::move(luids), nullptr, 0);
  }
  static InterfaceLeakProtection MakeWithAddresses(std::vector<UINT64> luids) {
    return Make(std::move(luids), kAddresses.data(), kAddresses.size());
  }
};

TEST_F(InterfaceLeakProtectionTest, InstallsExactlyItsTable) {
  EXPECT_TRUE(Installs(Make({kTunnel}), kOneInterface));
  EXPECT_TRUE(Installs(MakeWithAddresses({kTunnel}), kOneInterfaceAndAddresses));
  EXPECT_TRUE(Installs(Make({kTunnel, kBackup}), kTwoInterfaces));
  EXPECT_TRUE(Installs(MakeWithAddresses({kTunnel, kBackup}), kTwoInterfacesAndAddresses));
}

TEST_F(InterfaceLeakProtectionTest, HasTwentyFiltersAnInterfaceAndOneMoreForAddresses) {
  EXPECT_THAT(Make({kTunnel}).GetFilters(), SizeIs(20));
  EXPECT_THAT(MakeWithAddresses({kTunnel}).GetFilters(), SizeIs(21));
  EXPECT_THAT(MakeWithAddresses({kTunnel, kBackup}).GetFilters(), SizeIs(42));
}

TEST_F(InterfaceLeakProtectionTest, IsEmptyWithoutInterfaces) {
  EXPECT_THAT(Make({}).GetFilters(), IsEmpty());
  EXPECT_THAT(MakeWithAddresses({}).GetFilters(), IsEmpty());
}

TEST_F(InterfaceLeakProtectionTest, HasNoFilterOfAddressesWithoutArrayOrCount) {
  EXPECT_TRUE(Installs(Make({kTunnel}, nullptr, 5), kOneInterface));
  EXPECT_TRUE(Installs(Make({kTunnel}, kAddresses.data(), 0), kOneInterface));
}

TEST_F(InterfaceLeakProtectionTest, ReadsTheAddressesOnlyWhileItIsMade) {
  std::array<UINT32, 3> addresses = kAddresses;
  const InterfaceLeakProtection rules = Make({kTunnel, kBackup}, addresses.data(), addresses.size());
  addresses.fill(0);
  EXPECT_TRUE(Installs(rules, kTwoInterfacesAndAddresses));
}

TEST_F(InterfaceLeakProtectionTest, LetsTheServerBeReachedBelowAndAboveHalfOfTheAddresses) {
  for (const char* server : {"127.255.255.255", "128.0.0.0", "255.255.255.254"}) {
    EXPECT_EQ(Install(Make({7}, nullptr, 0, server)).at(8),
              std::string("ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 14 | CLEAR_ACTION_RIGHT | IP_LOCAL_INTERFACE "
                          "NOT_EQUAL UINT64 7 & IP_REMOTE_ADDRESS EQUAL UINT32 ") +
                  server);
  }
}

TEST_F(InterfaceLeakProtectionTest, TakesAServerThatIsNoAddressForZero) {
  EXPECT_EQ(
      Install(Make({7}, nullptr, 0, "vpn.example")).at(8),
      "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 14 | CLEAR_ACTION_RIGHT | IP_LOCAL_INTERFACE NOT_EQUAL UINT64 "
      "7 & IP_REMOTE_ADDRESS EQUAL UINT32 0.0.0.0");
}

TEST_F(InterfaceLeakProtectionTest, KeepsAllSixtyFourBitsOfALuid) {
  EXPECT_EQ(Install(Make({0xFFFFFFFFFFFFFFFF})).at(9),
            "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 13 | - | IP_LOCAL_INTERFACE NOT_EQUAL UINT64 "
            "18446744073709551615");
}

TEST_F(InterfaceLeakProtectionTest, RanksTheBlockBelowThePermitsOnIpV4AndLevelOnIpV6) {
  const std::vector<std::string> filters = Install(Make({7}));
  EXPECT_THAT(filters, Contains("ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 13 | - | IP_LOCAL_INTERFACE NOT_EQUAL "
                                "UINT64 7"));
  EXPECT_THAT(filters, Contains("ALE_AUTH_CONNECT_V6 | BLOCK | UINT8 14 | - | IP_LOCAL_INTERFACE NOT_EQUAL "
                                "UINT64 7"));
}

TEST_F(InterfaceLeakProtectionTest, SublayerHasTheIdentityGivenAndNoWeightOfItsOwn) {
  const auto sublayers = InstallAndLook(Make({kTunnel})).sublayers;
  ASSERT_THAT(sublayers, SizeIs(1));
  EXPECT_EQ(sublayers[0].key, kInterfaceLeakKey);
  EXPECT_EQ(sublayers[0].name, L"Interface");
  EXPECT_EQ(sublayers[0].description, L"Keeps traffic on the tunnel");
  EXPECT_EQ(sublayers[0].weight, 0);
}

}  // namespace
}  // namespace WfpFirewall::Sublayers
