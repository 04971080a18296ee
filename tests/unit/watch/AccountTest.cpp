#include "watch/Account.h"

#include "unit/policy/PolicyTest.h"
#include "unit/watch/Drops.h"

namespace {

using Watch::Account;
using Watch::NetEvent;
using Agreement = Watch::Account::Agreement;

constexpr GUID kOurProvider{0xaaaaaaaa, 1, 2, {3, 4, 5, 6, 7, 8, 9, 10}};

class AccountTest : public PolicyTest {
 protected:
  /// The installed filters; the first gets the id 12, the name "Filter 12" and our provider, and so on.
  static Policy::Snapshot ReadNumbered() {
    Policy::Snapshot snapshot = Read();
    snapshot.providers = {{kOurProvider, "Corvane", ""}};
    for (std::size_t i = 0; i < snapshot.filters.size(); ++i) {
      snapshot.filters[i].id = i + 12;
      snapshot.filters[i].name = "Filter " + std::to_string(i + 12);
      snapshot.filters[i].providerKey = kOurProvider;
    }
    return snapshot;
  }

  static Account AccountOf(const NetEvent& event) {
    return Watch::AccountOf(event, {&ReadNumbered, kOurProvider, {}});
  }
  static std::string TextOf(const NetEvent& event) { return Describe(AccountOf(event)); }
};

TEST_F(AccountTest, NamesTheFilterAndItsOwner) {
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -");
  EXPECT_EQ(TextOf(Drop()),
            "blocked by filter 12 \"Filter 12\" of Corvane (ours)\n"
            "at ALE_AUTH_CONNECT_V4, which matches every connection\n"
            "without that filter: permitted: no filter matches\n");
  EXPECT_EQ(AccountOf(Drop()).agreement, Agreement::Agrees);
}

TEST_F(AccountTest, TellsWhichFiltersWouldPermitTheConnectionAndWhy) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 2 | - | IP_REMOTE_PORT EQUAL UINT16 53
)");
  EXPECT_EQ(TextOf(Drop()),
            "blocked by filter 12 \"Filter 12\" of Corvane (ours)\n"
            "at ALE_AUTH_CONNECT_V4, which matches every connection\n"
            "it would be permitted by filter 13 \"Filter 13\", but the remote port is 443\n"
            "without that filter: permitted: no filter matches\n");
}

TEST_F(AccountTest, TellsWhoWouldDecideInstead) {
  Install(2, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -");
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 2 | - | -
ALE_AUTH_CONNECT_V6 | PERMIT | UINT8 2 | - | -
)");
  EXPECT_EQ(AccountOf(Drop()).withoutFilter, "permitted by filter 13 \"Filter 13\" of Corvane (ours)");
}

TEST_F(AccountTest, SaysWhenAnotherFilterWouldBlockAllTheSame) {
  Install(2, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -");
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -");
  EXPECT_EQ(AccountOf(Drop()).withoutFilter, "blocked by filter 13 \"Filter 13\" of Corvane (ours)");
}

TEST_F(AccountTest, SaysWhenThePresentFiltersDecideOtherwise) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_PORT EQUAL UINT16 53
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 1 | - | IP_REMOTE_PORT EQUAL UINT16 443
)");
  EXPECT_EQ(TextOf(Drop()),
            "blocked by filter 12 \"Filter 12\" of Corvane (ours)\n"
            "at ALE_AUTH_CONNECT_V4, which matches IP_REMOTE_PORT EQUAL UINT16 53\n"
            "the present filters say otherwise: they have changed, or the engine knows more than the event "
            "tells\n"
            "  permitted by filter 13 \"Filter 13\" of Corvane (ours)\n"
            "  at ALE_AUTH_CONNECT_V4, which matches IP_REMOTE_PORT EQUAL UINT16 443\n");
  EXPECT_EQ(AccountOf(Drop()).agreement, Agreement::Differs);
}

TEST_F(AccountTest, LeavesOpenWhatTheFiltersAloneDoNotTell) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT64 1 | - | -
ALE_AUTH_CONNECT_V4 | PERMIT | UINT64 1 | - | IP_PROTOCOL EQUAL UINT8 6
)");
  const Account account = AccountOf(Drop());
  EXPECT_EQ(account.agreement, Agreement::Depends);
  EXPECT_THAT(account.details, testing::HasSubstr("of the present filters alone:\n"
                                                  "  it depends on what filters alone do not tell:\n"
                                                  "    with filter-ties = "));
  EXPECT_EQ(account.withoutFilter, "permitted by filter 13 \"Filter 13\" of Corvane (ours)");
}

TEST_F(AccountTest, AsksForTheProgramTheUserAndTheProfileOfTheEvent) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | ORIGINAL_PROFILE_ID EQUAL UINT32 1 & IP_REMOTE_PORT EQUAL UINT16 443
)");
  NetEvent event = Drop();
  event.profile = 1;
  EXPECT_EQ(AccountOf(event).agreement, Agreement::Agrees);
  event.profile = 2;
  EXPECT_EQ(AccountOf(event).agreement, Agreement::Differs);
  event.profile.reset();
  EXPECT_EQ(AccountOf(event).agreement, Agreement::Depends);
}

TEST_F(AccountTest, KnowsThatAConnectionIsLoopback) {
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | FLAGS FLAGS_ALL_SET UINT32 1");
  NetEvent event = Drop();
  EXPECT_EQ(AccountOf(event).agreement, Agreement::Differs);
  event.isLoopback = true;
  EXPECT_EQ(AccountOf(event).agreement, Agreement::Agrees);
}

TEST_F(AccountTest, AConnectionThatIsAcceptedIsInboundWhateverItsPacketsDirection) {
  Install(1, "ALE_AUTH_RECV_ACCEPT_V4 | BLOCK | UINT8 1 | - | -");
  NetEvent event = Drop();
  event.layerId = UINT16{44};
  EXPECT_EQ(AccountOf(event).agreement, Agreement::Agrees);
}

TEST_F(AccountTest, OfOtherLayersOnlyTheFilterIsTold) {
  Install(1, "INBOUND_TRANSPORT_V4_DISCARD | BLOCK | UINT8 1 | - | -");
  NetEvent event = Drop();
  event.layerId = UINT16{13};
  EXPECT_EQ(TextOf(event),
            "blocked by filter 12 \"Filter 12\" of Corvane (ours)\n"
            "at INBOUND_TRANSPORT_V4_DISCARD, which matches every connection\n");
}

TEST_F(AccountTest, AnEventWithoutBothEndsIsNotExplained) {
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -");
  NetEvent event = Drop();
  event.remoteAddress.reset();
  EXPECT_EQ(AccountOf(event).agreement, Agreement::NotAsked);
}

TEST_F(AccountTest, AProtocolWithoutPortsIsExplainedWithoutThem) {
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_PROTOCOL EQUAL UINT8 47");
  NetEvent event = Drop();
  event.protocol = UINT8{47};
  event.localPort.reset();
  event.remotePort.reset();
  EXPECT_EQ(AccountOf(event).agreement, Agreement::Agrees);
  event.protocol = UINT8{17};
  EXPECT_EQ(AccountOf(event).agreement, Agreement::NotAsked);
}

TEST_F(AccountTest, FilterZeroIsTheEngineItself) {
  NetEvent event = Drop();
  event.filterId = 0;
  EXPECT_EQ(TextOf(event),
            "blocked by no filter: the engine itself decided\n"
            "at ALE_AUTH_CONNECT_V4\n"
            "the present filters say otherwise: they have changed, or the engine knows more than the event "
            "tells\n"
            "  permitted: no filter matches\n");
}

TEST_F(AccountTest, AFilterThatIsNotThereIsNotWhatTheConnectionDependsOn) {
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | ORIGINAL_PROFILE_ID EQUAL UINT32 1");
  NetEvent event = Drop();
  event.profile.reset();
  EXPECT_EQ(AccountOf(event).agreement, Agreement::Depends);
  event.filterId = 4711;
  EXPECT_EQ(AccountOf(event).agreement, Agreement::Differs);
  event.filterId.reset();
  EXPECT_EQ(AccountOf(event).agreement, Agreement::Differs);
  EXPECT_EQ(AccountOf(event).withoutFilter, "");
  EXPECT_EQ(AccountOf(event).sentence, "blocked; the event does not tell by what");
}

TEST_F(AccountTest, AFilterOfWhichItIsKnownThatItDoesNotMatchIsNotWhatTheConnectionDependsOn) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_PORT EQUAL UINT16 53
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | ORIGINAL_PROFILE_ID EQUAL UINT32 1
)");
  NetEvent event = Drop();
  event.profile.reset();
  EXPECT_EQ(AccountOf(event).agreement, Agreement::Differs);
}

TEST_F(AccountTest, AsksForTheTokenOfTheEventsUser) {
  Install(1,
          "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | ALE_USER_ID EQUAL SECURITY_DESCRIPTOR D:(A;;CC;;;SY)");
  NetEvent event = Drop();
  EXPECT_EQ(AccountOf(event).agreement, Agreement::Differs);
  event.user = Policy::ParseSid("S-1-5-18");
  EXPECT_EQ(AccountOf(event).agreement, Agreement::Agrees);
  event.package = Policy::ParseSid("S-1-15-2-7");
  EXPECT_EQ(AccountOf(event).agreement, Agreement::Depends);
}

TEST_F(AccountTest, AProgramOfASystemAccountMayBeAnyService) {
  Install(1,
          "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | ALE_USER_ID EQUAL SECURITY_DESCRIPTOR "
          "D:(A;;CC;;;S-1-5-80-1-2-3-4-5)");
  NetEvent event = Drop();
  for (const char* account : {"S-1-5-18", "S-1-5-19", "S-1-5-20"}) {
    event.user = Policy::ParseSid(account);
    EXPECT_EQ(AccountOf(event).agreement, Agreement::Depends) << account;
  }
  event.user = Policy::ParseSid("S-1-5-18");
  event.application = Policy::ApplicationBytes("System");
  EXPECT_EQ(AccountOf(event).agreement, Agreement::Differs);
}

TEST_F(AccountTest, AFilterThatWasNeverSeenIsSaidToBeGone) {
  NetEvent event = Drop();
  event.filterId = 4711;
  EXPECT_EQ(AccountOf(event).sentence, "blocked by filter 4711, which is gone and was never seen");
}

TEST_F(AccountTest, AFilterThatIsGoneIsStillNamed) {
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -");
  Policy::Snapshot snapshot = ReadNumbered();
  Watch::FilterKeeper filters([&snapshot] { return snapshot; }, kOurProvider, {});
  snapshot.filters.clear();
  filters.Refresh(12, Watch::FilterKeeper::Clock::time_point() + std::chrono::seconds(2));
  EXPECT_EQ(Describe(Watch::AccountOf(Drop(), filters)),
            "blocked by filter 12 \"Filter 12\" of Corvane (ours), which is gone by now\n"
            "at ALE_AUTH_CONNECT_V4, which matches every connection\n"
            "the present filters say otherwise: they have changed, or the engine knows more than the event "
            "tells\n"
            "  permitted: no filter matches\n");
}

TEST_F(AccountTest, NamesTheCapabilityThatIsMissing) {
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -");
  NetEvent event = Drop();
  event.kind = Watch::EventKind::CapabilityDrop;
  event.layerId.reset();
  event.direction.reset();
  event.package = Policy::ParseSid("S-1-15-2-7");
  event.capability = 0;
  EXPECT_EQ(TextOf(event),
            "blocked for want of the capability internetClient by filter 12 \"Filter 12\" of Corvane (ours)\n"
            "at ALE_AUTH_CONNECT_V4, which matches every connection\n"
            "without that filter: permitted: no filter matches\n");
}

}  // namespace
