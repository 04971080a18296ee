// What is known of an engine: readings that are settled make no difference any more, whatever asks.
#include <algorithm>

#include "policy/Lint.h"
#include "unit/policy/PolicyTest.h"

namespace {

using Policy::Assumption;
using Policy::SettledReadings;
using Policy::World;

class SettledTest : public PolicyTest {
 protected:
  /// What the engine holds, with one reading known.
  template <class Reading>
  static Policy::Snapshot ReadKnowing(Assumption assumption, Reading reading) {
    Policy::Snapshot snapshot = Read();
    snapshot.settled.Settle(assumption, static_cast<std::size_t>(reading));
    return snapshot;
  }

  /// The verdict in words. Fails the test if the map has another one.
  static std::string VerdictIn(const Policy::Snapshot& snapshot, const Policy::Connection& connection) {
    const Policy::Verdict verdict = Policy::Decider(snapshot).Decide(connection);
    EXPECT_EQ(Policy::MakeMap(snapshot).At(connection), verdict);
    return Policy::Describe(verdict);
  }

  static constexpr const char* kTie = R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT64 5 | - | IP_PROTOCOL EQUAL UINT8 6
ALE_AUTH_CONNECT_V4 | PERMIT | UINT64 5 | - | IP_REMOTE_PORT EQUAL UINT16 443
)";
};

TEST_F(SettledTest, WorldsTakeTheSettledReadingsInPlaceOfTheirOwn) {
  SettledReadings settled;
  EXPECT_TRUE(settled.AreNone());
  EXPECT_EQ(settled.In(World::OfIndex(191)).Index(), 191U);
  settled.Settle(Assumption::FilterTies, 2);
  settled.Settle(Assumption::LoopbackBits, 1);
  EXPECT_FALSE(settled.AreNone());
  EXPECT_EQ(settled.ReadingOf(Assumption::FilterTies), 2U);
  EXPECT_EQ(settled.ReadingOf(Assumption::Callouts), std::nullopt);
  const World world = settled.In(World());
  EXPECT_TRUE(world.Reads(Assumption::FilterTies, Policy::TieReading::PermitFirst));
  EXPECT_TRUE(world.Reads(Assumption::LoopbackBits, Policy::LoopbackReading::Accompanied));
  EXPECT_TRUE(world.Reads(Assumption::Callouts, Policy::CalloutReading::Pass));
}

TEST_F(SettledTest, ASettledOrderOfTiesDecides) {
  Install(1, kTie);
  const Policy::Connection connection = To("198.51.100.1", 443);
  EXPECT_EQ(VerdictIn(ReadKnowing(Assumption::FilterTies, Policy::TieReading::NewestFirst), connection),
            "permit");
  EXPECT_EQ(VerdictIn(ReadKnowing(Assumption::FilterTies, Policy::TieReading::BlockFirst), connection),
            "block");
  EXPECT_EQ(VerdictIn(ReadKnowing(Assumption::FilterTies, Policy::TieReading::PermitFirst), connection),
            "permit");
}

TEST_F(SettledTest, SettledNegationsAndUnsetFieldsDecide) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT64 5 | - | IP_REMOTE_PORT NOT_EQUAL UINT16 53 & IP_REMOTE_PORT NOT_EQUAL UINT16 80
)");
  Policy::Connection connection = To("198.51.100.1", 53);
  EXPECT_EQ(
      VerdictIn(ReadKnowing(Assumption::SeveralNegations, Policy::NegationReading::AnyHolds), connection),
      "block");
  EXPECT_EQ(
      VerdictIn(ReadKnowing(Assumption::SeveralNegations, Policy::NegationReading::AllHold), connection),
      "permit");
  connection.remotePort.reset();
  EXPECT_EQ(VerdictIn(ReadKnowing(Assumption::UnsetFields, Policy::UnsetReading::NoMatch), connection),
            "permit");
  EXPECT_EQ(VerdictIn(ReadKnowing(Assumption::UnsetFields, Policy::UnsetReading::Match), connection),
            "block");
}

TEST_F(SettledTest, SettledLoopbackBitsDecide) {
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT64 5 | - | FLAGS FLAGS_ALL_SET UINT32 8388608");
  Policy::Connection connection = To("127.0.0.1");
  connection.flags = FWP_CONDITION_FLAG_IS_LOOPBACK;
  EXPECT_EQ(VerdictIn(ReadKnowing(Assumption::LoopbackBits, Policy::LoopbackReading::Alone), connection),
            "permit");
  EXPECT_EQ(
      VerdictIn(ReadKnowing(Assumption::LoopbackBits, Policy::LoopbackReading::Accompanied), connection),
      "block");
}

TEST_F(SettledTest, SettledBlocksAtTheFlowDecide) {
  Install(1, "ALE_FLOW_ESTABLISHED_V4 | BLOCK | UINT64 5 | - | -");
  EXPECT_EQ(
      VerdictIn(ReadKnowing(Assumption::FlowBlocks, Policy::FlowBlockReading::Honoured), To("10.0.0.1")),
      "block");
  EXPECT_EQ(VerdictIn(ReadKnowing(Assumption::FlowBlocks, Policy::FlowBlockReading::Ignored), To("10.0.0.1")),
            "permit");
}

TEST_F(SettledTest, WhatIsNotSettledStaysOpen) {
  Install(1, std::string(kTie) + "ALE_FLOW_ESTABLISHED_V4 | BLOCK | UINT64 5 | - | -");
  EXPECT_EQ(VerdictIn(ReadKnowing(Assumption::FilterTies, Policy::TieReading::PermitFirst),
                      To("198.51.100.1", 443)),
            "depends on flow-established-blocks: permit with flow-established-blocks = ignored; block with "
            "flow-established-blocks = honoured");
}

TEST_F(SettledTest, AnExplanationTellsTheSettledStoryWhateverWorldIsAskedFor) {
  Install(1, kTie);
  const Policy::Snapshot snapshot = ReadKnowing(Assumption::FilterTies, Policy::TieReading::BlockFirst);
  const Policy::Explanation explanation =
      Policy::Decider(snapshot).Explain(To("198.51.100.1", 443), World::OfIndex(2));
  ASSERT_NE(explanation.Deciding(), nullptr);
  EXPECT_EQ(explanation.Deciding()->id, snapshot.filters.front().id);
  ASSERT_EQ(explanation.endings.size(), 1U);
  EXPECT_EQ(explanation.endings.front().deciding, explanation.Deciding());
  EXPECT_EQ(explanation.endings.front().outcome.action, Policy::Action::Block);
}

TEST_F(SettledTest, TheMapHasOneVerdictLess) {
  Install(1, kTie);
  EXPECT_EQ(Policy::MakeMap(Read()).verdicts.size(), 3U);
  EXPECT_EQ(
      Policy::MakeMap(ReadKnowing(Assumption::FilterTies, Policy::TieReading::BlockFirst)).verdicts.size(),
      2U);
}

TEST_F(SettledTest, TheLintJudgesWhoDecidesByTheSettledReading) {
  // Everything that the permit matches the newer block matches too: it decides only where permits come first.
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | PERMIT | UINT64 5 | - | IP_REMOTE_PORT EQUAL UINT16 443
ALE_AUTH_CONNECT_V4 | BLOCK | UINT64 5 | - | -
)");
  const auto countIdle = [](const Policy::Snapshot& snapshot) {
    const auto findings = Policy::Lint(snapshot);
    return std::ranges::count(findings, Policy::FindingKind::NeverDecides, &Policy::Finding::kind);
  };
  EXPECT_EQ(countIdle(Read()), 0);
  EXPECT_EQ(countIdle(ReadKnowing(Assumption::FilterTies, Policy::TieReading::PermitFirst)), 0);
  EXPECT_EQ(countIdle(ReadKnowing(Assumption::FilterTies, Policy::TieReading::NewestFirst)), 1);
}

}  // namespace
