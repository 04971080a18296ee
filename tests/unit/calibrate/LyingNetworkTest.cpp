// With a network that does not tell the truth nothing is settled, and nothing stays in the engine.
#include <functional>

#include "unit/calibrate/CalibrateTest.h"

namespace {

using Calibrate::Outcome;
using Calibrate::Path;
using Calibrate::SimulatedNetwork;

/// Tells something else than what becomes of connections.
class LyingNetwork : public IpV4Network {
 public:
  /// @param lie gets the truth and the number of the probe, from 0.
  explicit LyingNetwork(std::function<Outcome(Outcome, std::size_t)> lie, const std::string& application)
      : IpV4Network(Policy::LinkedEngine(), Policy::World(), application), lie_(std::move(lie)) {}

  Outcome Probe(const Path& path, UINT16 port) override {
    return lie_(IpV4Network::Probe(path, port), probes_++);
  }

 private:
  std::function<Outcome(Outcome, std::size_t)> lie_;
  std::size_t probes_ = 0;
};

/// Finds no port to listen on.
class NoNetwork : public SimulatedNetwork {
 public:
  using SimulatedNetwork::SimulatedNetwork;
  std::unique_ptr<Calibrate::Listener> Listen(const Path&) override {
    throw Calibrate::NetworkError("bind failed: 10013");
  }
};

class LyingNetworkTest : public CalibrateTest {
 protected:
  static Calibrate::Calibration RunWith(std::function<Outcome(Outcome, std::size_t)> lie,
                                        std::size_t mostRounds = 1) {
    LyingNetwork network(std::move(lie), Application());
    return Run(network, mostRounds);
  }

  /// Fails the test unless every question has this answer, callouts apart.
  static void ExpectOpen(const Calibrate::Calibration& found, const std::string& why) {
    for (const auto* results : {&found.assumptions, &found.findings}) {
      for (const auto& [text, answer] : *results) {
        EXPECT_EQ(answer.reading, std::nullopt) << text.name;
        EXPECT_EQ(answer.why, text.name == "callouts" ? "it needs a driver" : why) << text.name;
      }
    }
  }

  static std::size_t CountSettled(const Calibrate::Calibration& found) {
    std::size_t count = 0;
    for (const auto& [text, answer] : found.assumptions) {
      count += answer.reading ? 1U : 0U;
      EXPECT_EQ(answer.why.empty(), answer.reading.has_value()) << text.name;
    }
    return count;
  }
};

TEST_F(LyingNetworkTest, EverythingPasses) {
  ExpectOpen(RunWith([](Outcome, std::size_t) { return Outcome::Passed; }),
             "cannot calibrate here: a control failed: a block (TCP over IPv4): passed instead of denied");
}

TEST_F(LyingNetworkTest, EverythingIsDenied) {
  ExpectOpen(RunWith([](Outcome, std::size_t) { return Outcome::Denied; }),
             "cannot calibrate here: a control failed: no filter (TCP over IPv4): denied instead of passed");
}

TEST_F(LyingNetworkTest, AnswersComeTooLate) {
  ExpectOpen(RunWith([](Outcome, std::size_t) { return Outcome::Silent; }),
             "cannot calibrate here: a control failed: no filter (TCP over IPv4): silent instead of passed");
}

TEST_F(LyingNetworkTest, WhatPassesPassesTooLate) {
  ExpectOpen(
      RunWith([](Outcome truth, std::size_t) { return truth == Outcome::Passed ? Outcome::Silent : truth; }),
      "cannot calibrate here: a control failed: no filter (TCP over IPv4): silent instead of passed");
}

TEST_F(LyingNetworkTest, BlocksWhereConnectionsAreAcceptedAreNotHonoured) {
  ExpectOpen(
      RunWith([](Outcome truth, std::size_t) { return truth == Outcome::Silent ? Outcome::Passed : truth; }),
      "cannot calibrate here: a control failed: a block where connections are accepted (UDP over IPv4): "
      "passed instead of silent");
}

TEST_F(LyingNetworkTest, ThereIsNoNetwork) {
  NoNetwork network(Policy::LinkedEngine(), Policy::World(), Application());
  ExpectOpen(Run(network), "cannot calibrate here: no connections can be made");
}

TEST_F(LyingNetworkTest, FiltersOfOthersStandInTheWay) {
  ExpectOpen(RunWith([](Outcome, std::size_t) { return Outcome::Unknown; }),
             "cannot calibrate here: a control failed: no filter (TCP over IPv4): unknown instead of passed");
}

TEST_F(LyingNetworkTest, ItTellsTheTruthAtFirst) {
  const auto flip = [](Outcome truth) {
    return truth == Outcome::Passed ? Outcome::Denied : Outcome::Passed;
  };
  // 8 probes belong to the controls that come before all experiments.
  EXPECT_EQ(CountSettled(RunWith(
                [flip](Outcome truth, std::size_t probe) { return probe < 8 ? truth : flip(truth); })),
            0U);
}

TEST_F(LyingNetworkTest, ItLiesEverySecondTime) {
  const auto flip = [](Outcome truth) {
    return truth == Outcome::Passed ? Outcome::Denied : Outcome::Passed;
  };
  for (const std::size_t period : {2U, 3U, 7U}) {
    EXPECT_EQ(CountSettled(RunWith(
                  [flip, period](Outcome truth, std::size_t probe) {
                    return probe >= 8 && probe % period == 0 ? flip(truth) : truth;
                  },
                  3)),
              0U)
        << period;
  }
}

TEST_F(LyingNetworkTest, RoundsDisagree) {
  // After 16 probes of controls come 16 of ties; the next round begins with the last of them.
  const Calibrate::Calibration found =
      RunWith([](Outcome truth, std::size_t probe) { return probe == 33 ? Outcome::Passed : truth; }, 2);
  EXPECT_EQ(ReadingsOf(found.assumptions),
            "filter-ties: rounds disagreed: a narrower permit, then a block (TCP over IPv4): denied, then "
            "passed\nseveral-negations = any-holds\nunset-fields = no-match\n"
            "static-block-below-hard-permit = permit-stands\nloopback-bits = alone\n"
            "flow-established-blocks = honoured\ncallouts: it needs a driver\n");
}

TEST_F(LyingNetworkTest, NoReadingFits) {
  // What passes by the order of filters over TCP is denied over UDP.
  const Calibrate::Calibration found =
      RunWith([](Outcome truth, std::size_t probe) { return probe == 19 ? Outcome::Denied : truth; });
  EXPECT_THAT(found.assumptions.front().answer.why,
              testing::StartsWith(
                  "no reading predicts what was seen: a permit, then a block of equal weight: "
                  "denied 2 times; a block, then a permit of equal weight: denied 1 time, passed 1 time; "));
}

TEST_F(LyingNetworkTest, AProbeThatThrowsSpoilsOneExperimentOnly) {
  const Calibrate::Calibration found = RunWith([](Outcome truth, std::size_t probe) {
    if (probe == 20) {
      throw Calibrate::NetworkError("send failed: 10055");
    }
    return truth;
  });
  EXPECT_EQ(ReadingsOf(found.assumptions),
            "filter-ties: send failed: 10055\nseveral-negations = any-holds\nunset-fields = no-match\n"
            "static-block-below-hard-permit = permit-stands\nloopback-bits = alone\n"
            "flow-established-blocks = honoured\ncallouts: it needs a driver\n");
}

TEST_F(LyingNetworkTest, WhereverAProbeThrowsNothingStaysInTheEngine) {
  for (std::size_t at = 0; at < 150; at += 11) {
    const Calibrate::Calibration found = RunWith([at](Outcome truth, std::size_t probe) {
      if (probe == at) {
        throw Calibrate::NetworkError("send failed: 10055");
      }
      EXPECT_LE(EngineEmulator::TakeSnapshot().filters.size(), 2U);
      return truth;
    });
    EXPECT_LE(CountSettled(found), 6U);
    EXPECT_EQ(EngineEmulator::TakeSnapshot().filters.size(), 0U);
    EXPECT_EQ(EngineEmulator::CountOutstanding().sessions, 0U);
  }
}

}  // namespace
