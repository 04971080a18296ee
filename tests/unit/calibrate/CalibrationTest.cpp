// What the experiments tell, where connections are simulated.
#include "unit/calibrate/CalibrateTest.h"

namespace {

using Calibrate::Answer;
using Calibrate::SimulatedNetwork;
using Policy::Assumption;
using Policy::World;
using testing::Contains;

class CalibrationTest : public CalibrateTest {
 protected:
  static const Answer& AnswerOf(const Calibrate::Calibration& found, Assumption assumption) {
    return found.assumptions[static_cast<std::size_t>(assumption)].answer;
  }
};

TEST_F(CalibrationTest, TriesEverythingOverEveryPathInThreeRounds) {
  SimulatedNetwork network(Policy::LinkedEngine(), World(), Application());
  const Calibrate::Calibration found = Run(network, 3);
  const Answer& ties = AnswerOf(found, Assumption::FilterTies);
  EXPECT_EQ(ties.reading, 0U);
  EXPECT_EQ(ties.why, "");
  EXPECT_THAT(ties.evidence, Contains("no filter: passed 8 times"));
  EXPECT_THAT(ties.evidence, Contains("a block: denied 8 times"));
  EXPECT_THAT(ties.evidence, Contains("a permit, then a block of equal weight: denied 12 times"));
  EXPECT_THAT(ties.evidence, Contains("a permit, then a block, then the permit once more: passed 12 times"));
  EXPECT_THAT(AnswerOf(found, Assumption::FlowBlocks).evidence,
              Contains("a block there, of the end that connects: reset 6 times, silent 6 times"));
  // As long would real connections wait for an answer that does not come; all else takes milliseconds.
  EXPECT_EQ(network.Waited(), std::chrono::milliseconds(27'600));
}

TEST_F(CalibrationTest, TellsWhatWasNotTried) {
  SimulatedNetwork network(Policy::LinkedEngine(), World(), Application());
  const Calibrate::Calibration found = Run(network);
  EXPECT_THAT(
      AnswerOf(found, Assumption::UnsetFields).evidence,
      Contains("tests of flags were not tried: REAUTHORIZE_REASON has a value at ALE_AUTH_CONNECT, or "
               "nobody knows it (UDP over IPv4)"));
  EXPECT_EQ(AnswerOf(found, Assumption::Callouts).why, "it needs a driver");
}

TEST_F(CalibrationTest, FindsMoreThanTheAssumptions) {
  SimulatedNetwork network(Policy::LinkedEngine(), World(), Application());
  EXPECT_EQ(ReadingsOf(Run(network).findings),
            "sublayer-order = heaviest-first\nre-authorisation = judged-anew\n");
}

TEST_F(CalibrationTest, DoesNotTellTheOrderOfSublayersWhereBlocksOverrideHardPermits) {
  SimulatedNetwork network(Policy::LinkedEngine(),
                           World().With(Assumption::StaticBlocks, Policy::StaticBlockReading::BlockOverrides),
                           Application());
  EXPECT_EQ(
      ReadingsOf(Run(network).findings),
      "sublayer-order: no reading predicts what was seen: a hard permit in the heavier sublayer, a block "
      "in the lighter: denied 4 times; a block in the heavier sublayer, a hard permit in the lighter: "
      "denied 4 times\nre-authorisation = judged-anew\n");
}

TEST_F(CalibrationTest, LeavesWhatBlocksAtTheFlowWouldShowWhereTheyAreIgnored) {
  SimulatedNetwork network(Policy::LinkedEngine(),
                           World().With(Assumption::FlowBlocks, Policy::FlowBlockReading::Ignored),
                           Application());
  const Calibrate::Calibration found = Run(network);
  EXPECT_EQ(AnswerOf(found, Assumption::LoopbackBits).reading, 0U);
  EXPECT_THAT(
      AnswerOf(found, Assumption::LoopbackBits).evidence,
      Contains("at ALE_FLOW_ESTABLISHED blocks are ignored, so flags cannot be seen (UDP over IPv4)"));
}

TEST_F(CalibrationTest, DoesWithoutIpV6AndSaysSo) {
  IpV4Network network(Policy::LinkedEngine(), World(), Application());
  const Calibrate::Calibration found = Run(network);
  EXPECT_THAT(found.notTried, testing::ElementsAre("TCP over IPv6: There is no IPv6 here",
                                                   "UDP over IPv6: There is no IPv6 here"));
  EXPECT_EQ(AnswerOf(found, Assumption::FilterTies).reading, 0U);
  EXPECT_THAT(Describe(found),
              testing::StartsWith("not tried: TCP over IPv6: There is no IPv6 here\n"
                                  "not tried: UDP over IPv6: There is no IPv6 here\n"
                                  "filter-ties = newest-first: the filter with the highest id "
                                  "decides\n  no filter: passed 4 times\n"));
}

TEST_F(CalibrationTest, ShowsHowFarItIs) {
  SimulatedNetwork network(Policy::LinkedEngine(), World(), Application());
  std::vector<std::size_t> parts;
  Calibrate::CalibrateEngine({Calibrate::LinkedEngine(), Application(), 1}, network,
                             [&parts](std::size_t done, std::size_t total) {
                               EXPECT_EQ(total, 8U);
                               parts.push_back(done);
                             });
  EXPECT_THAT(parts, testing::ElementsAre(1, 2, 3, 4, 5, 6, 7, 8));
}

TEST_F(CalibrationTest, FailsWhereNothingCanBeAdded) {
  SimulatedNetwork network(Policy::LinkedEngine(), World(), Application());
  EngineEmulator::FailCall("FwpmTransactionBegin0", 1, ERROR_ACCESS_DENIED);
  try {
    Run(network);
    FAIL() << "It should have failed.";
  } catch (const Calibrate::EngineError& error) {
    EXPECT_EQ(error.Code(), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_STREQ(error.what(), "FwpmTransactionBegin0 failed: ERROR_ACCESS_DENIED (0x00000005)");
  }
}

TEST_F(CalibrationTest, AFilterThatTheEngineRefusesSpoilsOneExperimentOnly) {
  SimulatedNetwork network(Policy::LinkedEngine(), World(), Application());
  // The first filters are those of the controls, 4 paths of 2 and 2 of 1; then again, then those of ties.
  EngineEmulator::FailCall("FwpmFilterAdd0", 21, FWP_E_TIMEOUT);
  EXPECT_EQ(ReadingsOf(Run(network).assumptions),
            "filter-ties: FwpmFilterAdd0 failed: FWP_E_TIMEOUT (0x80320012)\n"
            "several-negations = any-holds\nunset-fields = no-match\n"
            "static-block-below-hard-permit = permit-stands\nloopback-bits = alone\n"
            "flow-established-blocks = honoured\ncallouts: it needs a driver\n");
}

/// An engine that takes no condition without a value.
DWORD WINAPI AddWithoutEmpty(HANDLE engine, const FWPM_FILTER0* filter, PSECURITY_DESCRIPTOR security,
                             UINT64* id) {
  for (UINT32 i = 0; i < filter->numFilterConditions; ++i) {
    if (filter->filterCondition[i].conditionValue.type == FWP_EMPTY) {
      return FWP_E_TYPE_MISMATCH;
    }
  }
  return FwpmFilterAdd0(engine, filter, security, id);
}

TEST_F(CalibrationTest, WhereConditionsNeedAValueTheRangeIsProofEnough) {
  SimulatedNetwork network(Policy::LinkedEngine(),
                           World().With(Assumption::UnsetFields, Policy::UnsetReading::Match), Application());
  Calibrate::EngineCalls engine = Calibrate::LinkedEngine();
  engine.FwpmFilterAdd0 = &AddWithoutEmpty;
  const Calibrate::Calibration found = Calibrate::CalibrateEngine({engine, Application(), 1}, network);
  // But flags have no range.
  EXPECT_EQ(AnswerOf(found, Assumption::UnsetFields).why, "");
  EXPECT_EQ(AnswerOf(found, Assumption::UnsetFields).reading, 1U);
  EXPECT_THAT(AnswerOf(found, Assumption::UnsetFields).evidence,
              Contains("a block of connections without an arrival interface: refused by the engine 4 times"));
}

}  // namespace
