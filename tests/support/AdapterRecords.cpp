#include "support/AdapterRecords.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

namespace FakePlatform {
namespace {

std::size_t Aligned(std::size_t size) { return (size + 7) / 8 * 8; }

std::size_t SizeOf(const std::wstring& text) { return Aligned((text.size() + 1) * sizeof(wchar_t)); }

std::size_t SizeOf(const Adapter& adapter) {
  std::size_t size =
      sizeof(IP_ADAPTER_ADDRESSES) + SizeOf(adapter.friendlyName) + SizeOf(adapter.description);
  for (const Bytes& gateway : adapter.gateways) {
    size += sizeof(IP_ADAPTER_GATEWAY_ADDRESS) + Aligned(gateway.size());
  }
  return size;
}

/// Writes records into a caller's buffer, one behind the other. The buffer must be zeroed.
class Layout {
 public:
  explicit Layout(void* buffer) : next_(static_cast<std::uint8_t*>(buffer)) {}

  IP_ADAPTER_ADDRESSES* Put(const Adapter& adapter) {
    auto* record = Take<IP_ADAPTER_ADDRESSES>(sizeof(IP_ADAPTER_ADDRESSES));
    record->Length = sizeof(IP_ADAPTER_ADDRESSES);
    record->FriendlyName = Put(adapter.friendlyName);
    record->Description = Put(adapter.description);
    record->Luid.Value = adapter.luid;
    record->IfType = adapter.ifType;
    auto** link = &record->FirstGatewayAddress;
    for (const Bytes& gateway : adapter.gateways) {
      *link = Put(gateway);
      link = &(*link)->Next;
    }
    return record;
  }

 private:
  IP_ADAPTER_GATEWAY_ADDRESS* Put(const Bytes& gateway) {
    auto* record = Take<IP_ADAPTER_GATEWAY_ADDRESS>(sizeof(IP_ADAPTER_GATEWAY_ADDRESS));
    record->Address.iSockaddrLength = static_cast<int>(gateway.size());
    record->Address.lpSockaddr = Take<SOCKADDR>(Aligned(gateway.size()));
    std::memcpy(record->Address.lpSockaddr, gateway.data(), gateway.size());
    return record;
  }

  wchar_t* Put(const std::wstring& text) {
    auto* copy = Take<wchar_t>(SizeOf(text));
    std::copy(text.begin(), text.end(), copy);
    return copy;
  }

  template <class Record>
  Record* Take(std::size_t size) {
    return reinterpret_cast<Record*>(std::exchange(next_, next_ + size));
  }

  std::uint8_t* next_;
};

}  // namespace

std::size_t SizeOfRecords(const std::vector<Adapter>& adapters) {
  std::size_t size = 0;
  for (const Adapter& adapter : adapters) {
    size += SizeOf(adapter);
  }
  return size;
}

IP_ADAPTER_ADDRESSES* WriteRecords(const std::vector<Adapter>& adapters, void* buffer) {
  Layout layout(buffer);
  IP_ADAPTER_ADDRESSES* first = nullptr;
  auto** link = &first;
  for (const Adapter& adapter : adapters) {
    *link = layout.Put(adapter);
    link = &(*link)->Next;
  }
  return first;
}

}  // namespace FakePlatform
