#include "watch/RememberedEvents.h"

#include <algorithm>

#include "watch/Subscription.h"

namespace Watch {
namespace {

constexpr UINT32 kPageSize = 256;

/// A function that enumerates one version of events, with its name for errors.
template <class Native>
struct Enumerator {
  DWORD(WINAPI* enumerate)(HANDLE, HANDLE, UINT32, Native***, UINT32*);
  const char* name;
};

template <class Native>
std::vector<NetEvent> ReadAll(const EventCalls& engine, HANDLE session,
                              const Enumerator<Native>& enumerator) {
  HANDLE opened = nullptr;
  if (const DWORD result = engine.FwpmNetEventCreateEnumHandle0(session, nullptr, &opened);
      result != ERROR_SUCCESS) {
    throw WatchError(result, "FwpmNetEventCreateEnumHandle0");
  }
  const auto close = [&](HANDLE handle) { engine.FwpmNetEventDestroyEnumHandle0(session, handle); };
  const std::unique_ptr<void, decltype(close)> enumeration(opened, close);
  const auto free = [&](void* memory) { engine.FwpmFreeMemory0(&memory); };
  std::vector<NetEvent> events;
  for (UINT32 count = kPageSize; count == kPageSize;) {
    Native** found = nullptr;
    const DWORD result = enumerator.enumerate(session, enumeration.get(), kPageSize, &found, &count);
    if (result != ERROR_SUCCESS) {
      throw WatchError(result, enumerator.name);
    }
    const std::unique_ptr<Native*, decltype(free)> page(found, free);
    std::for_each_n(page.get(), count, [&](const Native* event) { events.push_back(Decode(*event)); });
  }
  return events;
}

/// By the newest function that there is.
std::vector<NetEvent> ReadAll(const EventCalls& engine, HANDLE session) {
  if (engine.FwpmNetEventEnum3 != nullptr) {
    return ReadAll<FWPM_NET_EVENT3>(engine, session, {engine.FwpmNetEventEnum3, "FwpmNetEventEnum3"});
  }
  if (engine.FwpmNetEventEnum2 != nullptr) {
    return ReadAll<FWPM_NET_EVENT2>(engine, session, {engine.FwpmNetEventEnum2, "FwpmNetEventEnum2"});
  }
  if (engine.FwpmNetEventEnum1 != nullptr) {
    return ReadAll<FWPM_NET_EVENT1>(engine, session, {engine.FwpmNetEventEnum1, "FwpmNetEventEnum1"});
  }
  throw WatchError(ERROR_CALL_NOT_IMPLEMENTED, "FwpmNetEventEnum1");
}

}  // namespace

std::vector<NetEvent> ReadRememberedEvents(const EventCalls& engine) {
  const Session session = OpenSession(engine);
  std::vector<NetEvent> events = ReadAll(engine, session.get());
  std::ranges::stable_sort(events, {}, &NetEvent::time);
  return events;
}

}  // namespace Watch
