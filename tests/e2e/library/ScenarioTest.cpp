#include "LibraryTest.h"

namespace {

using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint32_t kPeer[]{0x64400009};
constexpr std::uint32_t kOtherPeers[]{0x6440000a, 0x6440000b};
constexpr std::uint32_t kPermitted[]{0xcb007105};

/// A host that uses all features.
class LibraryScenario : public LibraryTest {
 protected:
  LibraryScenario() {
    engine_.PretendFileExists(L"C:\\dns.exe");
    Initialize();
  }

  void SwitchAllOn() {
    EXPECT_EQ(EnableLeakProtection(nullptr, 0), 0U);
    EXPECT_THAT(engine_.Filters(), SizeIs(32));
    EXPECT_EQ(library_->EnableDhcp(Log), 0U);
    EXPECT_THAT(engine_.Filters(), SizeIs(38));
    EXPECT_EQ(library_->EnableSkeinFirewallRules(Log, nullptr, 0, 8, kPeer, 1), 0U);
    EXPECT_THAT(engine_.Filters(), SizeIs(40));
    EXPECT_EQ(library_->DisableLocalNetwork(Log), 0U);
    EXPECT_THAT(engine_.Filters(), SizeIs(55));
    EXPECT_EQ(DisableInternet(), 0U);
    EXPECT_THAT(engine_.Filters(), SizeIs(106));
    ExpectQueries(true);
  }

  void ReplaceAll() {
    EXPECT_EQ(DisableInternet(), 0U);
    EXPECT_EQ(library_->EnableSkeinFirewallRules(Log, nullptr, 0, 9, kOtherPeers, 2), 0U);
    EXPECT_EQ(EnableLeakProtection(kPermitted, 1), 0U);
    EXPECT_EQ(library_->EnableDhcp(Log), 0U);
    EXPECT_EQ(library_->DisableLocalNetwork(Log), 0U);
    EXPECT_THAT(engine_.Filters(), SizeIs(107));
    EXPECT_EQ(engine_.CountOutstanding().openTransactions, 0U);
    ExpectQueries(true);
  }

  void SwitchAllOff() {
    EXPECT_EQ(library_->DisableSkeinFirewallRules(), 0U);
    EXPECT_THAT(engine_.Filters(), SizeIs(105));
    EXPECT_EQ(library_->EnableInternet(), 0U);
    EXPECT_THAT(engine_.Filters(), SizeIs(54));
    EXPECT_EQ(library_->DisableLeakProtection(), 0U);
    EXPECT_THAT(engine_.Filters(), SizeIs(21));
    EXPECT_EQ(library_->EnableLocalNetwork(), 0U);
    EXPECT_THAT(engine_.Filters(), SizeIs(6));
    EXPECT_EQ(library_->DisableDhcp(Log), 0U);
    EXPECT_THAT(engine_.Snapshot(), SizeIs(1));  // the provider
    ExpectQueries(false);
    EXPECT_STREQ(library_->GetErrorText(), "");
  }

 private:
  std::uint64_t EnableLeakProtection(const std::uint32_t* addresses, std::uint64_t count) {
    return library_->EnableLeakProtection("198.51.100.7", Log, nullptr, 0, 7, addresses, count);
  }

  void ExpectQueries(bool on) {
    EXPECT_EQ(library_->IsInternetEnabled(), on ? 0U : 1U);
    EXPECT_EQ(library_->IsLocalNetworkEnabled(), on ? 0U : 1U);
    EXPECT_EQ(library_->IsDhcpEnabled(), on ? 1U : 0U);
    EXPECT_EQ(library_->IsLeakProtectionEnabled(), on ? 1U : 0U);
  }
};

TEST_F(LibraryScenario, AllFeaturesGoOnAreReplacedAndGoOffInAnotherOrderTwice) {
  SwitchAllOn();
  ReplaceAll();
  SwitchAllOff();

  SwitchAllOn();
  Initialize();
  EXPECT_THAT(engine_.Snapshot(), IsEmpty());
  EXPECT_EQ(engine_.CountOutstanding().sessions, 0U);

  SwitchAllOn();
  ReplaceAll();
  SwitchAllOff();

  library_.reset();
  EXPECT_THAT(engine_.Snapshot(), IsEmpty());
}

}  // namespace
