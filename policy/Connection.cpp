#include "policy/Connection.h"

#include <array>
#include <filesystem>
#include <type_traits>

#include "catalog/Format.h"
#include "catalog/Names.h"

namespace Policy {
namespace {

constexpr std::array<std::string_view, kFieldCount> kFieldTexts{
    "flags",    "interface",  "arrival interface", "next-hop interface", "application",
    "protocol", "local port", "remote port",       "local address",      "remote address"};

constexpr std::string_view kUnset = "unset";

constexpr UINT8 kIcmp = 1;
constexpr UINT8 kIcmpV6 = 58;
constexpr UINT16 kEchoRequest = 8;
constexpr UINT16 kEchoRequestV6 = 128;

/// "6 (TCP)"
std::string ProtocolText(std::optional<UINT8> protocol) {
  if (!protocol) {
    return std::string(kUnset);
  }
  std::string number = Catalog::FormatNumber(unsigned{*protocol});
  switch (*protocol) {
    case kIcmp:
      return number + " (ICMP)";
    case kTcp:
      return number + " (TCP)";
    case kUdp:
      return number + " (UDP)";
    case kIcmpV6:
      return number + " (ICMPv6)";
    default:
      return number;
  }
}

template <class Plain>
std::optional<Number> Widened(const std::optional<Plain>& value) {
  return value ? std::optional<Number>(*value) : std::nullopt;
}

/// Calls `visit` with the member that a field of numbers is; with none for the application.
template <class AnyConnection, class Visit>
void VisitNumber(AnyConnection& connection, Field field, Visit visit) {
  switch (field) {
    case Field::Flags:
      return visit(connection.flags);
    case Field::LocalInterface:
      return visit(connection.localInterface);
    case Field::ArrivalInterface:
      return visit(connection.arrivalInterface);
    case Field::NextHopInterface:
      return visit(connection.nextHopInterface);
    case Field::Application:
      return;
    case Field::Protocol:
      return visit(connection.protocol);
    case Field::LocalPort:
      return visit(connection.localPort);
    case Field::RemotePort:
      return visit(connection.remotePort);
    case Field::LocalAddress:
      return visit(connection.localAddress);
    case Field::RemoteAddress:
      return visit(connection.remoteAddress);
  }
}

std::string AddressText(IpVersion ipVersion, const std::optional<Number>& address) {
  return address ? FormatAddress(ipVersion, *address) : std::string(kUnset);
}

std::string PortText(std::optional<UINT16> port) {
  return port ? Catalog::FormatNumber(*port) : std::string(kUnset);
}

/// "10.0.0.1:53", "[fe80::1]:53"
std::string EndText(IpVersion ipVersion, std::optional<Number> address, std::optional<UINT16> port) {
  std::string host = AddressText(ipVersion, address);
  if (address && ipVersion == IpVersion::V6) {
    host = '[' + host + ']';
  }
  return host + ':' + PortText(port);
}

std::string InterfaceText(std::optional<UINT64> luid, const Labels& labels) {
  if (!luid) {
    return std::string(kUnset);
  }
  const auto label = labels.interfaces.find(*luid);
  return label == labels.interfaces.end() ? Catalog::FormatNumber(*luid) : label->second;
}

std::string ApplicationText(const std::optional<std::string>& application, const Labels& labels) {
  if (!application) {
    return std::string(kUnset);
  }
  const auto label = labels.applications.find(*application);
  if (label != labels.applications.end()) {
    return label->second;
  }
  return Catalog::FormatTextOrBytes(
      {reinterpret_cast<const UINT8*>(application->data()), application->size()});
}

std::string FlagsText(std::optional<UINT32> flags) {
  return flags ? Catalog::FormatHex(*flags) : std::string(kUnset);
}

}  // namespace

std::string_view FieldText(Field field) { return kFieldTexts[static_cast<std::size_t>(field)]; }

std::optional<Number> NumberOf(const Connection& connection, Field field) {
  std::optional<Number> number;
  VisitNumber(connection, field, [&number](const auto& value) { number = Widened(value); });
  return number;
}

void SetNumber(Connection& connection, Field field, const std::optional<Number>& number) {
  VisitNumber(connection, field, [&number]<class Plain>(std::optional<Plain>& value) {
    if constexpr (std::is_same_v<Plain, Number>) {
      value = number;
    } else {
      value = number ? std::optional(static_cast<Plain>(number->low)) : std::nullopt;
    }
  });
}

PortUse PortUseOf(IpVersion ipVersion, UINT8 protocol) {
  if (protocol == kTcp || protocol == kUdp) {
    return PortUse::Ports;
  }
  return protocol == (ipVersion == IpVersion::V4 ? kIcmp : kIcmpV6) ? PortUse::IcmpTypeAndCode
                                                                    : PortUse::None;
}

Connection OrdinaryConnection(Direction direction, IpVersion ipVersion, UINT8 protocol) {
  Connection connection;
  connection.direction = direction;
  connection.ipVersion = ipVersion;
  connection.protocol = protocol;
  const bool v4 = ipVersion == IpVersion::V4;
  connection.localAddress = v4 ? Number(0xC0000201) : Number(0x20010DB800000000, 1);
  connection.remoteAddress = v4 ? Number(0xC6336401) : Number(0x20010DB800010000, 1);
  const PortUse portUse = PortUseOf(ipVersion, protocol);
  if (portUse == PortUse::Ports) {
    connection.localPort = UINT16{50000};
    connection.remotePort = UINT16{443};
  } else if (portUse == PortUse::IcmpTypeAndCode) {
    connection.localPort = v4 ? kEchoRequest : kEchoRequestV6;
    connection.remotePort = UINT16{0};
  }
  connection.application = ApplicationBytes("other.exe");
  connection.localInterface = UINT64{999};
  connection.flags = 0;
  (direction == Direction::Outbound ? connection.nextHopInterface : connection.arrivalInterface) = 999;
  return connection;
}

std::string ApplicationBytes(std::string_view utf8) {
  std::string bytes;
  for (const char16_t unit :
       std::filesystem::path(std::u8string(utf8.begin(), utf8.end())).u16string() + u'\0') {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes;
}

std::string FieldValueText(const Connection& connection, Field field, const Labels& labels) {
  switch (field) {
    case Field::Flags:
      return FlagsText(connection.flags);
    case Field::LocalInterface:
      return InterfaceText(connection.localInterface, labels);
    case Field::ArrivalInterface:
      return InterfaceText(connection.arrivalInterface, labels);
    case Field::NextHopInterface:
      return InterfaceText(connection.nextHopInterface, labels);
    case Field::Application:
      return ApplicationText(connection.application, labels);
    case Field::Protocol:
      return ProtocolText(connection.protocol);
    case Field::LocalPort:
      return PortText(connection.localPort);
    case Field::RemotePort:
      return PortText(connection.remotePort);
    case Field::LocalAddress:
      return AddressText(connection.ipVersion, connection.localAddress);
    case Field::RemoteAddress:
      return AddressText(connection.ipVersion, connection.remoteAddress);
  }
  return {};
}

std::string Describe(const Connection& connection, const Labels& labels) {
  std::string text = connection.direction == Direction::Outbound ? "outbound" : "inbound";
  text += connection.ipVersion == IpVersion::V4 ? " IPv4, " : " IPv6, ";
  text += "protocol " + ProtocolText(connection.protocol);
  text += ", local " + EndText(connection.ipVersion, connection.localAddress, connection.localPort);
  text += ", remote " + EndText(connection.ipVersion, connection.remoteAddress, connection.remotePort);
  text += ", application " + ApplicationText(connection.application, labels);
  text += ", interface " + InterfaceText(connection.localInterface, labels);
  text += ", flags " + FlagsText(connection.flags);
  return text;
}

}  // namespace Policy
