// Real connections of this program with itself. Whatever the engine holds, this system filters nothing: the
// emulated engine decides about no traffic.
#include "calibrate/SocketNetwork.h"

#include "unit/calibrate/CalibrateTest.h"

namespace {

using Calibrate::Outcome;
using Calibrate::SocketNetwork;

class SocketNetworkTest : public CalibrateTest {
 protected:
  static constexpr Calibrate::Path kPaths[]{{Policy::IpVersion::V4, 6},
                                            {Policy::IpVersion::V4, 17},
                                            {Policy::IpVersion::V6, 6},
                                            {Policy::IpVersion::V6, 17}};

  SocketNetwork network_;
};

TEST_F(SocketNetworkTest, ConnectsToItselfOverEveryPath) {
  for (const Calibrate::Path& path : kPaths) {
    const auto listener = network_.Listen(path);
    EXPECT_NE(listener->Port(), 0);
    EXPECT_EQ(network_.Probe(path, listener->Port()), Outcome::Passed) << Describe(path);
    EXPECT_EQ(network_.Probe(path, listener->Port()), Outcome::Passed) << Describe(path);
  }
}

TEST_F(SocketNetworkTest, KeepsAConnection) {
  for (const Calibrate::Path& path : kPaths) {
    const auto listener = network_.Listen(path);
    const auto flow = network_.Open(path, listener->Port());
    ASSERT_NE(flow, nullptr) << Describe(path);
    EXPECT_EQ(flow->Send(), Outcome::Passed) << Describe(path);
    EXPECT_EQ(network_.Probe(path, listener->Port()), Outcome::Passed) << Describe(path);
    EXPECT_EQ(flow->Send(), Outcome::Passed) << Describe(path);
  }
}

TEST_F(SocketNetworkTest, IsRefusedWhereNobodyListens) {
  for (const Calibrate::Path& path : kPaths) {
    const UINT16 port = network_.Listen(path)->Port();
    // Windows repeats the first packet of TCP for longer than a probe waits; Wine tells of no refusal of UDP.
    EXPECT_THAT(network_.Probe(path, port), testing::AnyOf(Outcome::Refused, Outcome::Silent))
        << Describe(path);
    EXPECT_EQ(network_.Open(path, port), nullptr) << Describe(path);
  }
}

TEST_F(SocketNetworkTest, ErrorsTellWhatFiltersDid) {
  EXPECT_EQ(Calibrate::OutcomeOf(10013), Outcome::Denied);
  EXPECT_EQ(Calibrate::OutcomeOf(10060), Outcome::Silent);
  EXPECT_EQ(Calibrate::OutcomeOf(10061), Outcome::Refused);
  EXPECT_EQ(Calibrate::OutcomeOf(10053), Outcome::Reset);
  EXPECT_EQ(Calibrate::OutcomeOf(10054), Outcome::Reset);
  EXPECT_THROW(Calibrate::OutcomeOf(10055), Calibrate::NetworkError);
}

TEST_F(SocketNetworkTest, HearsNothingFromOneWhoDoesNotAnswer) {
  const Calibrate::Path path{Policy::IpVersion::V4, 17};
  SocketNetwork other;
  const auto listener = other.Listen(path);
  EXPECT_EQ(network_.Probe(path, listener->Port()), Outcome::Silent);
}

TEST_F(SocketNetworkTest, HasAPortForItselfAlone) {
  const Calibrate::Path path{Policy::IpVersion::V4, 6};
  const auto one = network_.Listen(path);
  const auto two = network_.Listen(path);
  EXPECT_NE(one->Port(), two->Port());
}

TEST_F(SocketNetworkTest, CannotCalibrateWhereNothingIsFiltered) {
  const Calibrate::Calibration found = Run(network_);
  EXPECT_EQ(
      ReadingsOf(found.assumptions),
      "filter-ties: cannot calibrate here: a control failed: a block (TCP over IPv4): passed instead of "
      "denied\n"
      "several-negations: cannot calibrate here: a control failed: a block (TCP over IPv4): passed instead "
      "of denied\n"
      "unset-fields: cannot calibrate here: a control failed: a block (TCP over IPv4): passed instead of "
      "denied\n"
      "static-block-below-hard-permit: cannot calibrate here: a control failed: a block (TCP over IPv4): "
      "passed instead of denied\n"
      "loopback-bits: cannot calibrate here: a control failed: a block (TCP over IPv4): passed instead of "
      "denied\n"
      "flow-established-blocks: cannot calibrate here: a control failed: a block (TCP over IPv4): passed "
      "instead of denied\n"
      "callouts: it needs a driver\n");
}

}  // namespace
