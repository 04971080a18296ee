/**
 * @file
 * What the engine tells of a packet that it dropped or let through, decoded.
 */
#pragma once

#include <NetEvents.h>

#include <optional>
#include <string>

#include "policy/Address.h"
#include "policy/Sid.h"

namespace Watch {

enum class EventKind {
  Drop,            ///< by a filter, or by what stands in for one
  CapabilityDrop,  ///< because the program lacks a capability
  Other,           ///< let through, or of IPsec: only its type is told
};

/// Of the packet, seen from this machine.
enum class EventDirection { Inbound, Outbound, Forwarded };

/// An event. What the engine has not set in its record has no value.
struct NetEvent {
  EventKind kind = EventKind::Other;
  UINT32 type = 0;  ///< FWPM_NET_EVENT_TYPE_*; newer engines have more than the headers
  UINT64 time = 0;  ///< UTC; since 1601, in units of 100 ns, as in FILETIME
  std::optional<Policy::IpVersion> ipVersion;
  std::optional<UINT8> protocol;
  std::optional<Policy::Number> localAddress;
  std::optional<Policy::Number> remoteAddress;
  std::optional<UINT16> localPort;         ///< of ICMP the type; host byte order
  std::optional<UINT16> remotePort;        ///< of ICMP the code
  std::optional<std::string> application;  ///< bytes of the application id, its terminator included
  std::optional<Policy::Sid> user;
  std::optional<Policy::Sid> package;  ///< none for a program outside of app containers
  // What follows is of drops only.
  std::optional<UINT64> filterId;  ///< 0: no filter, but the engine itself
  std::optional<UINT16> layerId;
  std::optional<EventDirection> direction;
  std::optional<bool> isLoopback;
  std::optional<UINT32> reauthorizeReason;
  std::optional<UINT32> profile;     ///< 1 public, 2 private, 3 domain
  std::optional<UINT32> capability;  ///< FWPM_APPC_NETWORK_CAPABILITY_*
};

/// Decodes a record. It reads no field that the record's flags do not name; sizes and numbers may be any,
/// pointers must be null or valid.
NetEvent Decode(const FWPM_NET_EVENT1& event);
NetEvent Decode(const FWPM_NET_EVENT2& event);
NetEvent Decode(const FWPM_NET_EVENT3& event);

}  // namespace Watch
