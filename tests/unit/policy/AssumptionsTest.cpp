// Each assumption with filters on which it makes a difference, and the arithmetic of worlds.
#include "policy/Assumptions.h"

#include "unit/policy/PolicyTest.h"

namespace {

using Policy::Alternatives;
using Policy::Assumption;
using Policy::World;
using Policy::WorldSet;
using testing::ElementsAre;
using testing::IsEmpty;

class AssumptionsTest : public PolicyTest {
 protected:
  static Policy::Connection WithFlags(Policy::Connection connection, UINT32 flags) {
    connection.flags = flags;
    return connection;
  }
};

TEST_F(AssumptionsTest, OfFiltersOfEqualWeightTheNewestIsFirst) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT64 5 | - | IP_PROTOCOL EQUAL UINT8 6
ALE_AUTH_CONNECT_V4 | PERMIT | UINT64 5 | - | IP_REMOTE_PORT EQUAL UINT16 443
)");
  EXPECT_EQ(VerdictOf(To("198.51.100.1", 443)),
            "depends on filter-ties: permit with filter-ties = newest-first or filter-ties = permit-first; "
            "block with filter-ties = block-first");
  EXPECT_EQ(VerdictOf(To("198.51.100.1", 80)), "block");
  SetUpAgain();
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | PERMIT | UINT64 5 | - | IP_REMOTE_PORT EQUAL UINT16 443
ALE_AUTH_CONNECT_V4 | BLOCK | UINT64 5 | - | IP_PROTOCOL EQUAL UINT8 6
)");
  EXPECT_EQ(VerdictOf(To("198.51.100.1", 443)),
            "depends on filter-ties: permit with filter-ties = permit-first; block with filter-ties = "
            "newest-first or filter-ties = block-first");
}

TEST_F(AssumptionsTest, EqualWeightsOfEqualActionsMakeNoDifference) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT64 5 | - | IP_PROTOCOL EQUAL UINT8 6
ALE_AUTH_CONNECT_V4 | BLOCK | UINT64 5 | - | -
)");
  EXPECT_EQ(VerdictOf(To("198.51.100.1", 443)), "block");
}

TEST_F(AssumptionsTest, FiltersThatTheEngineWeighsAlikeTie) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 5 | - | -
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 5 | - | -
)");
  EXPECT_THAT(VerdictOf(To("198.51.100.1")), testing::StartsWith("depends on filter-ties: "));
}

TEST_F(AssumptionsTest, WeightsThatTheEngineChoosesAreTakenAsReported) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 5 | - | IP_PROTOCOL EQUAL UINT8 6
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 5 | - | IP_LOCAL_PORT EQUAL UINT16 50000
)");
  Policy::Snapshot snapshot = Read();
  snapshot.filters[0].effectiveWeight = 0x5000000000000001;
  snapshot.filters[1].effectiveWeight = 0x5000000000000002;
  EXPECT_EQ(Policy::Describe(Policy::Decider(snapshot).Decide(To("198.51.100.1"))), "permit");
  snapshot.filters[0].effectiveWeight = 0x5000000000000003;
  EXPECT_EQ(Policy::Describe(Policy::Decider(snapshot).Decide(To("198.51.100.1"))), "block");
}

TEST_F(AssumptionsTest, SublayersOfEqualWeightHaveOneOrder) {
  const char* block = "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 5 | - | -";
  const char* permit =
      "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 5 | CLEAR_ACTION_RIGHT | IP_REMOTE_PORT EQUAL UINT16 443";
  Install(1, block);
  Install(1, permit);
  EXPECT_EQ(VerdictOf(To("198.51.100.1", 443)), "block");
  SetUpAgain();
  Install(0, block);
  Install(0, permit);
  EXPECT_THAT(VerdictOf(To("198.51.100.1", 443)),
              testing::StartsWith("depends on static-block-below-hard-permit: "));
  EXPECT_EQ(VerdictOf(To("198.51.100.1", 80)), "block");
}

TEST_F(AssumptionsTest, SeveralNegationsOnOneField) {
  Install(1,
          "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 5 | - | IP_LOCAL_INTERFACE NOT_EQUAL UINT64 1 & "
          "IP_LOCAL_INTERFACE "
          "NOT_EQUAL UINT64 2");
  Policy::Connection connection = To("198.51.100.1");
  EXPECT_EQ(VerdictOf(connection), "block");
  connection.localInterface = 1;
  EXPECT_EQ(VerdictOf(connection),
            "depends on several-negations: permit with several-negations = all-hold; block with "
            "several-negations = "
            "any-holds");
}

TEST_F(AssumptionsTest, ANegationOfAFieldWithoutAValue) {
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 5 | - | IP_REMOTE_PORT NOT_EQUAL UINT16 53");
  Policy::Connection connection = To("198.51.100.1");
  connection.remotePort.reset();
  EXPECT_EQ(VerdictOf(connection),
            "depends on unset-fields: permit with unset-fields = no-match; block with unset-fields = match");
}

TEST_F(AssumptionsTest, ATestOfFlagsThatNobodyKnows) {
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 5 | - | FLAGS FLAGS_NONE_SET UINT32 1");
  Policy::Connection connection = To("198.51.100.1");
  connection.flags.reset();
  EXPECT_EQ(VerdictOf(connection),
            "depends on unset-fields: permit with unset-fields = no-match; block with unset-fields = match");
  SetUpAgain();
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 5 | - | FLAGS FLAGS_ANY_SET UINT32 1");
  EXPECT_EQ(VerdictOf(connection), "permit");
}

TEST_F(AssumptionsTest, AStaticBlockBelowAHardPermit) {
  Install(2, "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 5 | CLEAR_ACTION_RIGHT | -");
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 5 | - | -");
  EXPECT_EQ(VerdictOf(To("198.51.100.1")),
            "depends on static-block-below-hard-permit: permit with static-block-below-hard-permit = "
            "permit-stands; "
            "block with static-block-below-hard-permit = block-overrides");
}

TEST_F(AssumptionsTest, OtherBitsBesideTheLoopbackFlag) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 2 | - | FLAGS EQUAL UINT32 1
)");
  EXPECT_EQ(
      VerdictOf(WithFlags(To("198.51.100.1"), 1)),
      "depends on loopback-bits: permit with loopback-bits = alone; block with loopback-bits = accompanied");
  EXPECT_EQ(VerdictOf(WithFlags(To("198.51.100.1"), 5)), "block");
}

TEST_F(AssumptionsTest, TheLoopbackFlagComesWithReauthorizeToo) {
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 2 | - | FLAGS FLAGS_ALL_SET UINT32 0x800000");
  EXPECT_EQ(
      VerdictOf(WithFlags(To("198.51.100.1"), 5)),
      "depends on loopback-bits: permit with loopback-bits = alone; block with loopback-bits = accompanied");
  EXPECT_EQ(VerdictOf(WithFlags(To("198.51.100.1"), 0x400001)), "permit");
  EXPECT_EQ(VerdictOf(WithFlags(To("198.51.100.1"), 0x800005)), "block");
  EXPECT_EQ(VerdictOf(WithFlags(To("198.51.100.1"), 4)), "permit");
}

TEST_F(AssumptionsTest, WhereConnectionsAreAcceptedTheLoopbackFlagIsNeverAlone) {
  Install(1, R"(
ALE_AUTH_RECV_ACCEPT_V4 | BLOCK | UINT8 1 | - | -
ALE_AUTH_RECV_ACCEPT_V4 | PERMIT | UINT8 2 | - | FLAGS EQUAL UINT32 1
ALE_AUTH_RECV_ACCEPT_V4 | PERMIT | UINT8 2 | - | FLAGS EQUAL UINT32 0x800005
)");
  EXPECT_EQ(VerdictOf(WithFlags(From("198.51.100.1"), 1)), "block");
  EXPECT_EQ(VerdictOf(WithFlags(From("198.51.100.1"), 5)), "permit");
  EXPECT_EQ(VerdictOf(WithFlags(From("198.51.100.1"), 0x800005)), "permit");
  EXPECT_EQ(VerdictOf(WithFlags(From("198.51.100.1"), 0x400005)), "block");
}

TEST_F(AssumptionsTest, ABlockOfAnEstablishedFlow) {
  Install(1, "ALE_FLOW_ESTABLISHED_V4 | BLOCK | UINT8 1 | - | -");
  for (const Policy::Connection& connection : {To("198.51.100.1"), From("198.51.100.1")}) {
    EXPECT_EQ(VerdictOf(connection),
              "depends on flow-established-blocks: permit with flow-established-blocks = ignored; block with "
              "flow-established-blocks = honoured");
  }
}

TEST_F(AssumptionsTest, ACalloutThatAlwaysDecides) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | CALLOUT_TERMINATING | UINT8 2 | - | -
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -
)");
  EXPECT_EQ(VerdictOf(To("198.51.100.1")),
            "depends on callouts: permit with callouts = pass; block with callouts = block");
}

TEST_F(AssumptionsTest, ACalloutThatMayLetTheNextFilterDecide) {
  const char* callout = "ALE_AUTH_CONNECT_V4 | CALLOUT_UNKNOWN | UINT8 2 | - | -\n";
  Install(1, callout);
  EXPECT_EQ(VerdictOf(To("198.51.100.1")),
            "depends on callouts: permit with callouts = pass; block with callouts = block");
  SetUpAgain();
  Install(1, std::string(callout) + "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -");
  EXPECT_EQ(VerdictOf(To("198.51.100.1")), "block");
}

TEST_F(AssumptionsTest, ACalloutsBlockGetsPastAHardPermit) {
  Install(2, "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 1 | CLEAR_ACTION_RIGHT | -");
  Install(1, "ALE_AUTH_CONNECT_V4 | CALLOUT_TERMINATING | UINT8 1 | - | -");
  EXPECT_EQ(VerdictOf(To("198.51.100.1")),
            "depends on callouts: permit with callouts = pass; block with callouts = block");
}

TEST_F(AssumptionsTest, CalloutsOfThePlatformThatOnlyMarkDecideNothing) {
  Install(1, "ALE_AUTH_CONNECT_V4 | CALLOUT_UNKNOWN | UINT8 2 | - | -");
  Policy::Snapshot snapshot = Read();
  // That of Windows Firewall which permits the secondary connections of FTP.
  snapshot.filters.front().calloutKey = {
      0xC3DBED20, 0x0BB6, 0x4BF3, {0x82, 0x8D, 0x96, 0x73, 0x2E, 0x1E, 0x02, 0x30}};
  EXPECT_EQ(Policy::Describe(Policy::Decider(snapshot).Decide(To("198.51.100.1"))), "permit");
}

TEST_F(AssumptionsTest, ATestOfTheLoopbackBitNeedsNoAssumption) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 2 | - | FLAGS FLAGS_ALL_SET UINT32 1
)");
  Policy::Connection connection = To("198.51.100.1");
  connection.flags = 1;
  EXPECT_EQ(VerdictOf(connection), "permit");
  connection.flags = 5;
  EXPECT_EQ(VerdictOf(connection), "permit");
}

TEST_F(AssumptionsTest, EachIsAQuestionWithReadings) {
  std::string texts;
  std::size_t worlds = 1;
  for (std::size_t i = 0; i < Policy::kAssumptionCount; ++i) {
    const auto& [name, question, readings] = Policy::TextOf(static_cast<Assumption>(i));
    texts.append(name).append(": ").append(question).append("\n");
    for (const auto& reading : readings) {
      texts.append("  ").append(reading.name).append(": ").append(reading.meaning).append("\n");
    }
    worlds *= readings.size();
  }
  EXPECT_EQ(texts,
            R"(filter-ties: Which of the matching filters of a sublayer decides when they weigh the same?
  newest-first: the filter with the highest id decides
  block-first: a filter that blocks decides
  permit-first: a filter that permits decides
several-negations: Must all of several negations on one field hold, or is one enough?
  any-holds: one negation that holds is enough
  all-hold: all negations must hold
unset-fields: Does a negation or a test of flags hold of a field that has no value?
  no-match: neither holds
  match: a negation holds, and no flag is set
static-block-below-hard-permit: Does a block without a callout override a hard permit of a higher sublayer?
  permit-stands: the hard permit stands
  block-overrides: the block overrides it
loopback-bits: At ALE_AUTH_CONNECT and ALE_FLOW_ESTABLISHED, do other flags ride beside the loopback flag?
  alone: the flag reaches filters alone
  accompanied: IS_NON_APPCONTAINER_LOOPBACK is set beside it
flow-established-blocks: What does a block at ALE_FLOW_ESTABLISHED do to the connection?
  honoured: the connection ends
  ignored: the connection goes on
callouts: What do drivers do whose callouts decide in place of filters?
  pass: they let the connection pass
  block: they block it for good
)");
  EXPECT_EQ(worlds, 192U);
}

TEST_F(AssumptionsTest, AWorldIsTheReadingsThatItWasMadeWith) {
  for (std::size_t i = 0; i < Policy::kAssumptionCount; ++i) {
    const World world = World().With(static_cast<Assumption>(i), std::size_t{1});
    for (std::size_t j = 0; j < Policy::kAssumptionCount; ++j) {
      EXPECT_EQ(world.ReadingOf(static_cast<Assumption>(j)), i == j ? 1U : 0U);
    }
    EXPECT_EQ(World::OfIndex(world.Index()).Index(), world.Index());
    EXPECT_EQ(world.With(static_cast<Assumption>(i), std::size_t{0}).Index(), 0U);
  }
}

TEST_F(AssumptionsTest, AlternativesLeaveOutWhatDoesNotMatter) {
  WorldSet all;
  all.set();
  EXPECT_THAT(Alternatives(all), ElementsAre(IsEmpty()));
  EXPECT_THAT(Alternatives(WorldSet()), IsEmpty());

  WorldSet worlds;
  for (std::size_t i = 0; i < World::kCount; ++i) {
    const World world = World::OfIndex(i);
    worlds[i] = world.ReadingOf(Assumption::Callouts) == 1 || world.ReadingOf(Assumption::LoopbackBits) == 0;
  }
  EXPECT_THAT(Policy::Distinguishing(worlds), ElementsAre(Assumption::LoopbackBits, Assumption::Callouts));
  std::vector<std::string> texts;
  for (const auto& choices : Alternatives(worlds)) {
    texts.push_back(Policy::Describe(choices));
  }
  EXPECT_THAT(texts, testing::UnorderedElementsAre("callouts = block", "loopback-bits = alone"));
}

TEST_F(AssumptionsTest, OutcomesAreTheReadingsThatMatter) {
  Policy::Verdict verdict(Policy::Action::Block);
  WorldSet worlds;
  for (std::size_t i = 0; i < World::kCount; ++i) {
    worlds[i] = World::OfIndex(i).ReadingOf(Assumption::FilterTies) == 1;
  }
  verdict.Set(worlds, Policy::Action::Permit);
  const auto outcomes = verdict.Outcomes();
  ASSERT_EQ(outcomes.size(), 3U);
  EXPECT_EQ(Policy::Describe(outcomes[0].choices), "filter-ties = newest-first");
  EXPECT_EQ(outcomes[0].action, Policy::Action::Block);
  EXPECT_EQ(Policy::Describe(outcomes[1].choices), "filter-ties = block-first");
  EXPECT_EQ(outcomes[1].action, Policy::Action::Permit);
  EXPECT_EQ(Policy::Describe(Policy::Both(verdict, Policy::Verdict(Policy::Action::Block))), "block");
}

}  // namespace
