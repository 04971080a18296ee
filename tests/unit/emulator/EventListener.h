/**
 * @file
 * What subscribers to net events hear.
 */
#pragma once

#include <NetEvents.h>

#include <string>

#include "CallbackLog.h"
#include "EngineClient.h"

/// "drop 7": the type of an event, and the id of its filter.
template <class Native>
std::string EventText(const Native& event) {
  const auto type = static_cast<UINT32>(event.type);
  if (type == FWPM_NET_EVENT_TYPE_CLASSIFY_DROP) {
    return "drop " + std::to_string(event.classifyDrop->filterId);
  }
  if constexpr (requires { event.classifyAllow; }) {
    if (type == FWPM_NET_EVENT_TYPE_CLASSIFY_ALLOW) {
      return "allow " + std::to_string(event.classifyAllow->filterId);
    }
    if (type == FWPM_NET_EVENT_TYPE_CAPABILITY_DROP) {
      return "capability drop " + std::to_string(event.capabilityDrop->filterId);
    }
    if (type == FWPM_NET_EVENT_TYPE_CAPABILITY_ALLOW) {
      return "capability allow " + std::to_string(event.capabilityAllow->filterId);
    }
  }
  return "type " + std::to_string(type);
}

/// Collects the events that a callback gets.
class EventListener : public CallbackLog {
 public:
  template <class Native>
  static void CALLBACK Hear(void* context, const Native* event) {
    static_cast<EventListener*>(context)->Note(EventText(*event));
  }
};

/// A subscription of version 2, which knows all events; null if it is refused.
inline HANDLE SubscribeEvents(HANDLE session, EventListener& listener,
                              FWPM_NET_EVENT_ENUM_TEMPLATE0* criteria = nullptr) {
  const FWPM_NET_EVENT_SUBSCRIPTION0 wanted{criteria, 0, {}};
  HANDLE handle = nullptr;
  EXPECT_EQ(
      FwpmNetEventSubscribe2(session, &wanted, EventListener::Hear<FWPM_NET_EVENT3>, &listener, &handle),
      kSuccess);
  return handle;
}

inline DWORD SetOption(HANDLE session, FWPM_ENGINE_OPTION option, UINT32 number) {
  FWP_VALUE0 value{};
  value.type = FWP_UINT32;
  value.uint32 = number;
  return FwpmEngineSetOption0(session, option, &value);
}

inline constexpr UINT32 kAllKeywords = 0x1F;

/// Lets the engine record what it does not by default.
inline void RecordEverything(HANDLE session) {
  EXPECT_EQ(SetOption(session, FWPM_ENGINE_NET_EVENT_MATCH_ANY_KEYWORDS, kAllKeywords), kSuccess);
}
