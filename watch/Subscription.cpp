#include "watch/Subscription.h"

#include "catalog/Names.h"

namespace Watch {
namespace {

/// Runs on a thread of the engine's, which must get no exception.
template <class Event>
void CALLBACK AddToQueue(void* queue, const Event* event) noexcept {
  auto& events = *static_cast<EventQueue*>(queue);
  if (event == nullptr) {
    return;
  }
  try {
    events.Add(Decode(*event));
  } catch (...) {
    events.CountLost();
  }
}

/// Subscribes by the newest function that there is.
HANDLE Subscribe(const EventCalls& engine, HANDLE session, EventQueue& queue) {
  const FWPM_NET_EVENT_SUBSCRIPTION0 toAll{};
  HANDLE events = nullptr;
  const auto subscribe = [&](auto function, auto callback, const char* name) {
    if (const DWORD result = function(session, &toAll, callback, &queue, &events); result != ERROR_SUCCESS) {
      throw WatchError(result, name);
    }
    return events;
  };
  if (engine.FwpmNetEventSubscribe2 != nullptr) {
    return subscribe(engine.FwpmNetEventSubscribe2, &AddToQueue<FWPM_NET_EVENT3>, "FwpmNetEventSubscribe2");
  }
  if (engine.FwpmNetEventSubscribe1 != nullptr) {
    return subscribe(engine.FwpmNetEventSubscribe1, &AddToQueue<FWPM_NET_EVENT2>, "FwpmNetEventSubscribe1");
  }
  if (engine.FwpmNetEventSubscribe0 != nullptr) {
    return subscribe(engine.FwpmNetEventSubscribe0, &AddToQueue<FWPM_NET_EVENT1>, "FwpmNetEventSubscribe0");
  }
  throw WatchError(ERROR_CALL_NOT_IMPLEMENTED, "FwpmNetEventSubscribe0");
}

}  // namespace

WatchError::WatchError(DWORD code, const std::string& function)
    : std::runtime_error(function + " failed: " + Catalog::ErrorName(code)), code_(code) {}

Session OpenSession(const EventCalls& engine) {
  HANDLE session = nullptr;
  const DWORD result = engine.FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &session);
  if (result != ERROR_SUCCESS) {
    throw WatchError(result, "FwpmEngineOpen0");
  }
  return {session, {engine.FwpmEngineClose0}};
}

Subscription::Subscription(const EventCalls& engine, EventQueue& queue)
    : engine_(engine), session_(OpenSession(engine)), events_(Subscribe(engine, session_.get(), queue)) {}

// If the engine does not answer any more, the subscription has ended without this call.
Subscription::~Subscription() { engine_.FwpmNetEventUnsubscribe0(session_.get(), events_); }

std::optional<UINT32> Subscription::ReadOption(FWPM_ENGINE_OPTION option) const {
  FWP_VALUE0* read = nullptr;
  const DWORD result = engine_.FwpmEngineGetOption0(session_.get(), option, &read);
  if (result == ERROR_ACCESS_DENIED) {
    return std::nullopt;
  }
  if (result != ERROR_SUCCESS) {
    throw WatchError(result, "FwpmEngineGetOption0");
  }
  const auto free = [this](void* memory) { engine_.FwpmFreeMemory0(&memory); };
  const std::unique_ptr<FWP_VALUE0, decltype(free)> value(read, free);
  return value != nullptr && value->type == FWP_UINT32 ? std::optional(value->uint32) : std::nullopt;
}

}  // namespace Watch
