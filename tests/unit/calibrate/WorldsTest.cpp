// In whatever world connections are simulated, the experiments find that world.
#include <string>
#include <tuple>

#include "unit/calibrate/CalibrateTest.h"

namespace {

using Calibrate::SimulatedNetwork;
using Policy::Assumption;
using Policy::World;

struct Reading {
  std::size_t number;
  const char* line;
};

constexpr Reading kTies[]{{0, "filter-ties = newest-first\n"},
                          {1, "filter-ties = block-first\n"},
                          {2, "filter-ties = permit-first\n"}};
constexpr Reading kNegations[]{{0, "several-negations = any-holds\n"}, {1, "several-negations = all-hold\n"}};
constexpr Reading kUnset[]{{0, "unset-fields = no-match\n"}, {1, "unset-fields = match\n"}};
constexpr Reading kStatic[]{{0, "static-block-below-hard-permit = permit-stands\n"},
                            {1, "static-block-below-hard-permit = block-overrides\n"}};
constexpr Reading kLoopback[]{{0, "loopback-bits = alone\n"}, {1, "loopback-bits = accompanied\n"}};
constexpr Reading kFlow[]{{0, "flow-established-blocks = honoured\n"},
                          {1, "flow-established-blocks = ignored\n"}};
constexpr Reading kCallouts[]{{0, "callouts: it needs a driver\n"}, {1, "callouts: it needs a driver\n"}};

class WorldsTest : public CalibrateTest,
                   public testing::WithParamInterface<
                       std::tuple<Reading, Reading, Reading, Reading, Reading, Reading, Reading>> {};

TEST_P(WorldsTest, IsFound) {
  const auto& [ties, negations, unset, statics, loopback, flow, callouts] = GetParam();
  const World world = World()
                          .With(Assumption::FilterTies, ties.number)
                          .With(Assumption::SeveralNegations, negations.number)
                          .With(Assumption::UnsetFields, unset.number)
                          .With(Assumption::StaticBlocks, statics.number)
                          .With(Assumption::LoopbackBits, loopback.number)
                          .With(Assumption::FlowBlocks, flow.number)
                          .With(Assumption::Callouts, callouts.number);
  IpV4Network network(Policy::LinkedEngine(), world, Application());
  const Calibrate::Calibration found = Run(network);
  EXPECT_EQ(ReadingsOf(found.assumptions), std::string(ties.line) + negations.line + unset.line +
                                               statics.line + loopback.line + flow.line + callouts.line);
}

INSTANTIATE_TEST_SUITE_P(Every, WorldsTest,
                         testing::Combine(testing::ValuesIn(kTies), testing::ValuesIn(kNegations),
                                          testing::ValuesIn(kUnset), testing::ValuesIn(kStatic),
                                          testing::ValuesIn(kLoopback), testing::ValuesIn(kFlow),
                                          testing::ValuesIn(kCallouts)));

}  // namespace
