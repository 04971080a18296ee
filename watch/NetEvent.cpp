#include "watch/NetEvent.h"

#include <cstring>
#include <span>

namespace Watch {
namespace {

// FWPM_NET_EVENT_TYPE_*, of which some headers have no more than Windows 7.
constexpr UINT32 kClassifyDrop = 3;
constexpr UINT32 kCapabilityDrop = 7;

/// An application's id is a path; a longer one is taken for garbage.
constexpr UINT32 kMostApplicationBytes = 0x10000;

/// The number in a field of an enumeration, which may be none of the enumeration's.
template <class Enumeration>
UINT32 NumberIn(const Enumeration& field) {
  static_assert(sizeof(Enumeration) == sizeof(UINT32));
  UINT32 number = 0;
  std::memcpy(&number, &field, sizeof number);
  return number;
}

std::optional<Policy::IpVersion> IpVersionOf(UINT32 number) {
  switch (number) {
    case FWP_IP_VERSION_V4:
      return Policy::IpVersion::V4;
    case FWP_IP_VERSION_V6:
      return Policy::IpVersion::V6;
    default:
      return std::nullopt;
  }
}

std::optional<EventDirection> DirectionOf(UINT32 number) {
  switch (number) {
    case FWP_DIRECTION_IN:
      return EventDirection::Inbound;
    case FWP_DIRECTION_OUT:
      return EventDirection::Outbound;
    case FWP_DIRECTION_FORWARD:
      return EventDirection::Forwarded;
    default:
      return std::nullopt;
  }
}

std::optional<std::string> BytesOf(const FWP_BYTE_BLOB& blob) {
  if (blob.data == nullptr || blob.size == 0 || blob.size > kMostApplicationBytes) {
    return std::nullopt;
  }
  return std::string(blob.data, blob.data + blob.size);
}

std::optional<Policy::Sid> SidOf(const SID* sid) {
  if (sid == nullptr || sid->Revision != SID_REVISION || sid->SubAuthorityCount > SID_MAX_SUB_AUTHORITIES) {
    return std::nullopt;
  }
  Policy::Sid decoded;
  for (const BYTE byte : sid->IdentifierAuthority.Value) {
    decoded.authority = decoded.authority << 8 | byte;
  }
  const std::span numbers(static_cast<const DWORD*>(sid->SubAuthority), sid->SubAuthorityCount);
  decoded.numbers.assign(numbers.begin(), numbers.end());
  return decoded;
}

/// The package of a program that is in none has the SID S-1-0-0.
bool IsNobody(const Policy::Sid& sid) { return sid == Policy::Sid{0, {0}}; }

template <class Header>
void DecodeAddresses(const Header& header, NetEvent& event) {
  const bool isV4 = event.ipVersion == Policy::IpVersion::V4;
  if ((header.flags & FWPM_NET_EVENT_FLAG_LOCAL_ADDR_SET) != 0) {
    event.localAddress =
        isV4 ? Policy::Number(header.localAddrV4) : Policy::FromBytes(header.localAddrV6.byteArray16);
  }
  if ((header.flags & FWPM_NET_EVENT_FLAG_REMOTE_ADDR_SET) != 0) {
    event.remoteAddress =
        isV4 ? Policy::Number(header.remoteAddrV4) : Policy::FromBytes(header.remoteAddrV6.byteArray16);
  }
}

/// What all versions of the header have.
template <class Header>
NetEvent DecodeHeader(const Header& header) {
  const auto has = [&header](UINT32 flag) { return (header.flags & flag) != 0; };
  NetEvent event;
  event.time = UINT64{header.timeStamp.dwHighDateTime} << 32 | header.timeStamp.dwLowDateTime;
  if (has(FWPM_NET_EVENT_FLAG_IP_VERSION_SET)) {
    event.ipVersion = IpVersionOf(NumberIn(header.ipVersion));
  }
  if (event.ipVersion) {
    DecodeAddresses(header, event);
  }
  if (has(FWPM_NET_EVENT_FLAG_IP_PROTOCOL_SET)) {
    event.protocol = header.ipProtocol;
  }
  if (has(FWPM_NET_EVENT_FLAG_LOCAL_PORT_SET)) {
    event.localPort = header.localPort;
  }
  if (has(FWPM_NET_EVENT_FLAG_REMOTE_PORT_SET)) {
    event.remotePort = header.remotePort;
  }
  if (has(FWPM_NET_EVENT_FLAG_APP_ID_SET)) {
    event.application = BytesOf(header.appId);
  }
  if (has(FWPM_NET_EVENT_FLAG_USER_ID_SET)) {
    event.user = SidOf(header.userId);
  }
  return event;
}

/// What versions 2 and 3 of the header have besides.
template <class Header>
void DecodePackage(const Header& header, NetEvent& event) {
  if ((header.flags & FWPM_NET_EVENT_FLAG_PACKAGE_ID_SET) == 0) {
    return;
  }
  const std::optional<Policy::Sid> package = SidOf(header.packageSid);
  if (package && !IsNobody(*package)) {
    event.package = package;
  }
}

/// What all versions of the data of a drop have.
template <class Data>
void DecodeDrop(const Data* data, UINT32 flags, NetEvent& event) {
  event.kind = EventKind::Drop;
  if (data == nullptr) {
    return;
  }
  event.filterId = data->filterId;
  event.layerId = data->layerId;
  event.direction = DirectionOf(data->msFwpDirection);
  event.isLoopback = data->isLoopback != 0;
  if ((flags & FWPM_NET_EVENT_FLAG_REAUTH_REASON_SET) != 0) {
    event.reauthorizeReason = data->reauthReason;
  }
  if (data->currentProfile >= 1 && data->currentProfile <= 3) {
    event.profile = data->currentProfile;
  }
}

void DecodeCapabilityDrop(const FWPM_NET_EVENT_CAPABILITY_DROP0* data, NetEvent& event) {
  event.kind = EventKind::CapabilityDrop;
  if (data == nullptr) {
    return;
  }
  event.filterId = data->filterId;
  event.isLoopback = data->isLoopback != 0;
  event.capability = NumberIn(data->networkCapabilityId);
}

template <class Event>
NetEvent DecodeNewer(const Event& native) {
  NetEvent event = DecodeHeader(native.header);
  DecodePackage(native.header, event);
  event.type = NumberIn(native.type);
  if (event.type == kClassifyDrop) {
    DecodeDrop(native.classifyDrop, native.header.flags, event);
  } else if (event.type == kCapabilityDrop) {
    DecodeCapabilityDrop(native.capabilityDrop, event);
  }
  return event;
}

}  // namespace

NetEvent Decode(const FWPM_NET_EVENT1& native) {
  NetEvent event = DecodeHeader(native.header);
  event.type = NumberIn(native.type);
  if (event.type == kClassifyDrop) {
    DecodeDrop(native.classifyDrop, native.header.flags, event);
  }
  return event;
}

NetEvent Decode(const FWPM_NET_EVENT2& native) { return DecodeNewer(native); }

NetEvent Decode(const FWPM_NET_EVENT3& native) { return DecodeNewer(native); }

}  // namespace Watch
