#include "watch/EventConnection.h"

#include <initializer_list>
#include <string_view>

namespace Watch {
namespace {

using Catalog::LayerFamily;
using Policy::Direction;
using Policy::Sid;

constexpr UINT64 kLoopbackInterface = UINT64{24} << 48;

/// A packet of a connection may go either way, so first the layer tells who opened it.
std::optional<Direction> DirectionOf(const NetEvent& event, const Catalog::Layer& layer) {
  switch (layer.family) {
    case LayerFamily::AleAuthConnect:
      return Direction::Outbound;
    case LayerFamily::AleAuthRecvAccept:
      return Direction::Inbound;
    case LayerFamily::AleFlowEstablished:
      if (event.direction == EventDirection::Outbound) {
        return Direction::Outbound;
      }
      return event.direction == EventDirection::Inbound ? std::optional(Direction::Inbound) : std::nullopt;
    default:
      return std::nullopt;
  }
}

/// Whether an event tells of a connection all that filters may decide it by, but for the interface.
bool TellsBothEnds(const NetEvent& event, const Catalog::Layer& layer) {
  if (!event.ipVersion || event.ipVersion != layer.ipVersion || !event.protocol || !event.localAddress ||
      !event.remoteAddress) {
    return false;
  }
  const bool hasPorts = Policy::PortUseOf(*event.ipVersion, *event.protocol) != Policy::PortUse::None;
  return !hasPorts || (event.localPort && event.remotePort);
}

Sid Known(std::string_view text) { return Policy::ParseSid(text).value(); }

/// What a program of one of the system's accounts may be besides: any service, or none.
Policy::Token PerhapsOfService(Policy::Token token) {
  for (const std::string_view start : {"S-1-2", "S-1-5-5", "S-1-5-6", "S-1-5-15", "S-1-5-80"}) {
    token.open.push_back(Known(start));
  }
  return token;
}

/// Nothing where the event does not tell enough: of a program in an app container it lacks the capabilities.
std::optional<Policy::Token> TokenOf(const NetEvent& event) {
  if (!event.user || event.package) {
    return std::nullopt;
  }
  const Sid allServices = Known("S-1-5-80-0");
  if (*event.user == Known("S-1-5-18")) {
    const bool isKernel = event.application == Policy::ApplicationBytes("System");
    return isKernel ? Policy::SystemProgram() : PerhapsOfService(Policy::SystemProgram());
  }
  if (*event.user == Known("S-1-5-19")) {
    return PerhapsOfService(Policy::ServiceProgram(allServices, Policy::ServiceAccount::LocalService));
  }
  if (*event.user == Known("S-1-5-20")) {
    return PerhapsOfService(Policy::ServiceProgram(allServices, Policy::ServiceAccount::NetworkService));
  }
  return Policy::UserProgram(*event.user);
}

}  // namespace

std::optional<Policy::Connection> ConnectionOf(const NetEvent& event, const Catalog::Layer* layer) {
  const std::optional<Direction> direction = layer == nullptr ? std::nullopt : DirectionOf(event, *layer);
  if (!direction || !TellsBothEnds(event, *layer)) {
    return std::nullopt;
  }
  Policy::Connection connection = Policy::OrdinaryConnection(*direction, *event.ipVersion, *event.protocol);
  connection.localAddress = event.localAddress;
  connection.remoteAddress = event.remoteAddress;
  if (connection.localPort) {
    connection.localPort = event.localPort;
    connection.remotePort = event.remotePort;
  }
  connection.application = event.application;
  UINT32 flags = 0;
  if (event.isLoopback == true) {
    flags |= FWP_CONDITION_FLAG_IS_LOOPBACK;
    connection.localInterface = kLoopbackInterface;
    (*direction == Direction::Outbound ? connection.nextHopInterface : connection.arrivalInterface) =
        kLoopbackInterface;
  }
  if (event.reauthorizeReason.value_or(0) != 0) {
    flags |= FWP_CONDITION_FLAG_IS_REAUTHORIZE;
  }
  connection.flags = flags;
  return connection;
}

Policy::Circumstances CircumstancesOf(const NetEvent& event) {
  Policy::Circumstances circumstances = Policy::UsualCircumstances({});
  circumstances.token = TokenOf(event);
  circumstances.profile = event.profile;
  circumstances.reauthorizeReason = event.reauthorizeReason.value_or(0);
  return circumstances;
}

}  // namespace Watch
