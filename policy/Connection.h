/**
 * @file
 * Connections as the filtering engine sees them.
 */
#pragma once

#include <WfpPlatform.h>

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "policy/Address.h"

namespace Policy {

enum class Direction { Outbound, Inbound };

/// What conditions tell connections of one direction and IP version apart by. The order is that of the
/// levels of a map.
enum class Field {
  Flags,
  LocalInterface,
  ArrivalInterface,
  NextHopInterface,
  Application,
  Protocol,
  LocalPort,
  RemotePort,
  LocalAddress,
  RemoteAddress,
};
inline constexpr std::size_t kFieldCount = 10;

/// Text of a field: "flags", "interface", "arrival interface", "next-hop interface", "application",
/// "protocol", "local port", "remote port", "local address", "remote address".
std::string_view FieldText(Field field);

/// A connection that is to be opened or accepted. A field without a value is one that the engine does not
/// know at that moment: it presents it to filters as FWP_EMPTY. For ICMP the ports are type (local) and code
/// (remote).
struct Connection {
  Direction direction = Direction::Outbound;
  IpVersion ipVersion = IpVersion::V4;
  std::optional<UINT8> protocol;
  std::optional<Number> localAddress;
  std::optional<Number> remoteAddress;
  std::optional<UINT16> localPort;
  std::optional<UINT16> remotePort;
  std::optional<std::string> application;  ///< bytes of the application id, its terminator included
  std::optional<UINT64> localInterface;    ///< LUIDs, these three
  std::optional<UINT64> arrivalInterface;
  std::optional<UINT64> nextHopInterface;
  std::optional<UINT32> flags;  ///< FWP_CONDITION_FLAG_*

  bool operator==(const Connection&) const = default;
};

/// The value of a field of numbers, flags included; none for the application.
std::optional<Number> NumberOf(const Connection& connection, Field field);
/// Gives a field of numbers a value that fits its type, or none. The application stays as it is.
void SetNumber(Connection& connection, Field field, const std::optional<Number>& number);

/// What connections of a protocol have where others have ports.
enum class PortUse {
  Ports,            ///< TCP, UDP
  IcmpTypeAndCode,  ///< ICMP of the same IP version
  None,             ///< all others: the fields are without a value
};
PortUse PortUseOf(IpVersion ipVersion, UINT8 protocol);

inline constexpr UINT8 kTcp = 6;
inline constexpr UINT8 kUdp = 17;

/// A connection that no filter has a special word for: flags 0, with addresses from the ranges for
/// documentation, an application and interfaces that no filter names; TCP and UDP from port 50000 to port
/// 443, ICMP an echo request, other protocols without ports.
Connection OrdinaryConnection(Direction direction, IpVersion ipVersion, UINT8 protocol = kTcp);

/// Human names that texts use in place of numbers and identifiers.
struct Labels {
  std::map<UINT64, std::string> interfaces;         ///< by LUID
  std::map<std::string, std::string> applications;  ///< by the bytes of the application id
};

/// The bytes of an application id, from its text in well-formed UTF-8: "\device\harddiskvolume1\a.exe".
std::string ApplicationBytes(std::string_view utf8);

/// What a connection has in a field: "53", "10.0.0.1", "6 (TCP)", "other.exe", "unset".
std::string FieldValueText(const Connection& connection, Field field, const Labels& labels = {});

/// "outbound IPv4, protocol 6 (TCP), local 192.0.2.1:50000, remote 198.51.100.1:443, application other.exe,
/// interface 7, flags 0x00000000"; fields without a value are "unset".
std::string Describe(const Connection& connection, const Labels& labels = {});

}  // namespace Policy
