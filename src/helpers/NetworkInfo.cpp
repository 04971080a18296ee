#include "helpers/NetworkInfo.h"

// clang-format off: iphlpapi.h needs winsock2.h before it.
#include <WfpPlatform.h>
#include <iphlpapi.h>
// clang-format on

#include <algorithm>
#include <cstring>
#include <iterator>
#include <optional>
#include <utility>

#include "helpers/NetworkInfoException.h"
#include "helpers/tarnwell/DeviceInfoSet.h"

namespace WfpFirewall::Helpers {
namespace {

constexpr ULONG kAdapterFlags =
    GAA_FLAG_SKIP_ANYCAST | GAA_FLAG_SKIP_MULTICAST | GAA_FLAG_SKIP_DNS_SERVER | GAA_FLAG_INCLUDE_GATEWAYS;
/// The size that the platform's documentation advises: one call is then enough as a rule.
constexpr ULONG kFirstBufferSize = 15 * 1024;
constexpr int kTries = 3;

/// A zeroed buffer of at least `size` bytes, aligned for the records.
std::vector<IP_ADAPTER_ADDRESSES> MakeBuffer(ULONG size) {
  return std::vector<IP_ADAPTER_ADDRESSES>(size / sizeof(IP_ADAPTER_ADDRESSES) + 1);
}

/// The head of the adapter chain is the first record; the chain lives as long as the buffer.
std::vector<IP_ADAPTER_ADDRESSES> ReadAdapters() {
  ULONG size = kFirstBufferSize;
  auto buffer = MakeBuffer(size);
  DWORD lastError = ERROR_SUCCESS;
  for (int attempt = 0; attempt < kTries; ++attempt) {
    ULONG neededSize = size;
    const ULONG result = GetAdaptersAddresses(AF_UNSPEC, kAdapterFlags, nullptr, buffer.data(), &neededSize);
    if (result == NO_ERROR) {
      return buffer;
    }
    lastError = GetLastError();
    if (result == ERROR_BUFFER_OVERFLOW) {
      size = neededSize;
      buffer = MakeBuffer(size);
    }
  }
  throw NetworkInfoException("Failed to get interfaces. ", static_cast<int>(lastError));
}

template <class SocketAddress>
std::optional<SocketAddress> ReadSocketAddress(const SOCKET_ADDRESS& address, ADDRESS_FAMILY family) {
  SocketAddress result{};
  if (address.iSockaddrLength < static_cast<INT>(sizeof(result)) || address.lpSockaddr->sa_family != family) {
    return std::nullopt;
  }
  std::memcpy(&result, address.lpSockaddr, sizeof(result));
  return result;
}

void OfferGateways(const IP_ADAPTER_ADDRESSES& adapter, NetworkInterface& networkInterface) {
  for (const auto* gateway = adapter.FirstGatewayAddress; gateway != nullptr; gateway = gateway->Next) {
    if (const auto ipv4 = ReadSocketAddress<sockaddr_in>(gateway->Address, AF_INET)) {
      // The number stays in network byte order. Nothing reads it: addresses are compared by their texts.
      networkInterface.OfferAddress(IpV4Address(static_cast<int>(ipv4->sin_addr.s_addr)));
    } else if (const auto ipv6 = ReadSocketAddress<sockaddr_in6>(gateway->Address, AF_INET6)) {
      networkInterface.OfferAddress(IpV6Address(ipv6->sin6_addr));
    }
  }
}

void AddDevices(std::vector<NetworkInterface>& interfaces) {
  Tarnwell::ForEachNetworkDevice([&interfaces](Tarnwell::NetworkDevice device) {
    interfaces.emplace_back(std::move(device.friendlyName), std::move(device.description),
                            std::vector<IpV4Address>{}, std::vector<IpV6Address>{}, device.luid);
  });
}

void AddAdapters(std::vector<NetworkInterface>& interfaces) {
  const auto buffer = ReadAdapters();
  for (const auto* adapter = buffer.data(); adapter != nullptr; adapter = adapter->Next) {
    if (adapter->IfType == IF_TYPE_SOFTWARE_LOOPBACK) {
      continue;
    }
    auto found = std::find_if(interfaces.begin(), interfaces.end(), [adapter](const NetworkInterface& known) {
      return known.GetLuid() == adapter->Luid.Value;
    });
    if (found == interfaces.end()) {
      found = interfaces.insert(
          found, NetworkInterface(adapter->FriendlyName, adapter->Description, {}, {}, adapter->Luid.Value));
    }
    OfferGateways(*adapter, *found);
  }
}

}  // namespace

std::vector<NetworkInterface> NetworkInfo::GetInterfaces() {
  std::vector<NetworkInterface> interfaces;
  try {
    AddDevices(interfaces);
  } catch (...) {
    // One odd device must not hide the adapters. The devices before it stay in the list.
  }
  try {
    AddAdapters(interfaces);
  } catch (...) {
    if (interfaces.empty()) {
      throw;
    }
  }
  return interfaces;
}

std::vector<NetworkInterface> NetworkInfo::Filter(
    const std::vector<NetworkInterface>& interfaces,
    const std::function<bool(const NetworkInterface&)>& predicate) {
  if (!predicate) {
    throw std::bad_function_call();
  }
  std::vector<NetworkInterface> matching;
  std::copy_if(interfaces.begin(), interfaces.end(), std::back_inserter(matching), predicate);
  return matching;
}

}  // namespace WfpFirewall::Helpers
