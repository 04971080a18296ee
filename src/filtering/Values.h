/**
 * @file
 * The values that conditions compare with, other than AppId.h. The class says which field of the
 * traffic is meant. Numbers are in host byte order. A class marked "base" can be put into a condition
 * but is refused when the filter is made native.
 */
#pragma once

#include <WfpPlatform.h>

#include <cstdint>
#include <string>

#include "filtering/AppId.h"
#include "filtering/BaseValue.h"
#include "filtering/IpV4Address.h"
#include "filtering/IpV6Address.h"

namespace WfpFirewall::Filtering::Values {

/// Base: a network interface by its NET_LUID, as a 64-bit number.
class WFPFIREWALL_API InterfaceLuid : public Value<std::uint64_t> {
 public:
  explicit InterfaceLuid(std::uint64_t luid) : Value(luid) {}
};

/// The interface that a packet came in on.
class WFPFIREWALL_API ArrivalInterfaceLuid : public InterfaceLuid {
 public:
  using InterfaceLuid::InterfaceLuid;
};

/// The interface that owns the local address.
class WFPFIREWALL_API LocalInterfaceLuid : public InterfaceLuid {
 public:
  using InterfaceLuid::InterfaceLuid;
};

class WFPFIREWALL_API InterfaceIndex : public Value<int> {
 public:
  explicit InterfaceIndex(int index) : Value(index) {}
};

class WFPFIREWALL_API SubInterfaceIndex : public InterfaceIndex {
 public:
  using InterfaceIndex::InterfaceIndex;
};

/// An IP protocol number; its low byte reaches the engine.
class WFPFIREWALL_API Protocol : public Value<int> {
 public:
  explicit Protocol(IPPROTO protocol) : Value(static_cast<int>(protocol)) {}
};

/// The kind of the local address (unicast, multicast, ...); its low byte reaches the engine.
class WFPFIREWALL_API IpLocalAddressType : public Value<int> {
 public:
  explicit IpLocalAddressType(NL_ADDRESS_TYPE type) : Value(static_cast<int>(type)) {}
};

/// The whole word of FWP_CONDITION_FLAG_* bits.
class WFPFIREWALL_API Flag : public Value<int> {
 public:
  explicit Flag(int flags) : Value(flags) {}
};

/// FWP_CONDITION_FLAG_IS_LOOPBACK alone.
class WFPFIREWALL_API LoopbackFlag : public Flag {
 public:
  LoopbackFlag() : Flag(FWP_CONDITION_FLAG_IS_LOOPBACK) {}
};

/// Base: a single IPv4 address.
class WFPFIREWALL_API IpAddressV4 : public Value<std::uint32_t> {
 public:
  explicit IpAddressV4(std::uint32_t hostOrder) : Value(hostOrder) {}
  explicit IpAddressV4(std::string text);
  explicit IpAddressV4(const IpV4Address& address);
};

class WFPFIREWALL_API LocalIpAddressV4 : public IpAddressV4 {
 public:
  using IpAddressV4::IpAddressV4;
};

class WFPFIREWALL_API RemoteIpAddressV4 : public IpAddressV4 {
 public:
  using IpAddressV4::IpAddressV4;
};

class WFPFIREWALL_API DestinationIpAddressV4 : public IpAddressV4 {
 public:
  using IpAddressV4::IpAddressV4;
};

class WFPFIREWALL_API SourceIpAddressV4 : public IpAddressV4 {
 public:
  using IpAddressV4::IpAddressV4;
};

/// Base: an IPv4 network. The mask is a dotted quad such as 255.255.255.0, never a prefix length.
class WFPFIREWALL_API IpAddressAndMaskV4 : public Value<FWP_V4_ADDR_AND_MASK> {
 public:
  explicit IpAddressAndMaskV4(const FWP_V4_ADDR_AND_MASK& network) : Value(network) {}
  IpAddressAndMaskV4(std::string address, std::string mask);
  IpAddressAndMaskV4(const IpV4Address& address, const IpV4Address& mask);
};

class WFPFIREWALL_API LocalIpAddressAndMaskV4 : public IpAddressAndMaskV4 {
 public:
  explicit LocalIpAddressAndMaskV4(FWP_V4_ADDR_AND_MASK network) : IpAddressAndMaskV4(network) {}
  LocalIpAddressAndMaskV4(const std::string& address, const std::string& mask)
      : IpAddressAndMaskV4(address, mask) {}
  LocalIpAddressAndMaskV4(const IpV4Address& address, const IpV4Address& mask)
      : IpAddressAndMaskV4(address, mask) {}
};

class WFPFIREWALL_API RemoteIpAddressAndMaskV4 : public IpAddressAndMaskV4 {
 public:
  explicit RemoteIpAddressAndMaskV4(FWP_V4_ADDR_AND_MASK network) : IpAddressAndMaskV4(network) {}
  RemoteIpAddressAndMaskV4(const std::string& address, const std::string& mask)
      : IpAddressAndMaskV4(address, mask) {}
  RemoteIpAddressAndMaskV4(const IpV4Address& address, const IpV4Address& mask)
      : IpAddressAndMaskV4(address, mask) {}
};

class WFPFIREWALL_API DestinationIpAddressAndMaskV4 : public IpAddressAndMaskV4 {
 public:
  explicit DestinationIpAddressAndMaskV4(FWP_V4_ADDR_AND_MASK network) : IpAddressAndMaskV4(network) {}
  DestinationIpAddressAndMaskV4(const std::string& address, const std::string& mask)
      : IpAddressAndMaskV4(address, mask) {}
  DestinationIpAddressAndMaskV4(const IpV4Address& address, const IpV4Address& mask)
      : IpAddressAndMaskV4(address, mask) {}
};

class WFPFIREWALL_API SourceIpAddressAndMaskV4 : public IpAddressAndMaskV4 {
 public:
  explicit SourceIpAddressAndMaskV4(FWP_V4_ADDR_AND_MASK network) : IpAddressAndMaskV4(network) {}
  SourceIpAddressAndMaskV4(const std::string& address, const std::string& mask)
      : IpAddressAndMaskV4(address, mask) {}
  SourceIpAddressAndMaskV4(const IpV4Address& address, const IpV4Address& mask)
      : IpAddressAndMaskV4(address, mask) {}
};

/// Base: an IPv6 network. The prefix length's low byte is kept, unchecked. The constructors that take
/// an address throw FirewallException "Failed to convert ipv6 address" when its text does not parse.
class WFPFIREWALL_API IpAddressAndMaskV6 : public Value<FWP_V6_ADDR_AND_MASK> {
 public:
  explicit IpAddressAndMaskV6(FWP_V6_ADDR_AND_MASK network) : Value(network) {}
  IpAddressAndMaskV6(const IpV6Address& address, int prefixLength);
  IpAddressAndMaskV6(std::string address, int prefixLength);
};

class WFPFIREWALL_API RemoteIpAddressAndMaskV6 : public IpAddressAndMaskV6 {
 public:
  explicit RemoteIpAddressAndMaskV6(FWP_V6_ADDR_AND_MASK network) : IpAddressAndMaskV6(network) {}
  RemoteIpAddressAndMaskV6(const IpV6Address& address, int prefixLength)
      : IpAddressAndMaskV6(address, prefixLength) {}
  RemoteIpAddressAndMaskV6(const std::string& address, int prefixLength)
      : IpAddressAndMaskV6(address, prefixLength) {}
};

/// Of the IPv6 networks only the remote one can reach the engine: this class and the next two are refused
/// when the filter is made native.
class WFPFIREWALL_API LocalIpAddressAndMaskV6 : public IpAddressAndMaskV6 {
 public:
  explicit LocalIpAddressAndMaskV6(FWP_V6_ADDR_AND_MASK network) : IpAddressAndMaskV6(network) {}
  LocalIpAddressAndMaskV6(const IpV6Address& address, int prefixLength)
      : IpAddressAndMaskV6(address, prefixLength) {}
  LocalIpAddressAndMaskV6(const std::string& address, int prefixLength)
      : IpAddressAndMaskV6(address, prefixLength) {}
};

class WFPFIREWALL_API DestinationIpAddressAndMaskV6 : public IpAddressAndMaskV6 {
 public:
  explicit DestinationIpAddressAndMaskV6(FWP_V6_ADDR_AND_MASK network) : IpAddressAndMaskV6(network) {}
  DestinationIpAddressAndMaskV6(const IpV6Address& address, int prefixLength)
      : IpAddressAndMaskV6(address, prefixLength) {}
  DestinationIpAddressAndMaskV6(const std::string& address, int prefixLength)
      : IpAddressAndMaskV6(address, prefixLength) {}
};

class WFPFIREWALL_API SourceIpAddressAndMaskV6 : public IpAddressAndMaskV6 {
 public:
  explicit SourceIpAddressAndMaskV6(FWP_V6_ADDR_AND_MASK network) : IpAddressAndMaskV6(network) {}
  SourceIpAddressAndMaskV6(const IpV6Address& address, int prefixLength)
      : IpAddressAndMaskV6(address, prefixLength) {}
  SourceIpAddressAndMaskV6(const std::string& address, int prefixLength)
      : IpAddressAndMaskV6(address, prefixLength) {}
};

/// Base: a TCP or UDP port. A range of ports is refused when the filter is made native ("Not supported value
/// type in range."): the ends of a range are byte blobs or numbers of 8, 32 or 64 bits, and a port has 16.
/// Two conditions, "at least" and "at most", do not make a range of ports either: on one field they are
/// alternatives.
class WFPFIREWALL_API Port : public Value<std::uint16_t> {
 public:
  explicit Port(std::uint16_t port) : Value(port) {}
};

class WFPFIREWALL_API LocalPort : public Port {
 public:
  using Port::Port;
};

class WFPFIREWALL_API RemotePort : public Port {
 public:
  using Port::Port;
};

}  // namespace WfpFirewall::Filtering::Values
