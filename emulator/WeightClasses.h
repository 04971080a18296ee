/**
 * @file
 * The classes of fields that automatic weights are made of, from the heaviest to the lightest.
 *
 * Observed on ten machines, Windows 10 and 11. What no filter there tests has its place by analogy: the
 * order among such neighbours is a guess, but not that they are there, because each moves the ones above it.
 */
#pragma once

#include <span>

#include "catalog/FieldList.h"
#include "catalog/Layers.h"

namespace EngineEmulator {

using FieldClass = Catalog::FieldList;

/// The fields whose conditions weigh by the bits that they pin down. Any other counts as one bit, whatever it
/// holds.
inline constexpr FieldClass kFieldsWithSize(
    "IP_LOCAL_ADDRESS IP_REMOTE_ADDRESS IP_SOURCE_ADDRESS IP_DESTINATION_ADDRESS EMBEDDED_REMOTE_ADDRESS "
    "IP_LOCAL_PORT IP_REMOTE_PORT EMBEDDED_LOCAL_PORT EMBEDDED_REMOTE_PORT ORIGINAL_ICMP_TYPE "
    "IP_PROTOCOL EMBEDDED_PROTOCOL INTERFACE_INDEX SUB_INTERFACE_INDEX ARRIVAL_INTERFACE_INDEX "
    "NEXTHOP_INTERFACE_INDEX NEXTHOP_SUB_INTERFACE_INDEX SOURCE_INTERFACE_INDEX SOURCE_SUB_INTERFACE_INDEX "
    "DESTINATION_INTERFACE_INDEX DESTINATION_SUB_INTERFACE_INDEX ORIGINAL_PROFILE_ID CURRENT_PROFILE_ID "
    "DIRECTION ALE_NAP_CONTEXT ALE_PROMISCUOUS_MODE");

inline constexpr FieldClass kAddresses("IP_LOCAL_ADDRESS IP_REMOTE_ADDRESS");
inline constexpr FieldClass kInterfaces("IP_LOCAL_INTERFACE IP_ARRIVAL_INTERFACE IP_NEXTHOP_INTERFACE");
inline constexpr FieldClass kLocalPort("IP_LOCAL_PORT ORIGINAL_ICMP_TYPE");
inline constexpr FieldClass kApplication(
    "ALE_APP_ID ALE_ORIGINAL_APP_ID ALE_PACKAGE_ID ALE_PACKAGE_FAMILY_NAME "
    "ALE_SECURITY_ATTRIBUTE_FQBN_VALUE");
inline constexpr FieldClass kInterfaceTypes("INTERFACE_TYPE ARRIVAL_INTERFACE_TYPE NEXTHOP_INTERFACE_TYPE");
inline constexpr FieldClass kTunnelTypes("TUNNEL_TYPE ARRIVAL_TUNNEL_TYPE NEXTHOP_TUNNEL_TYPE");
inline constexpr FieldClass kInterfaceProfiles(
    "LOCAL_INTERFACE_PROFILE_ID ARRIVAL_INTERFACE_PROFILE_ID NEXTHOP_INTERFACE_PROFILE_ID");
inline constexpr FieldClass kReserved("RESERVED0 RESERVED1 RESERVED2 RESERVED3");

// Windows 10 has one class more above the addresses of AUTH_CONNECT and three below the profiles, and two at
// RESOURCE_ASSIGNMENT. That the bitmap fields are these is assumed, and which of them is where.
inline constexpr FieldClass kAuthConnect[]{
    "BITMAP_IP_LOCAL_ADDRESS",
    "PEER_NAME",
    kAddresses,
    kInterfaces,
    "IP_LOCAL_ADDRESS_TYPE",
    "IP_PROTOCOL",
    kLocalPort,
    "IP_REMOTE_PORT",
    kApplication,
    "ALE_USER_ID",
    "FLAGS",
    "ALE_REMOTE_USER_ID",
    "ALE_REMOTE_MACHINE_ID",
    "IP_DESTINATION_ADDRESS_TYPE",
    kInterfaceTypes,
    kTunnelTypes,
    "INTERFACE_INDEX",
    "SUB_INTERFACE_INDEX",
    "ARRIVAL_INTERFACE_INDEX",
    "NEXTHOP_SUB_INTERFACE_INDEX",
    "NEXTHOP_INTERFACE_INDEX",
    "ALE_EFFECTIVE_NAME",
    "ORIGINAL_PROFILE_ID",
    "CURRENT_PROFILE_ID",
    "REAUTHORIZE_REASON",
    "INTERFACE_QUARANTINE_EPOCH",
    kReserved,
    "BITMAP_IP_LOCAL_PORT",
    "BITMAP_IP_REMOTE_ADDRESS",
    "BITMAP_IP_REMOTE_PORT",
    "COMPARTMENT_ID",
};
inline constexpr FieldClass kAuthRecvAccept[]{
    kAddresses,
    kInterfaces,
    "IP_LOCAL_ADDRESS_TYPE",
    "IP_PROTOCOL",
    kLocalPort,
    "IP_REMOTE_PORT",
    kApplication,
    "ALE_USER_ID",
    "ALE_REMOTE_USER_ID",
    "ALE_REMOTE_MACHINE_ID",
    "FLAGS",
    "ALE_SIO_FIREWALL_SYSTEM_PORT",
    "ALE_NAP_CONTEXT",
    kInterfaceTypes,
    kTunnelTypes,
    "INTERFACE_INDEX",
    "SUB_INTERFACE_INDEX",
    "ARRIVAL_INTERFACE_INDEX",
    "NEXTHOP_SUB_INTERFACE_INDEX",
    "NEXTHOP_INTERFACE_INDEX",
    "ORIGINAL_PROFILE_ID",
    "CURRENT_PROFILE_ID",
    "REAUTHORIZE_REASON",
    "INTERFACE_QUARANTINE_EPOCH",
    kReserved,
    "COMPARTMENT_ID",
};
inline constexpr FieldClass kAuthListen[]{
    kAddresses,
    kInterfaces,
    "IP_LOCAL_ADDRESS_TYPE",
    kLocalPort,
    kApplication,
    "ALE_USER_ID",
    "FLAGS",
    kInterfaceTypes,
    kTunnelTypes,
    kInterfaceProfiles,
    "ALE_SIO_FIREWALL_SYSTEM_PORT",
    "COMPARTMENT_ID",
};
inline constexpr FieldClass kResourceAssignment[]{
    kLocalPort,
    kInterfaces,
    "IP_LOCAL_ADDRESS_TYPE",
    "IP_PROTOCOL",
    kApplication,
    "ALE_USER_ID",
    "ALE_PROMISCUOUS_MODE",
    "FLAGS",
    kAddresses,
    kInterfaceTypes,
    kTunnelTypes,
    kInterfaceProfiles,
    "ALE_SIO_FIREWALL_SYSTEM_PORT",
    kReserved,
    "BITMAP_IP_LOCAL_ADDRESS",
    "BITMAP_IP_LOCAL_PORT",
    "COMPARTMENT_ID",
};
inline constexpr FieldClass kFlowEstablished[]{
    kAddresses,
    kInterfaces,
    "IP_LOCAL_ADDRESS_TYPE",
    "IP_PROTOCOL",
    kLocalPort,
    "IP_REMOTE_PORT",
    kApplication,
    "ALE_USER_ID",
    "ALE_REMOTE_USER_ID",
    "ALE_REMOTE_MACHINE_ID",
    "DIRECTION",
    "IP_DESTINATION_ADDRESS_TYPE",
    kInterfaceTypes,
    kTunnelTypes,
    "FLAGS",
    kReserved,
    "COMPARTMENT_ID",
};
inline constexpr FieldClass kConnectRedirect[]{
    kAddresses,       "IP_LOCAL_ADDRESS_TYPE",
    "IP_PROTOCOL",    kLocalPort,
    "IP_REMOTE_PORT", kApplication,
    "ALE_USER_ID",    "IP_DESTINATION_ADDRESS_TYPE",
    "FLAGS",          "COMPARTMENT_ID",
};
inline constexpr FieldClass kEndpointClosure[]{
    kLocalPort,    "IP_REMOTE_PORT", kInterfaces, "IP_LOCAL_ADDRESS_TYPE", "IP_PROTOCOL", kApplication,
    "ALE_USER_ID", "FLAGS",          kAddresses,  "COMPARTMENT_ID",
};
// The ports are the type and the code of ICMP.
inline constexpr FieldClass kOutboundIcmpError[]{
    kAddresses,       kInterfaces,       "IP_LOCAL_ADDRESS_TYPE", kLocalPort,
    "IP_REMOTE_PORT", "INTERFACE_INDEX", "SUB_INTERFACE_INDEX",   kInterfaceTypes,
    kTunnelTypes,     "FLAGS",           kInterfaceProfiles,      "INTERFACE_QUARANTINE_EPOCH",
    "COMPARTMENT_ID",
};
// Another order is possible of what stands between the interfaces and the profile: one filter was seen.
inline constexpr FieldClass kInboundIcmpError[]{
    kAddresses,
    kInterfaces,
    "EMBEDDED_LOCAL_ADDRESS_TYPE",
    "EMBEDDED_PROTOCOL",
    "EMBEDDED_LOCAL_PORT",
    "EMBEDDED_REMOTE_PORT",
    kLocalPort,
    "IP_REMOTE_PORT",
    "EMBEDDED_REMOTE_ADDRESS",
    "INTERFACE_INDEX",
    "SUB_INTERFACE_INDEX",
    "ARRIVAL_INTERFACE_INDEX",
    kInterfaceTypes,
    kTunnelTypes,
    "FLAGS",
    kInterfaceProfiles,
    "INTERFACE_QUARANTINE_EPOCH",
    "COMPARTMENT_ID",
};
inline constexpr FieldClass kInboundTransport[]{
    kAddresses,
    kInterfaces,
    "IP_LOCAL_ADDRESS_TYPE",
    "IP_PROTOCOL",
    kLocalPort,
    "IP_REMOTE_PORT",
    "FLAGS",
    "INTERFACE_INDEX",
    "SUB_INTERFACE_INDEX",
    kInterfaceTypes,
    kTunnelTypes,
    "CURRENT_PROFILE_ID",
    "IPSEC_SECURITY_REALM_ID",
    "COMPARTMENT_ID",
};
// Nothing is known of the order above the flags.
inline constexpr FieldClass kIpForward[]{
    "IP_SOURCE_ADDRESS IP_DESTINATION_ADDRESS",
    "IP_LOCAL_INTERFACE IP_FORWARD_INTERFACE IP_PHYSICAL_ARRIVAL_INTERFACE IP_PHYSICAL_NEXTHOP_INTERFACE",
    "IP_DESTINATION_ADDRESS_TYPE",
    "SOURCE_INTERFACE_INDEX",
    "SOURCE_SUB_INTERFACE_INDEX",
    "DESTINATION_INTERFACE_INDEX",
    "DESTINATION_SUB_INTERFACE_INDEX",
    "FLAGS",
    kInterfaceProfiles,
    "COMPARTMENT_ID",
};

/// The classes of layers; none where nothing is known of conditions' weight.
constexpr std::span<const FieldClass> ClassesOf(Catalog::LayerFamily family) {
  switch (family) {
    using enum Catalog::LayerFamily;
    case AleAuthConnect:
      return kAuthConnect;
    case AleAuthRecvAccept:
      return kAuthRecvAccept;
    case AleAuthListen:
      return kAuthListen;
    case AleResourceAssignment:
      return kResourceAssignment;
    case AleFlowEstablished:
      return kFlowEstablished;
    case AleConnectRedirect:
      return kConnectRedirect;
    case AleEndpointClosure:
      return kEndpointClosure;
    case OutboundIcmpError:
      return kOutboundIcmpError;
    case InboundIcmpError:
      return kInboundIcmpError;
    case InboundTransport:
      return kInboundTransport;
    case IpForward:
      return kIpForward;
    default:
      return {};
  }
}

}  // namespace EngineEmulator
