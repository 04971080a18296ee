#include <algorithm>
#include <vector>

#include "LibraryTest.h"

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

/// 100.64.0.9 and 203.0.113.5
constexpr std::uint32_t kPeers[]{0x64400009, 0xcb007105};

class LocalNetworkAndSkein : public LibraryTest {
 protected:
  LocalNetworkAndSkein() { Initialize(); }

  [[nodiscard]] std::uint64_t EnableSkein(std::uint64_t luid) const {
    return library_->EnableSkeinFirewallRules(Log, nullptr, 0, luid, kPeers, 2);
  }
};

TEST_F(LocalNetworkAndSkein, BlockAndFreeTheLocalNetworks) {
  EXPECT_EQ(library_->IsLocalNetworkEnabled(), 1U);
  EXPECT_EQ(library_->DisableLocalNetwork(Log), 0U);
  EXPECT_THAT(TakeLog(), ElementsAre("NATIVE: Apply firewall."));
  EXPECT_EQ(library_->IsLocalNetworkEnabled(), 0U);
  const Texts objects = engine_.Snapshot();
  ASSERT_THAT(objects, SizeIs(17));
  EXPECT_EQ(objects[1],
            "sublayer c0de0000-0003-4003-8000-000000000003 flags 0 weight 8 provider - "
            "\"local network description\" \"\"");
  EXPECT_THAT(objects[2],
              EndsWith("ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT NOT_EQUAL "
                       "UINT16 53 & IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 192.168.0.0/255.255.0.0"));
  EXPECT_THAT(objects[16],
              EndsWith("ALE_FLOW_ESTABLISHED_V6 | BLOCK | UINT8 14 | - | IP_REMOTE_PORT NOT_EQUAL "
                       "UINT16 53 & IP_REMOTE_ADDRESS EQUAL V6_ADDR_MASK fc00::/7"));

  engine_.ClearJournal();
  EXPECT_EQ(library_->DisableLocalNetwork(Log), 0U);
  EXPECT_THAT(engine_.Journal(), IsEmpty());

  EXPECT_EQ(library_->EnableLocalNetwork(), 0U);
  EXPECT_EQ(library_->IsLocalNetworkEnabled(), 1U);
  EXPECT_THAT(engine_.Snapshot(), SizeIs(1));  // the provider
}

TEST_F(LocalNetworkAndSkein, InstallReplaceAndRemoveSkein) {
  EXPECT_EQ(EnableSkein(7), 0U);
  EXPECT_THAT(TakeLog(),
              ElementsAre("NATIVE: Enabling skein firewall rules",
                          "NATIVE: Enabling  skein firewall. Allowed interface: ",
                          "NATIVE: Allowing interface by LUID 7", "NATIVE: Apply skein firewall rules."));
  EXPECT_THAT(engine_.Filters(), SizeIs(2));

  EXPECT_EQ(EnableSkein(8), 0U);
  const Texts filters = engine_.Filters();
  ASSERT_THAT(filters, SizeIs(2));
  EXPECT_THAT(filters[0], EndsWith("\"skein name\" \"skein description\" ALE_AUTH_RECV_ACCEPT_V4 | BLOCK | "
                                   "UINT8 14 | CLEAR_ACTION_RIGHT | IP_LOCAL_INTERFACE EQUAL UINT64 8 & "
                                   "IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 100.64.0.0/255.192.0.0"));
  EXPECT_THAT(filters[1], EndsWith("ALE_AUTH_RECV_ACCEPT_V4 | PERMIT | UINT8 15 | CLEAR_ACTION_RIGHT | "
                                   "IP_LOCAL_INTERFACE EQUAL UINT64 8 & IP_REMOTE_ADDRESS EQUAL UINT32 "
                                   "100.64.0.9 & IP_REMOTE_ADDRESS EQUAL UINT32 203.0.113.5"));

  EXPECT_EQ(library_->DisableSkeinFirewallRules(), 0U);
  EXPECT_THAT(engine_.Snapshot(), SizeIs(1));
  engine_.ClearJournal();
  EXPECT_EQ(library_->DisableSkeinFirewallRules(), 0U);
  EXPECT_THAT(engine_.Journal(), IsEmpty());
}

TEST_F(LocalNetworkAndSkein, SearchTheAdaptersOfThisMachineByName) {
  constexpr const wchar_t* kNames[]{L"no adapter", L"has this name"};
  EXPECT_EQ(library_->EnableSkeinFirewallRules(Log, kNames, 2, 0, kPeers, 2), 0U);
  const Texts log = TakeLog();
  EXPECT_EQ(log.at(1), "NATIVE: Enabling  skein firewall. Allowed interface: no adapter,has this name");
  EXPECT_EQ(log.at(2), "NATIVE: Using adapters search by name");
  EXPECT_EQ(log.at(log.size() - 2), "NATIVE: skein firewall luids empty.");
  EXPECT_THAT(engine_.Snapshot(), SizeIs(2));  // the provider and an empty sublayer
}

TEST_F(LocalNetworkAndSkein, KeepNoPointerToThePeers) {
  std::vector<std::uint32_t> peers(std::begin(kPeers), std::end(kPeers));
  engine_.FailCall("FwpmEngineOpen0", 1, 5);
  ASSERT_EQ(library_->EnableSkeinFirewallRules(Log, nullptr, 0, 7, peers.data(), 2), 5U);
  std::fill(peers.begin(), peers.end(), 0);

  ASSERT_EQ(library_->EnableDhcp(Log), 0U);  // also installs the network's rule sets, which are registered
  EXPECT_THAT(
      engine_.Filters().at(1),
      HasSubstr("IP_REMOTE_ADDRESS EQUAL UINT32 100.64.0.9 & IP_REMOTE_ADDRESS EQUAL UINT32 203.0.113.5"));
}

TEST_F(LocalNetworkAndSkein, GiveAnEnginesCodeAndLogItSigned) {
  engine_.FailCall("FwpmFilterAdd0", 1, 0x80320009);
  EXPECT_EQ(library_->DisableLocalNetwork(Log), 2150760457U);
  EXPECT_THAT(TakeLog(),
              ElementsAre("NATIVE: Apply firewall.", "NATIVE: Error applying firewall.", "-2144206839"));
  EXPECT_STREQ(library_->GetErrorText(), "Failed to add filter to firewall.");
  EXPECT_EQ(library_->EnableLocalNetwork(), 0U);

  engine_.FailCall("FwpmSubLayerAdd0", 1, 0x80320009);
  EXPECT_EQ(EnableSkein(7), 2150760457U);
  EXPECT_EQ(TakeLog().back(), "-2144206839");
  EXPECT_STREQ(library_->GetErrorText(), "Error creating sublayer.");
}

}  // namespace
