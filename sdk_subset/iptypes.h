/**
 * @file
 * The network adapters of the machine.
 */
#pragma once

#include <ifdef.h>
#include <winsock2.h>

#define GAA_FLAG_SKIP_ANYCAST 0x02
#define GAA_FLAG_SKIP_MULTICAST 0x04
#define GAA_FLAG_SKIP_DNS_SERVER 0x08
#define GAA_FLAG_INCLUDE_GATEWAYS 0x80

typedef struct IP_ADAPTER_GATEWAY_ADDRESS_ {
  ULONG Length;
  DWORD Reserved;
  struct IP_ADAPTER_GATEWAY_ADDRESS_* Next;
  SOCKET_ADDRESS Address;
} IP_ADAPTER_GATEWAY_ADDRESS;

/// Has all fields, because callers use its size for buffers. Lists that the sources do not read are void
/// pointers.
typedef struct IP_ADAPTER_ADDRESSES_ {
  ULONG Length;
  ULONG IfIndex;
  struct IP_ADAPTER_ADDRESSES_* Next;
  PSTR AdapterName;
  PVOID FirstUnicastAddress;
  PVOID FirstAnycastAddress;
  PVOID FirstMulticastAddress;
  PVOID FirstDnsServerAddress;
  PWSTR DnsSuffix;
  PWSTR Description;
  PWSTR FriendlyName;
  BYTE PhysicalAddress[8];
  ULONG PhysicalAddressLength;
  ULONG Flags;
  ULONG Mtu;
  ULONG IfType;
  INT OperStatus;
  ULONG Ipv6IfIndex;
  ULONG ZoneIndices[16];
  PVOID FirstPrefix;
  ULONG64 TransmitLinkSpeed;
  ULONG64 ReceiveLinkSpeed;
  PVOID FirstWinsServerAddress;
  IP_ADAPTER_GATEWAY_ADDRESS* FirstGatewayAddress;
  ULONG Ipv4Metric;
  ULONG Ipv6Metric;
  IF_LUID Luid;
  SOCKET_ADDRESS Dhcpv4Server;
  ULONG CompartmentId;
  GUID NetworkGuid;
  INT ConnectionType;
  INT TunnelType;
  SOCKET_ADDRESS Dhcpv6Server;
  BYTE Dhcpv6ClientDuid[130];
  ULONG Dhcpv6ClientDuidLength;
  ULONG Dhcpv6Iaid;
  PVOID FirstDnsSuffix;
} IP_ADAPTER_ADDRESSES, *PIP_ADAPTER_ADDRESSES;
