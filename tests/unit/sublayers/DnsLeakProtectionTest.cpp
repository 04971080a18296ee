#include "sublayers/DnsLeakProtection.h"

#include <gmock/gmock.h>

#include "unit/engine/FailsWith.h"
#include "unit/sublayers/RuleSetFixture.h"

namespace WfpFirewall::Sublayers {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

constexpr UINT64 kTunnel = 1689399632855040;
constexpr UINT64 kBackup = 1688849860263936;

constexpr const char* kWithoutInterfaces = R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT EQUAL UINT16 53
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 15 | - | IP_REMOTE_PORT EQUAL UINT16 53 & ALE_APP_ID EQUAL BYTE_BLOB \device\harddiskvolume1\dns.exe

ALE_FLOW_ESTABLISHED_V4 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT EQUAL UINT16 53
ALE_FLOW_ESTABLISHED_V4 | PERMIT | UINT8 15 | - | IP_REMOTE_PORT EQUAL UINT16 53 & ALE_APP_ID EQUAL BYTE_BLOB \device\harddiskvolume1\dns.exe

ALE_AUTH_CONNECT_V6 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT EQUAL UINT16 53
ALE_AUTH_CONNECT_V6 | PERMIT | UINT8 15 | - | IP_REMOTE_PORT EQUAL UINT16 53 & ALE_APP_ID EQUAL BYTE_BLOB \device\harddiskvolume1\dns.exe

ALE_FLOW_ESTABLISHED_V6 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT EQUAL UINT16 53
ALE_FLOW_ESTABLISHED_V6 | PERMIT | UINT8 15 | - | IP_REMOTE_PORT EQUAL UINT16 53 & ALE_APP_ID EQUAL BYTE_BLOB \device\harddiskvolume1\dns.exe
)";

constexpr const char* kWithOneInterface = R"(
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 15 | - | IP_REMOTE_PORT EQUAL UINT16 53 & IP_LOCAL_INTERFACE EQUAL UINT64 1689399632855040
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT EQUAL UINT16 53
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 15 | - | IP_REMOTE_PORT EQUAL UINT16 53 & ALE_APP_ID EQUAL BYTE_BLOB \device\harddiskvolume1\dns.exe

ALE_FLOW_ESTABLISHED_V4 | PERMIT | UINT8 15 | - | IP_REMOTE_PORT EQUAL UINT16 53 & IP_LOCAL_INTERFACE EQUAL UINT64 1689399632855040
ALE_FLOW_ESTABLISHED_V4 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT EQUAL UINT16 53
ALE_FLOW_ESTABLISHED_V4 | PERMIT | UINT8 15 | - | IP_REMOTE_PORT EQUAL UINT16 53 & ALE_APP_ID EQUAL BYTE_BLOB \device\harddiskvolume1\dns.exe

ALE_AUTH_CONNECT_V6 | PERMIT | UINT8 15 | - | IP_REMOTE_PORT EQUAL UINT16 53 & IP_LOCAL_INTERFACE EQUAL UINT64 1689399632855040
ALE_AUTH_CONNECT_V6 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT EQUAL UINT16 53
ALE_AUTH_CONNECT_V6 | PERMIT | UINT8 15 | - | IP_REMOTE_PORT EQUAL UINT16 53 & ALE_APP_ID EQUAL BYTE_BLOB \device\harddiskvolume1\dns.exe

ALE_FLOW_ESTABLISHED_V6 | PERMIT | UINT8 15 | - | IP_REMOTE_PORT EQUAL UINT16 53 & IP_LOCAL_INTERFACE EQUAL UINT64 1689399632855040
ALE_FLOW_ESTABLISHED_V6 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT EQUAL UINT16 53
ALE_FLOW_ESTABLISHED_V6 | PERMIT | UINT8 15 | - | IP_REMOTE_PORT EQUAL UINT16 53 & ALE_APP_ID EQUAL BYTE_BLOB \device\harddiskvolume1\dns.exe
)";

constexpr const char* kWithTwoInterfaces = R"(
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 15 | - | IP_REMOTE_PORT EQUAL UINT16 53 & IP_LOCAL_INTERFACE EQUAL UINT64 1689399632855040
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 15 | - | IP_REMOTE_PORT EQUAL UINT16 53 & IP_LOCAL_INTERFACE EQUAL UINT64 1688849860263936
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT EQUAL UINT16 53
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 15 | - | IP_REMOTE_PORT EQUAL UINT16 53 & ALE_APP_ID EQUAL BYTE_BLOB \device\harddiskvolume1\dns.exe

ALE_FLOW_ESTABLISHED_V4 | PERMIT | UINT8 15 | - | IP_REMOTE_PORT EQUAL UINT16 53 & IP_LOCAL_INTERFACE EQUAL UINT64 1689399632855040
ALE_FLOW_ESTABLISHED_V4 | PERMIT | UINT8 15 | - | IP_REMOTE_PORT EQUAL UINT16 53 & IP_LOCAL_INTERFACE EQUAL UINT64 1688849860263936
ALE_FLOW_ESTABLISHED_V4 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT EQUAL UINT16 53
ALE_FLOW_ESTABLISHED_V4 | PERMIT | UINT8 15 | - | IP_REMOTE_PORT EQUAL UINT16 53 & ALE_APP_ID EQUAL BYTE_BLOB \device\harddiskvolume1\dns.exe

ALE_AUTH_CONNECT_V6 | PERMIT | UINT8 15 | - | IP_REMOTE_PORT EQUAL UINT16 53 & IP_LOCAL_INTERFACE EQUAL UINT64 1689399632855040
ALE_AUTH_CONNECT_V6 | PERMIT | UINT8 15 | - | IP_REMOTE_PORT EQUAL UINT16 53 & IP_LOCAL_INTERFACE EQUAL UINT64 1688849860263936
ALE_AUTH_CONNECT_V6 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT EQUAL UINT16 53
ALE_AUTH_CONNECT_V6 | PERMIT | UINT8 15 | - | IP_REMOTE_PORT EQUAL UINT16 53 & ALE_APP_ID EQUAL BYTE_BLOB \device\harddiskvolume1\dns.exe

ALE_FLOW_ESTABLISHED_V6 | PERMIT | UINT8 15 | - | IP_REMOTE_PORT EQUAL UINT16 53 & IP_LOCAL_INTERFACE EQUAL UINT64 1689399632855040
ALE_FLOW_ESTABLISHED_V6 | PERMIT | UINT8 15 | - | IP_REMOTE_PORT EQUAL UINT16 53 & IP_LOCAL_INTERFACE EQUAL UINT64 1688849860263936
ALE_FLOW_ESTABLISHED_V6 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT EQUAL UINT16 53
ALE_FLOW_ESTABLISHED_V6 | PERMIT | UINT8 15 | - | IP_REMOTE_PORT EQUAL UINT16 53 & ALE_APP_ID EQUAL BYTE_BLOB \device\harddiskvolume1\dns.exe
)";

class DnsLeakProtectionTest : public RuleSetFixture {
 protected:
  void SetUp() override {
    RuleSetFixture::SetUp();
    EngineEmulator::PretendFileExists(L"C:\\dns.exe");
  }

  static DnsLeakProtection Make(std::vector<UINT64> luids) {
    return {kDnsLeakKey, L"DNS", L"Keeps name look-ups inside the tunnel", std::move(luids), L"C:\\dns.exe"};
  }
};

TEST_F(DnsLeakProtectionTest, InstallsExactlyItsTable) {
  EXPECT_TRUE(Installs(Make({}), kWithoutInterfaces));
  EXPECT_TRUE(Installs(Make({kTunnel}), kWithOneInterface));
  EXPECT_TRUE(Installs(Make({kTunnel, kBackup}), kWithTwoInterfaces));
}

TEST_F(DnsLeakProtectionTest, HoldsFourFiltersPerInterfaceAndEightMore) {
  EXPECT_THAT(Make({}).GetFilters(), SizeIs(8));
  EXPECT_THAT(Make({kTunnel, kBackup}).GetFilters(), SizeIs(16));
  EXPECT_THAT(Make({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}).GetFilters(), SizeIs(48));
}

TEST_F(DnsLeakProtectionTest, PermitsAnInterfaceNamedTwiceTwice) {
  const std::vector<std::string> filters = Install(Make({kTunnel, kTunnel}));
  ASSERT_THAT(filters, SizeIs(16));
  EXPECT_EQ(filters[0], filters[1]);
  EXPECT_THAT(filters[1], HasSubstr("IP_LOCAL_INTERFACE EQUAL UINT64 1689399632855040"));
}

TEST_F(DnsLeakProtectionTest, KeepsAllSixtyFourBitsOfALuid) {
  EXPECT_EQ(Install(Make({0xFFFFFFFFFFFFFFFF})).at(0),
            "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 15 | - | IP_REMOTE_PORT EQUAL UINT16 53 & "
            "IP_LOCAL_INTERFACE EQUAL UINT64 18446744073709551615");
}

TEST_F(DnsLeakProtectionTest, TreatsAllProtocolsAlikeAndOverridesNothing) {
  for (const std::string& filter : Install(Make({kTunnel}))) {
    EXPECT_THAT(filter, Not(HasSubstr("IP_PROTOCOL")));
    EXPECT_THAT(filter, Not(HasSubstr("CLEAR_ACTION_RIGHT")));
  }
}

TEST_F(DnsLeakProtectionTest, CannotBeMadeForAnAppWithoutAFile) {
  const auto make = [] {
    DnsLeakProtection(kDnsLeakKey, L"DNS", L"", {kTunnel}, L"C:\\windows\\no such program.exe");
  };
  EXPECT_THAT(make, testing::ThrowsMessage<FirewallException>("Failed to retrieve app blob"));
}

TEST_F(DnsLeakProtectionTest, GivesBackTheIdentifiersOfAFailedConstruction) {
  EngineEmulator::FailCall("FwpmGetAppIdFromFileName0", 4, 5);
  EXPECT_THAT([] { Make({kTunnel}); }, FailsWith("Failed to retrieve app blob", 5));
  EXPECT_THAT(EngineEmulator::OutstandingMemory(), IsEmpty());
}

TEST_F(DnsLeakProtectionTest, SublayerHasTheIdentityGivenAndNoWeightOfItsOwn) {
  const auto sublayers = InstallAndLook(Make({kTunnel})).sublayers;
  ASSERT_THAT(sublayers, SizeIs(1));
  EXPECT_EQ(sublayers[0].key, kDnsLeakKey);
  EXPECT_EQ(sublayers[0].name, L"DNS");
  EXPECT_EQ(sublayers[0].description, L"Keeps name look-ups inside the tunnel");
  EXPECT_EQ(sublayers[0].weight, 0);
}

}  // namespace
}  // namespace WfpFirewall::Sublayers
