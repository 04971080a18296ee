#include "AskedConnection.h"

#include <WfpPlatform.h>

#include <algorithm>

#include "PolicyReader.h"

namespace {

using Policy::Connection;
using Policy::Direction;
using Policy::PortUse;

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

void SetInterface(const std::string& text, Connection& connection) {
  const UINT64 luid = FindInterface(text);
  connection.localInterface = luid;
  (connection.direction == Direction::Outbound ? connection.nextHopInterface : connection.arrivalInterface) =
      luid;
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

Connection AskedConnection(const std::string& remoteText, const StepOptions& options) {
  const Endpoint remote = ParseEndpoint(remoteText).value();
  const Policy::IpVersion ipVersion = remote.address.ipVersion;
  const UINT8 protocol =
      options.protocol.empty() ? Policy::kTcp : ParseProtocol(options.protocol.front(), ipVersion).value();
  CheckPortUse(Policy::PortUseOf(ipVersion, protocol), remote, options);
  Connection connection = Policy::OrdinaryConnection(
      options.inbound.empty() ? Direction::Outbound : Direction::Inbound, ipVersion, protocol);
  std::ranges::for_each(options.local, [&](const auto& text) { SetLocalEnd(text, connection); });
  std::ranges::for_each(options.interfaces, [&](const auto& text) { SetInterface(text, connection); });
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
  connection.flags = options.loopback.empty() ? 0 : FWP_CONDITION_FLAG_IS_LOOPBACK;
  return connection;
}
