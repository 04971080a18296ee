#include "unit/policy/PolicyTest.h"

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kBlockAll = "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -";

/// The tests name filters by their number in the table, from 1.
class NearMissTest : public PolicyTest {
 protected:
  /// The near misses of all sublayers at the first layer, such as "1 remote port".
  static std::vector<std::string> NearMisses(const Policy::Connection& connection) {
    const Policy::Snapshot snapshot = Read();
    std::vector<std::string> texts;
    const Policy::Explanation explanation = Policy::Decider(snapshot).Explain(connection);
    for (const Policy::SublayerTrace& sublayer : explanation.layers.at(0).sublayers) {
      for (const Policy::NearMiss& miss : sublayer.nearMisses) {
        texts.push_back(std::to_string(1 + (miss.filter - snapshot.filters.data())) + ' ' +
                        std::string(Policy::FieldText(miss.field)));
      }
    }
    return texts;
  }

  static std::string ExplanationOf(const Policy::Connection& connection, const Policy::Labels& labels = {}) {
    const Policy::Snapshot snapshot = Read();
    return Policy::Describe(Policy::Decider(snapshot).Explain(connection), labels);
  }

  static std::string NameOf(std::size_t filter) { return Policy::Describe(Read().filters.at(filter - 1)); }
  static std::string IdOf(std::size_t filter) { return std::to_string(Read().filters.at(filter - 1).id); }
};

constexpr const char* kLocalNetwork = R"(
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 2 | - | IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK 10.0.0.0/255.0.0.0 & IP_REMOTE_PORT NOT_EQUAL UINT16 53
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -
)";

TEST_F(NearMissTest, IsAPermitThatOneFieldKeepsFromEndingTheBlock) {
  Install(1, kLocalNetwork);
  EXPECT_THAT(NearMisses(To("10.0.0.1", 53)), ElementsAre("1 remote port"));
  EXPECT_THAT(NearMisses(To("198.51.100.1", 443)), ElementsAre("1 remote address"));
  EXPECT_THAT(NearMisses(To("198.51.100.1", 53)), IsEmpty());
  EXPECT_THAT(NearMisses(To("10.0.0.1", 443)), IsEmpty());
}

TEST_F(NearMissTest, IsToldWithTheValueThatMisses) {
  Install(1, kLocalNetwork);
  EXPECT_THAT(ExplanationOf(To("10.0.0.1", 53)),
              HasSubstr("hard block of " + NameOf(2) + "\n      matches every connection\n      " +
                        NameOf(1) + " would permit, but the remote port is 53\n"));
  Policy::Connection withoutPort = To("10.0.0.1");
  withoutPort.remotePort.reset();
  EXPECT_THAT(ExplanationOf(withoutPort),
              HasSubstr(NameOf(1) + " would permit, but the remote port is unset\n"));
}

TEST_F(NearMissTest, IsABlockThatOneFieldKeepsFromBlocking) {
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | ALE_APP_ID EQUAL BYTE_BLOB a.exe");
  EXPECT_THAT(NearMisses(To("10.0.0.1")), ElementsAre("1 application"));
  EXPECT_THAT(ExplanationOf(To("10.0.0.1")), HasSubstr("no filter matches\n      " + NameOf(1) +
                                                       " would block, but the application is other.exe\n"));
}

TEST_F(NearMissTest, IsNoFilterThatWouldComeTooLate) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 2 | - | -
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 1 | - | IP_REMOTE_PORT EQUAL UINT16 53
)");
  EXPECT_THAT(NearMisses(To("10.0.0.1", 443)), IsEmpty());
}

TEST_F(NearMissTest, IsNoFilterThatWouldDoTheSame) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 2 | - | IP_REMOTE_PORT EQUAL UINT16 53
)");
  EXPECT_THAT(NearMisses(To("10.0.0.1", 443)), IsEmpty());
}

TEST_F(NearMissTest, IsNoPermitWhereThePermitStands) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 1 | - | -
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 2 | CLEAR_ACTION_RIGHT | IP_REMOTE_PORT EQUAL UINT16 53
)");
  EXPECT_THAT(NearMisses(To("10.0.0.1", 443)), IsEmpty());
}

TEST_F(NearMissTest, IsNoPermitThatALowerSublayerWouldTakeBack) {
  Install(2, "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 1 | - | IP_REMOTE_PORT EQUAL UINT16 53");
  Install(1, kBlockAll);
  EXPECT_THAT(NearMisses(To("10.0.0.1", 443)), IsEmpty());
  SetUpAgain();
  Install(2, "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 1 | CLEAR_ACTION_RIGHT | IP_REMOTE_PORT EQUAL UINT16 53");
  Install(1, kBlockAll);
  EXPECT_THAT(NearMisses(To("10.0.0.1", 443)), ElementsAre("1 remote port"));
}

TEST_F(NearMissTest, IsNoBlockBelowAHardPermit) {
  Install(2, "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 1 | CLEAR_ACTION_RIGHT | -");
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_PORT EQUAL UINT16 53");
  EXPECT_THAT(NearMisses(To("10.0.0.1", 443)), IsEmpty());
}

TEST_F(NearMissTest, IsToldOfEachSublayerThatBlocks) {
  Install(2, kLocalNetwork);
  Install(1, kLocalNetwork);
  EXPECT_THAT(NearMisses(To("10.0.0.1", 53)), ElementsAre("1 remote port", "3 remote port"));
}

TEST_F(NearMissTest, IsNoFilterThatOnlyTheEngineCanJudge) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 2 | - | IP_REMOTE_PORT EQUAL UINT16 53 & INTERFACE_TYPE EQUAL UINT32 6
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 2 | - | ALE_APP_ID GREATER BYTE_BLOB a
)");
  EXPECT_THAT(NearMisses(To("10.0.0.1", 443)), IsEmpty());
}

TEST_F(NearMissTest, IsACalloutThatWouldLetPass) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -
ALE_AUTH_CONNECT_V4 | CALLOUT_TERMINATING | UINT8 2 | - | IP_REMOTE_PORT EQUAL UINT16 53
)");
  EXPECT_THAT(ExplanationOf(To("10.0.0.1", 443)),
              HasSubstr(NameOf(2) + " would permit, but the remote port is 443\n"));
}

TEST_F(NearMissTest, IsOfTheLayerThatWouldAskTheFilter) {
  Install(1, R"(
ALE_FLOW_ESTABLISHED_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_PORT EQUAL UINT16 53
ALE_FLOW_ESTABLISHED_V4 | BLOCK | UINT8 1 | - | DIRECTION EQUAL UINT32 1
)");
  EXPECT_THAT(NearMisses(To("10.0.0.1", 443)), IsEmpty());
  EXPECT_THAT(ExplanationOf(To("10.0.0.1", 443)),
              EndsWith("      " + NameOf(1) +
                       " would block, but the remote port is 443\n"
                       "    no filter matches for certain: the engine permits\n"));
}

TEST_F(NearMissTest, ThoseOfOneFieldAreOneLineThatIsCut) {
  std::string filters = std::string(kBlockAll) + '\n';
  for (const char* host : {"1", "2", "3", "4", "5", "6", "7"}) {
    filters +=
        std::string("ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 2 | - | IP_REMOTE_ADDRESS EQUAL UINT32 10.0.0.") +
        host + '\n';
  }
  Install(1, filters +
                 "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 3 | - | FLAGS EQUAL UINT32 1\n"
                 "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 3 | - | IP_LOCAL_INTERFACE EQUAL UINT64 7\n");
  EXPECT_THAT(ExplanationOf(To("198.51.100.1"), {{{999, "Ethernet"}}, {}}),
              HasSubstr("      " + NameOf(9) + " would permit, but the flags are 0x00000000\n      " +
                        NameOf(10) + " would permit, but the interface is Ethernet\n      filters " +
                        IdOf(8) + ", " + IdOf(7) + ", " + IdOf(6) + ", " + IdOf(5) + ", " + IdOf(4) +
                        " and 2 more would permit, but the remote address is 198.51.100.1\n"));
}

TEST_F(NearMissTest, TheKillSwitchTellsWhatWouldBeFree) {
  Promises::Features features;
  features.killSwitch.emplace();
  Install(features);
  const std::string text = ExplanationOf(To("10.0.0.1", 53));
  EXPECT_THAT(text, HasSubstr("\" would permit, but the remote port is 53\n"));
  EXPECT_THAT(text, HasSubstr("\" would permit, but the flags are 0x00000000\n"));
}

}  // namespace
