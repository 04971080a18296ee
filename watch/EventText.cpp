#include "watch/EventText.h"

#include <chrono>
#include <cstdio>
#include <iterator>

#include "catalog/Format.h"
#include "policy/Connection.h"
#include "policy/PrincipalText.h"

namespace Watch {
namespace {

constexpr const char* kTypeNames[]{"IKEEXT_MM_FAILURE", "IKEEXT_QM_FAILURE", "IKEEXT_EM_FAILURE",
                                   "CLASSIFY_DROP",     "IPSEC_KERNEL_DROP", "IPSEC_DOSP_DROP",
                                   "CLASSIFY_ALLOW",    "CAPABILITY_DROP",   "CAPABILITY_ALLOW",
                                   "CLASSIFY_DROP_MAC", "LPM_PACKET_ARRIVAL"};
constexpr const char* kCapabilityNames[]{"internetClient", "internetClientServer",
                                         "privateNetworkClientServer"};

/// Days from the beginning of 1601, the epoch of FILETIME, to that of 1970.
constexpr std::chrono::days kEpochs{134774};
/// 9999-12-31T23:59:59.999Z
constexpr UINT64 kLastTime = 2650467743999999999;

template <std::size_t Count>
std::string NameIn(const char* const (&names)[Count], UINT32 number, const char* kind) {
  return number < Count ? names[number] : std::string(kind) + ' ' + Catalog::FormatNumber(number);
}

/// "192.0.2.1:50000", "[fe80::1]:443", "192.0.2.1", "port 443"; empty if the event tells nothing of it.
std::string EndText(const NetEvent& event, const std::optional<Policy::Number>& address,
                    std::optional<UINT16> port) {
  const std::string portText = port ? Catalog::FormatNumber(*port) : "";
  if (!address) {
    return port ? "port " + portText : "";
  }
  std::string host = Policy::FormatAddress(*event.ipVersion, *address);
  if (!port) {
    return host;
  }
  return (event.ipVersion == Policy::IpVersion::V6 ? '[' + host + ']' : host) + ':' + portText;
}

std::string DirectionText(const NetEvent& event) {
  if (!event.direction) {
    return "";
  }
  switch (*event.direction) {
    case EventDirection::Inbound:
      return "inbound ";
    case EventDirection::Outbound:
      return "outbound ";
    case EventDirection::Forwarded:
      return "forwarded ";
  }
  return "";
}

std::string VersionText(const NetEvent& event) {
  if (!event.ipVersion) {
    return "traffic";
  }
  return event.ipVersion == Policy::IpVersion::V4 ? "IPv4" : "IPv6";
}

std::string WhoText(const NetEvent& event) {
  std::string text;
  if (event.user) {
    text += ", user " + Policy::PrincipalText(*event.user);
  }
  if (event.package) {
    text += ", app container " + Policy::FormatSid(*event.package);
  }
  return text;
}

}  // namespace

std::string TimeText(UINT64 time) {
  if (time > kLastTime) {
    return "unknown time";
  }
  const std::chrono::milliseconds sinceEpoch{time / 10'000};
  const std::chrono::sys_time<std::chrono::milliseconds> point{sinceEpoch - kEpochs};
  const auto day = std::chrono::floor<std::chrono::days>(point);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss clock(point - day);
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ", int{date.year()},
                unsigned{date.month()}, unsigned{date.day()}, static_cast<int>(clock.hours().count()),
                static_cast<int>(clock.minutes().count()), static_cast<int>(clock.seconds().count()),
                static_cast<int>(clock.subseconds().count()));
  return text;
}

std::string ProgramText(const NetEvent& event) {
  if (!event.application) {
    return "unknown program";
  }
  return Catalog::FormatTextOrBytes(
      {reinterpret_cast<const UINT8*>(event.application->data()), event.application->size()});
}

std::string ConnectionText(const NetEvent& event) {
  std::string text = DirectionText(event) + VersionText(event);
  if (event.protocol) {
    Policy::Connection connection;
    connection.protocol = event.protocol;
    text += ", protocol " + Policy::FieldValueText(connection, Policy::Field::Protocol);
  }
  if (const std::string local = EndText(event, event.localAddress, event.localPort); !local.empty()) {
    text += ", local " + local;
  }
  if (const std::string remote = EndText(event, event.remoteAddress, event.remotePort); !remote.empty()) {
    text += ", remote " + remote;
  }
  return text + WhoText(event) + (event.isLoopback == true ? ", loopback" : "");
}

std::string TargetText(const NetEvent& event) {
  if (event.direction != EventDirection::Inbound) {
    const std::string remote = EndText(event, event.remoteAddress, event.remotePort);
    return remote.empty() ? "" : "to " + remote;
  }
  const std::string remote = EndText(event, event.remoteAddress, std::nullopt);
  const std::string local = EndText(event, std::nullopt, event.localPort);
  const std::string from = remote.empty() ? "" : "from " + remote;
  return from + (from.empty() || local.empty() ? "" : " ") + (local.empty() ? "" : "to " + local);
}

std::string TypeName(UINT32 type) { return NameIn(kTypeNames, type, "type"); }

std::string CapabilityName(UINT32 capability) { return NameIn(kCapabilityNames, capability, "capability"); }

}  // namespace Watch
