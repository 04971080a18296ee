#include "SampleConnections.h"

#include <array>
#include <cstdint>
#include <set>
#include <string>

#include "catalog/Keys.h"

namespace {

using Policy::Connection;
using Policy::Direction;
using Policy::IpVersion;
using Policy::Number;

/// Random numbers that are the same everywhere: SplitMix64. The distributions of the standard library differ
/// from one library to another.
class Dice {
 public:
  std::uint64_t Next() {
    state_ += 0x9E3779B97F4A7C15;
    std::uint64_t mixed = state_;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EB;
    return mixed ^ (mixed >> 31);
  }
  std::size_t Below(std::size_t limit) { return static_cast<std::size_t>(Next() % limit); }
  bool OneIn(std::size_t odds) { return Below(odds) == 0; }

 private:
  std::uint64_t state_ = 1;
};

constexpr auto kPorts =
    std::to_array<UINT16>({22,  25,  53,  67,  68,   80,   123,  135,  137,  138,  139,  443,  445,
                           500, 546, 547, 853, 1900, 3389, 3702, 5353, 5355, 5357, 5985, 7680, 8080});

/// Networks to take addresses from, with the count of addresses: loopback is not among them.
struct Network {
  Number first;
  UINT64 size;
};
constexpr std::array kNetworksV4{Network{0x0A000000, 1U << 24},   Network{0xAC100000, 1U << 20},
                                 Network{0xC0A80000, 1U << 16},   Network{0xA9FE0000, 1U << 16},
                                 Network{0x01000000, 0xDEFFFFFF}, Network{0xE0000000, 1U << 8}};
constexpr std::array kNetworksV6{Network{Number(0xFE80000000000000, 0), UINT64{1} << 63},
                                 Network{Number(0xFD00000000000000, 0), UINT64{1} << 63},
                                 Network{Number(0x2001000000000000, 0), UINT64{1} << 63},
                                 Network{Number(0xFF02000000000000, 0), 1U << 8}};

std::vector<std::string> ApplicationsOf(const Policy::Snapshot& snapshot) {
  std::set<std::string> applications;
  for (const Policy::Filter& filter : snapshot.filters) {
    for (const Policy::Condition& condition : filter.conditions) {
      if (condition.fieldKey == Catalog::kAleAppIdFieldKey &&
          condition.test.kind == Policy::Test::Kind::IsBytes) {
        applications.insert(condition.test.bytes);
      }
    }
  }
  return {applications.begin(), applications.end()};
}

Number AddressIn(const Network& network, Dice& dice) {
  Number address = network.first;
  address.low += dice.Next() % network.size;
  return address;
}

UINT8 Protocol(IpVersion ipVersion, Dice& dice) {
  if (dice.OneIn(20)) {
    return ipVersion == IpVersion::V4 ? 1 : 58;
  }
  return dice.OneIn(3) ? Policy::kUdp : Policy::kTcp;
}

Connection MakeConnection(const std::vector<std::string>& applications, Dice& dice) {
  const Direction direction = dice.OneIn(2) ? Direction::Outbound : Direction::Inbound;
  const IpVersion ipVersion = dice.OneIn(3) ? IpVersion::V6 : IpVersion::V4;
  Connection connection = Policy::OrdinaryConnection(direction, ipVersion, Protocol(ipVersion, dice));
  connection.remoteAddress = ipVersion == IpVersion::V4
                                 ? AddressIn(kNetworksV4[dice.Below(kNetworksV4.size())], dice)
                                 : AddressIn(kNetworksV6[dice.Below(kNetworksV6.size())], dice);
  if (Policy::PortUseOf(ipVersion, *connection.protocol) == Policy::PortUse::Ports) {
    auto& known = direction == Direction::Outbound ? connection.remotePort : connection.localPort;
    auto& other = direction == Direction::Outbound ? connection.localPort : connection.remotePort;
    known = dice.OneIn(3) ? static_cast<UINT16>(dice.Below(65536)) : kPorts[dice.Below(kPorts.size())];
    other = static_cast<UINT16>(49152 + dice.Below(16384));
  }
  if (!applications.empty() && dice.OneIn(2)) {
    connection.application = applications[dice.Below(applications.size())];
  }
  return connection;
}

}  // namespace

std::vector<Connection> SampleConnections(const Policy::Snapshot& snapshot, std::size_t count) {
  const std::vector<std::string> applications = ApplicationsOf(snapshot);
  Dice dice;
  std::vector<Connection> connections;
  while (connections.size() < count) {
    connections.push_back(MakeConnection(applications, dice));
  }
  return connections;
}
