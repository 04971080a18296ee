#include "policy/Summary.h"

#include "catalog/Keys.h"
#include "unit/policy/PolicyTest.h"

namespace {

using Policy::Snapshot;
using testing::HasSubstr;
using testing::Not;

constexpr GUID kOurProvider{0xaaaaaaaa, 1, 2, {3, 4, 5, 6, 7, 8, 9, 10}};
constexpr GUID kTheirProvider{0xbbbbbbbb, 1, 2, {3, 4, 5, 6, 7, 8, 9, 10}};

class SummaryTest : public PolicyTest {
 protected:
  /// The installed filters, the first of which gets the id 1, the name "Filter 1" and a provider, and so on.
  static Snapshot ReadOwned(const std::vector<GUID>& providers) {
    Snapshot snapshot = Read();
    snapshot.providers = {{kOurProvider, "Corvane", "Rules of a test"}, {kTheirProvider, "Other VPN", ""}};
    for (std::size_t i = 0; i < snapshot.filters.size(); ++i) {
      snapshot.filters[i].id = i + 1;
      snapshot.filters[i].name = "Filter " + std::to_string(i + 1);
      snapshot.filters[i].providerKey = providers.at(i);
    }
    return snapshot;
  }

  /// The summary without its first line, the connection.
  static std::string SummaryOf(const Snapshot& snapshot, const Policy::Connection& connection) {
    const std::string text = Policy::Summarize(Policy::Decider(snapshot).Explain(connection),
                                               Policy::Owners(snapshot, kOurProvider));
    return text.substr(text.find('\n') + 1);
  }
};

TEST_F(SummaryTest, BeginsWithTheConnection) {
  const Snapshot snapshot = Read();
  EXPECT_EQ(
      Policy::Summarize(Policy::Decider(snapshot).Explain(To("198.51.100.7")), Policy::Owners(snapshot)),
      "outbound IPv4, protocol 6 (TCP), local 192.0.2.1:50000, remote 198.51.100.7:443, application "
      "other.exe, interface 999, flags 0x00000000\n"
      "  permitted: no filter matches\n");
}

TEST_F(SummaryTest, NamesTheDecidingFilterAsOurs) {
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -");
  EXPECT_EQ(SummaryOf(ReadOwned({kOurProvider}), To("198.51.100.7")),
            "  blocked by filter 1 \"Filter 1\" of Corvane (ours)\n"
            "  at ALE_AUTH_CONNECT_V4, which matches every connection\n");
}

TEST_F(SummaryTest, NamesAnotherOwnersBlockOfALowerSublayer) {
  Install(2, "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 1 | - | -");
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_PORT EQUAL UINT16 443");
  EXPECT_EQ(SummaryOf(ReadOwned({kOurProvider, kTheirProvider}), To("198.51.100.7")),
            "  blocked by filter 2 \"Filter 2\" of Other VPN\n"
            "  at ALE_AUTH_CONNECT_V4, which matches IP_REMOTE_PORT EQUAL UINT16 443\n");
}

TEST_F(SummaryTest, OfPermitsTheFirstHardOneDecides) {
  Install(3, "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 1 | CLEAR_ACTION_RIGHT | -");
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -");
  EXPECT_THAT(SummaryOf(ReadOwned({kTheirProvider, kOurProvider}), To("198.51.100.7")),
              HasSubstr("permit-stands permitted by filter 1 \"Filter 1\" of Other VPN\n"));
}

TEST_F(SummaryTest, TellsForEachReadingWhoDecides) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT64 1 | - | IP_REMOTE_PORT EQUAL UINT16 443
ALE_AUTH_CONNECT_V4 | PERMIT | UINT64 1 | - | IP_PROTOCOL EQUAL UINT8 6
)");
  const std::string text = SummaryOf(ReadOwned({kOurProvider, kTheirProvider}), To("198.51.100.7"));
  EXPECT_THAT(text, HasSubstr("  it depends on what filters alone do not tell:\n"
                              "    with filter-ties = "));
  EXPECT_THAT(text, HasSubstr(" blocked by filter 1 \"Filter 1\" of Corvane (ours)\n"));
  EXPECT_THAT(text, HasSubstr(" permitted by filter 2 \"Filter 2\" of Other VPN\n"));
}

TEST_F(SummaryTest, ListsOnlyFiltersThatCouldTurnTheVerdict) {
  // The first could block; the second would permit, as the third does anyway; the fourth comes too late.
  const std::string perhaps = "ALE_APP_ID GREATER BYTE_BLOB a\n";
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 9 | - | " + perhaps +
                 "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 8 | - | " + perhaps +
                 "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 7 | - | -\n"
                 "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 6 | - | " +
                 perhaps);
  EXPECT_EQ(SummaryOf(ReadOwned({kTheirProvider, kTheirProvider, kTheirProvider, kTheirProvider}),
                      To("198.51.100.7")),
            "  not known: it hangs on filters that cannot be judged from what was given\n"
            "  open: ALE_APP_ID\n"
            "    filter 1 \"Filter 1\" of Other VPN would block when ALE_APP_ID GREATER BYTE_BLOB a\n");
}

TEST_F(SummaryTest, ACertainVerdictHasNoOpenFilters) {
  Install(2, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -");
  Install(1, "ALE_AUTH_CONNECT_V4 | CALLOUT_TERMINATING | UINT8 1 | - | -");
  EXPECT_THAT(SummaryOf(ReadOwned({kOurProvider, kTheirProvider}), To("198.51.100.7")),
              Not(HasSubstr("Filter 2")));
}

TEST_F(SummaryTest, NamesTheOwnerOfACallout) {
  Install(1, "ALE_AUTH_CONNECT_V4 | CALLOUT_TERMINATING | UINT8 1 | - | -");
  EXPECT_EQ(SummaryOf(ReadOwned({kTheirProvider}), To("198.51.100.7")),
            "  it depends on what filters alone do not tell:\n"
            "    with callouts = pass permitted by the callout of filter 1 \"Filter 1\" of Other VPN\n"
            "    with callouts = block blocked by the callout of filter 1 \"Filter 1\" of Other VPN\n");
}

TEST_F(SummaryTest, TellsWhatSettlesAnOpenQuestion) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 9 | - | IP_PROTOCOL EQUAL UINT8 6 & ORIGINAL_PROFILE_ID EQUAL UINT32 1
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 8 | - | ORIGINAL_PROFILE_ID EQUAL UINT32 2
)");
  const Snapshot snapshot = ReadOwned({kTheirProvider, kTheirProvider});
  EXPECT_THAT(Policy::Summarize(Policy::Decider(snapshot).Explain(To("198.51.100.7")),
                                Policy::Owners(snapshot), {}, {{"profile", "give it"}}),
              testing::EndsWith("  open: profile: give it\n"
                                "    filter 1 \"Filter 1\" of Other VPN would block when IP_PROTOCOL EQUAL "
                                "UINT8 6 & ORIGINAL_PROFILE_ID EQUAL public\n"));
  Policy::Circumstances known;
  known.profile = 2;
  EXPECT_THAT(Policy::Summarize(Policy::Decider(snapshot, known).Explain(To("198.51.100.7")),
                                Policy::Owners(snapshot)),
              HasSubstr("\n  permitted by filter 2 \"Filter 2\" of Other VPN\n"));
}

TEST_F(SummaryTest, CountsTheRestOfManyFilters) {
  std::string filters;
  for (int port = 1; port <= 54; ++port) {
    filters += "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 2 | - | IP_REMOTE_PORT EQUAL UINT16 " +
               std::to_string(port) + "\n";
  }
  Install(1, filters + "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -\n");
  EXPECT_THAT(SummaryOf(ReadOwned(std::vector<GUID>(55, kOurProvider)), To("198.51.100.7")),
              HasSubstr("  it would be permitted by filter 54 \"Filter 54\", filter 53 \"Filter 53\", filter "
                        "52 \"Filter 52\" and 51 more, but the remote port is 443\n"));
}

TEST_F(SummaryTest, NamesProvidersByWhatTellsThemApart) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_PORT EQUAL UINT16 1
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_PORT EQUAL UINT16 2
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_PORT EQUAL UINT16 3
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_PORT EQUAL UINT16 4
)");
  constexpr GUID kUnlisted{0xcccccccc, 0, 0, {}};
  Snapshot snapshot =
      ReadOwned({kTheirProvider, Catalog::kWindowsFirewallProviderKey, kUnlisted, kOurProvider});
  snapshot.filters[3].providerKey.reset();
  snapshot.providers = {{kTheirProvider, "Maker", "Something that filters"},
                        {kOurProvider, "Maker", "Ours"},
                        {Catalog::kWindowsFirewallProviderKey, "Maker", "Of the system"}};
  const Policy::Owners owners(snapshot, kOurProvider);
  EXPECT_EQ(owners.NameOf(snapshot.filters[0]), "Something that filters");
  EXPECT_EQ(owners.NameOf(snapshot.filters[1]), "Windows Firewall");
  EXPECT_EQ(owners.NameOf(snapshot.filters[2]), "{cccccccc-0000-0000-0000-000000000000}");
  EXPECT_EQ(owners.NameOf(snapshot.filters[3]), "no provider");
  EXPECT_EQ(owners.KindOf(snapshot.filters[0]), Policy::OwnerKind::Other);
  EXPECT_EQ(owners.KindOf(snapshot.filters[1]), Policy::OwnerKind::Platform);
  EXPECT_EQ(owners.KindOf(snapshot.filters[3]), Policy::OwnerKind::Other);
}

}  // namespace
