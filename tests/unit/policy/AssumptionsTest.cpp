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

class AssumptionsTest : public PolicyTest {};

TEST_F(AssumptionsTest, FiltersOfEqualWeight) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT64 5 | - | IP_PROTOCOL EQUAL UINT8 6
ALE_AUTH_CONNECT_V4 | PERMIT | UINT64 5 | - | IP_REMOTE_PORT EQUAL UINT16 443
)");
  EXPECT_EQ(
      VerdictOf(To("198.51.100.1", 443)),
      "depends on filter-ties: permit with filter-ties = permit-first; block with filter-ties = block-first");
  EXPECT_EQ(VerdictOf(To("198.51.100.1", 80)), "block");
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
  EXPECT_EQ(
      VerdictOf(To("198.51.100.1")),
      "depends on filter-ties: permit with filter-ties = permit-first; block with filter-ties = block-first");
}

TEST_F(AssumptionsTest, WeightsThatTheEngineChoosesOnOtherFields) {
  Install(1, R"(
ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 5 | - | IP_PROTOCOL EQUAL UINT8 6
ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 5 | - | IP_LOCAL_PORT EQUAL UINT16 50000
)");
  EXPECT_THAT(VerdictOf(To("198.51.100.1")), testing::StartsWith("depends on automatic-weights: "));
}

TEST_F(AssumptionsTest, WhatIsKnownOfTheEnginesWeightsNeedsNoAssumption) {
  const std::string verdicts[]{"permit", "permit", "permit", "permit"};
  const char* const policies[]{
      // More conditions weigh more, and one condition weighs more than none.
      "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 5 | - | IP_PROTOCOL EQUAL UINT8 6\n"
      "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 5 | - | -",
      "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 5 | - | IP_PROTOCOL EQUAL UINT8 6 & IP_REMOTE_PORT EQUAL UINT16 "
      "443\n"
      "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 5 | - | IP_PROTOCOL EQUAL UINT8 6",
      // An exact value weighs more than a range.
      "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 5 | - | IP_REMOTE_PORT EQUAL UINT16 443\n"
      "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 5 | - | IP_REMOTE_PORT RANGE RANGE UINT16 1 to UINT16 999",
      // A condition on the remote address weighs more than all others together.
      "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 5 | - | IP_REMOTE_ADDRESS EQUAL V4_ADDR_MASK "
      "198.51.100.0/255.255.255.0\n"
      "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 5 | - | IP_PROTOCOL EQUAL UINT8 6 & IP_REMOTE_PORT EQUAL UINT16 "
      "443"};
  for (std::size_t i = 0; i < std::size(policies); ++i) {
    SetUpAgain();
    Install(1, policies[i]);
    EXPECT_EQ(VerdictOf(To("198.51.100.1", 443)), verdicts[i]) << policies[i];
  }
}

TEST_F(AssumptionsTest, SublayersOfEqualWeight) {
  Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 5 | - | -");
  Install(1, "ALE_AUTH_CONNECT_V4 | PERMIT | UINT8 5 | CLEAR_ACTION_RIGHT | IP_REMOTE_PORT EQUAL UINT16 443");
  EXPECT_EQ(
      VerdictOf(To("198.51.100.1", 443)),
      "depends on sublayer-ties, static-block-below-hard-permit: permit with sublayer-ties = permit-first, "
      "static-block-below-hard-permit = permit-stands; block with sublayer-ties = block-first or "
      "static-block-below-hard-permit = block-overrides");
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
  Policy::Connection connection = To("198.51.100.1");
  connection.flags = 1;
  EXPECT_EQ(
      VerdictOf(connection),
      "depends on loopback-bits: permit with loopback-bits = alone; block with loopback-bits = accompanied");
  connection.flags = 5;
  EXPECT_EQ(VerdictOf(connection), "block");
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
  block-first: a filter that blocks decides
  permit-first: a filter that permits decides
automatic-weights: Which of the matching filters decides when the engine chose their weights by a rule that is not documented?
  as-reported: the weights that this engine reports decide
  block-first: a filter that blocks decides
  permit-first: a filter that permits decides
sublayer-ties: Which of the sublayers comes first when they weigh the same?
  block-first: a sublayer that blocks comes first
  permit-first: a sublayer with a hard permit comes first
several-negations: Must all of several negations on one field hold, or is one enough?
  any-holds: one negation that holds is enough
  all-hold: all negations must hold
unset-fields: Does a negation or a test of flags hold of a field that has no value?
  no-match: neither holds
  match: a negation holds, and no flag is set
static-block-below-hard-permit: Does a block without a callout override a hard permit of a higher sublayer?
  permit-stands: the hard permit stands
  block-overrides: the block overrides it
loopback-bits: Do other flags ride beside the loopback flag?
  alone: the flag reaches filters alone
  accompanied: IS_NON_APPCONTAINER_LOOPBACK is set beside it
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
    worlds[i] =
        world.ReadingOf(Assumption::SublayerTies) == 1 || world.ReadingOf(Assumption::LoopbackBits) == 0;
  }
  EXPECT_THAT(Policy::Distinguishing(worlds),
              ElementsAre(Assumption::SublayerTies, Assumption::LoopbackBits));
  std::vector<std::string> texts;
  for (const auto& choices : Alternatives(worlds)) {
    texts.push_back(Policy::Describe(choices));
  }
  EXPECT_THAT(texts, testing::UnorderedElementsAre("sublayer-ties = permit-first", "loopback-bits = alone"));
}

TEST_F(AssumptionsTest, OutcomesAreTheReadingsThatMatter) {
  Policy::Verdict verdict(Policy::Action::Block);
  WorldSet worlds;
  for (std::size_t i = 0; i < World::kCount; ++i) {
    worlds[i] = World::OfIndex(i).ReadingOf(Assumption::FilterTies) == 1;
  }
  verdict.Set(worlds, Policy::Action::Permit);
  const auto outcomes = verdict.Outcomes();
  ASSERT_EQ(outcomes.size(), 2U);
  EXPECT_EQ(Policy::Describe(outcomes[0].choices), "filter-ties = block-first");
  EXPECT_EQ(outcomes[0].action, Policy::Action::Block);
  EXPECT_EQ(Policy::Describe(outcomes[1].choices), "filter-ties = permit-first");
  EXPECT_EQ(outcomes[1].action, Policy::Action::Permit);
  EXPECT_EQ(Policy::Describe(Policy::Both(verdict, Policy::Verdict(Policy::Action::Block))), "block");
}

}  // namespace
