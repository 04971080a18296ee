#include "AskedConnection.h"

#include <WfpPlatform.h>

#include <algorithm>
#include <utility>

#include "PolicyReader.h"

namespace {

using Policy::Connection;
using Policy::Direction;
using Policy::PortUse;

constexpr UINT64 LuidOfType(UINT64 type, UINT64 index = 0xFFFFFF) { return type << 48 | index << 24; }
constexpr UINT64 kLoopbackInterface = LuidOfType(24, 0);

/// 127.0.0.0/8 and ::1
bool IsLoopbackAddress(const Policy::Address& address) {
  return address.ipVersion == Policy::IpVersion::V4 ? address.number.low >> 24 == 127
                                                    : address.number == Policy::Number(1);
}

/// @throws Failure if ports, or an ICMP type or code, are given for a protocol that has none.
void CheckPortUse(PortUse portUse, const Endpoint& remote, const StepOptions& options) {
  const bool hasIcmpOptions = !options.icmpType.empty() || !options.icmpCode.empty();
  const bool hasPort = remote.port || std::ranges::any_of(options.local, [](const std::string& local) {
                         return ParseEndpoint(local).value().port.has_value();
                       });
  if (portUse != PortUse::IcmpTypeAndCode && hasIcmpOptions) {
    throw Failure("Only ICMP has a type and a code",
                  "Give --icmp-type and --icmp-code with --protocol icmp.");
  }
  if (portUse == PortUse::IcmpTypeAndCode && hasPort) {
    throw Failure("ICMP has no ports, but a type and a code",
                  "Give addresses without a port, and --icmp-type and --icmp-code.");
  }
  if (portUse == PortUse::None && hasPort) {
    throw Failure("Protocol " + options.protocol.front() + " has no ports", "Give addresses without a port.");
  }
}

void SetLocalEnd(const std::string& text, Connection& connection) {
  const Endpoint local = ParseEndpoint(text).value();
  if (local.address.ipVersion != connection.ipVersion) {
    throw Failure("The two ends of a connection are of one IP version", "Give --local as --remote is given.");
  }
  connection.localAddress = local.address.number;
  connection.localPort = local.port ? local.port : connection.localPort;
}

void SetInterface(UINT64 luid, Connection& connection) {
  connection.localInterface = luid;
  (connection.direction == Direction::Outbound ? connection.nextHopInterface : connection.arrivalInterface) =
      luid;
}

/// @throws Failure when the interface is given in two ways.
void SetInterface(const StepOptions& options, Connection& connection) {
  if (!options.interfaces.empty() && !options.interfaceType.empty()) {
    throw Failure("An adapter has its type already", "Give either --interface or --interface-type.");
  }
  if (!options.interfaces.empty()) {
    SetInterface(FindInterface(options.interfaces.front()), connection);
  } else if (!options.interfaceType.empty()) {
    SetInterface(LuidOfType(ParseInterfaceType(options.interfaceType.front()).value()), connection);
  } else if (connection.flags == UINT32{FWP_CONDITION_FLAG_IS_LOOPBACK}) {
    SetInterface(kLoopbackInterface, connection);
  }
}

}  // namespace

void CheckAskedOfDump(const StepOptions& options) {
  if (!std::ranges::all_of(options.interfaces,
                           [](const auto& text) { return ParseLuid(text).has_value(); })) {
    throw Failure("A dump does not have the names of adapters", "Give --interface a LUID.");
  }
  if (!std::ranges::all_of(options.apps, IsApplicationId)) {
    throw Failure("A dump does not tell which volume the path of an application is on",
                  "Give --app an id such as \\device\\harddiskvolume1\\a.exe, in small letters.");
  }
}

Connection AskedConnection(const std::string& remoteText, const StepOptions& options,
                           const AskedCircumstances& asked) {
  const Endpoint remote = ParseEndpoint(remoteText).value();
  const Policy::IpVersion ipVersion = remote.address.ipVersion;
  const UINT8 protocol =
      options.protocol.empty() ? Policy::kTcp : ParseProtocol(options.protocol.front(), ipVersion).value();
  CheckPortUse(Policy::PortUseOf(ipVersion, protocol), remote, options);
  Connection connection = Policy::OrdinaryConnection(
      options.inbound.empty() ? Direction::Outbound : Direction::Inbound, ipVersion, protocol);
  const bool isLoopback = !options.loopback.empty() || IsLoopbackAddress(remote.address);
  connection.flags = isLoopback ? FWP_CONDITION_FLAG_IS_LOOPBACK : 0U;
  SetInterface(options, connection);
  if (isLoopback) {
    connection.localAddress = remote.address.number;
  }
  std::ranges::for_each(options.local, [&](const auto& text) { SetLocalEnd(text, connection); });
  connection.application = asked.application.value_or(connection.application.value());
  for (const std::string& app : options.apps) {
    connection.application = ReadApplicationId(app);
  }
  // The engine keeps the ICMP type in the field of the local port, and the code in that of the remote port.
  std::ranges::for_each(options.icmpType,
                        [&](const auto& text) { connection.localPort = ParseByte(text).value(); });
  std::ranges::for_each(options.icmpCode,
                        [&](const auto& text) { connection.remotePort = ParseByte(text).value(); });
  connection.remoteAddress = remote.address.number;
  connection.remotePort = remote.port ? remote.port : connection.remotePort;
  if (!options.reauthorized.empty()) {
    connection.flags = *connection.flags | FWP_CONDITION_FLAG_IS_REAUTHORIZE;
  }
  return connection;
}

std::optional<Connection> AcceptingEnd(const Connection& connection) {
  const bool isLoopback = (connection.flags.value_or(0) & FWP_CONDITION_FLAG_IS_LOOPBACK) != 0;
  if (!isLoopback || connection.direction == Direction::Inbound) {
    return std::nullopt;
  }
  Connection other = connection;
  other.direction = Direction::Inbound;
  std::swap(other.localAddress, other.remoteAddress);
  std::swap(other.arrivalInterface, other.nextHopInterface);
  // Of ICMP these are type and code.
  if (connection.protocol == Policy::kTcp || connection.protocol == Policy::kUdp) {
    std::swap(other.localPort, other.remotePort);
  }
  return other;
}
