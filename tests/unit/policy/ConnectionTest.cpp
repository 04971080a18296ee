#include "policy/Connection.h"

#include <algorithm>
#include <array>
#include <random>
#include <utility>

#include "unit/policy/PolicyTest.h"

namespace {

using Policy::Action;
using Policy::Connection;
using Policy::Direction;
using Policy::IpVersion;
using Policy::OrdinaryConnection;
using Policy::PortUse;
using Promises::Features;

using Ports = std::pair<std::optional<UINT16>, std::optional<UINT16>>;

Ports PortsOf(IpVersion ipVersion, UINT8 protocol) {
  const Connection connection = OrdinaryConnection(Direction::Outbound, ipVersion, protocol);
  EXPECT_EQ(connection.protocol, protocol);
  return {connection.localPort, connection.remotePort};
}

TEST(OrdinaryConnection, OfTcpAndUdpHasPorts) {
  for (const IpVersion ipVersion : {IpVersion::V4, IpVersion::V6}) {
    EXPECT_EQ(PortsOf(ipVersion, 6), Ports(50000, 443));
    EXPECT_EQ(PortsOf(ipVersion, 17), Ports(50000, 443));
  }
  EXPECT_EQ(OrdinaryConnection(Direction::Outbound, IpVersion::V4).protocol, 6);
}

TEST(OrdinaryConnection, OfIcmpIsAnEchoRequestOfItsIpVersion) {
  EXPECT_EQ(PortsOf(IpVersion::V4, 1), Ports(8, 0));
  EXPECT_EQ(PortsOf(IpVersion::V6, 58), Ports(128, 0));
  EXPECT_EQ(PortsOf(IpVersion::V4, 58), Ports());
  EXPECT_EQ(PortsOf(IpVersion::V6, 1), Ports());
}

TEST(OrdinaryConnection, OfOtherProtocolsHasNoPorts) {
  for (const UINT8 protocol : std::to_array<UINT8>({0, 2, 41, 47, 50, 51, 132, 255})) {
    EXPECT_EQ(PortsOf(IpVersion::V4, protocol), Ports()) << int{protocol};
    EXPECT_EQ(PortsOf(IpVersion::V6, protocol), Ports()) << int{protocol};
  }
}

TEST(ConnectionField, IsReadAndSetByItsName) {
  using enum Policy::Field;
  Connection connection;
  UINT64 value = 1;
  for (const Policy::Field field : {Flags, LocalInterface, ArrivalInterface, NextHopInterface, Protocol,
                                    LocalPort, RemotePort, LocalAddress, RemoteAddress}) {
    EXPECT_EQ(Policy::NumberOf(connection, field), std::nullopt);
    Policy::SetNumber(connection, field, value);
    EXPECT_EQ(Policy::NumberOf(connection, field), Policy::Number(value++));
  }
  EXPECT_EQ(connection.flags, 1U);
  EXPECT_EQ(connection.localInterface, 2U);
  EXPECT_EQ(connection.arrivalInterface, 3U);
  EXPECT_EQ(connection.nextHopInterface, 4U);
  EXPECT_EQ(connection.protocol, 5U);
  EXPECT_EQ(connection.localPort, 6U);
  EXPECT_EQ(connection.remotePort, 7U);
  EXPECT_EQ(connection.localAddress, Policy::Number(8));
  EXPECT_EQ(connection.remoteAddress, Policy::Number(9));
  Policy::SetNumber(connection, LocalPort, std::nullopt);
  EXPECT_EQ(connection.localPort, std::nullopt);
}

TEST(ConnectionField, ApplicationIsNoNumber) {
  Connection connection;
  connection.application = "a";
  Policy::SetNumber(connection, Policy::Field::Application, 1);
  EXPECT_EQ(connection.application, "a");
  EXPECT_EQ(Policy::NumberOf(connection, Policy::Field::Application), std::nullopt);
}

/// Random connections of several protocols, with addresses and ports that the features treat in a special
/// way.
class Traffic {
 public:
  Connection Next() {
    const Policy::Address remote = Policy::ParseAddress(OneOf(kAddresses)).value();
    Connection connection =
        OrdinaryConnection(Below(2) == 0 ? Direction::Outbound : Direction::Inbound, remote.ipVersion,
                           static_cast<UINT8>(Below(2) == 0 ? OneOf(kProtocols) : Below(256)));
    connection.remoteAddress = remote.number;
    if (connection.protocol == 6 || connection.protocol == 17) {
      connection.localPort = OneOf(kPorts);
      connection.remotePort = OneOf(kPorts);
    }
    connection.localInterface = 6 + Below(3);
    connection.flags = Below(4) == 0 ? 1 : 0;
    return connection;
  }

 private:
  static constexpr std::array kAddresses{"10.0.0.1",    "192.168.1.1", "127.0.0.1",    "255.255.255.255",
                                         "203.0.113.1", "203.0.113.2", "198.51.100.1", "100.64.0.1",
                                         "100.64.0.3",  "::1",         "fe80::1",      "2001:db8::1"};
  static constexpr std::array<UINT8, 6> kProtocols{1, 6, 17, 47, 50, 58};
  static constexpr std::array<UINT16, 7> kPorts{53, 67, 68, 443, 546, 547, 0};

  std::size_t Below(std::size_t count) { return engine_() % count; }

  template <class Table>
  typename Table::value_type OneOf(const Table& table) {
    return table[Below(table.size())];
  }

  std::mt19937 engine_{20261121};
};

/// The connection as the engine sees it: without ports if its protocol has none.
Connection AsMet(Connection connection) {
  const bool hasPorts = connection.protocol == 6 || connection.protocol == 17;
  const bool isIcmp = connection.protocol == (connection.ipVersion == IpVersion::V4 ? 1 : 58);
  if (!hasPorts && !isIcmp) {
    connection.localPort.reset();
    connection.remotePort.reset();
  }
  return connection;
}

class ConnectionTest : public PolicyTest {};

TEST_F(ConnectionTest, ExplanationsAndMapsAgreeOnTenThousandOfAnyProtocol) {
  Features features;
  features.killSwitch = Features::KillSwitch{{}, {8}};
  features.dhcp = true;
  features.skein = Features::Skein{{7}, {0x64400001}};
  Install(features);
  const Policy::Snapshot snapshot = Read();
  const Policy::Decider decider(snapshot);
  const Policy::Map map = Policy::MakeMap(snapshot);
  Traffic traffic;
  std::array<int, 2> without{};
  for (int i = 0; i < 10'000; ++i) {
    const Connection connection = traffic.Next();
    const Policy::Explanation explanation = decider.Explain(connection);
    const Policy::Verdict& verdict = map.At(AsMet(connection));
    ASSERT_EQ(explanation.verdict, verdict) << Policy::Describe(explanation);
    ASSERT_EQ(std::min(explanation.layers[0].action, explanation.layers[1].action), verdict.In({}))
        << Policy::Describe(explanation);
    if (!connection.remotePort && verdict.In({})) {
      ++without[static_cast<std::size_t>(*verdict.In({}))];
    }
  }
  EXPECT_THAT(without, testing::Each(testing::Gt(1'000)));
}

}  // namespace
