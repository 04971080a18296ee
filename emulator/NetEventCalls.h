/**
 * @file
 * The calls about net events that clients have for each version of their records.
 */
#pragma once

#include "emulator/EntryPoint.h"
#include "emulator/NetEventSelection.h"

namespace EngineEmulator {

/// The subscription whose callback the calling thread is in; null for none.
HANDLE& SubscriptionOfThisThread();

template <class Native>
using NetEventCallback = void(CALLBACK*)(void* context, const Native* event);

/// Tells a client of an event, in memory that is there for the call only.
template <class Native>
void TellClient(HANDLE events, NetEventCallback<Native> callback, void* context, const NetEvent& event) {
  const auto block = MakeBlock([&](Packer& packer) { return PackVersion<Native>(packer, event.Record()); });
  SubscriptionOfThisThread() = events;
  callback(context, block.root);
  SubscriptionOfThisThread() = nullptr;
}

template <class Native>
DWORD AnswerSubscribeEvents(const char* function, HANDLE engineHandle,
                            const FWPM_NET_EVENT_SUBSCRIPTION0* wanted, NetEventCallback<Native> callback,
                            void* context, HANDLE* eventsHandle) {
  const auto subscribe = [&](Engine& engine, Session& session) -> DWORD {
    if (wanted == nullptr || callback == nullptr || eventsHandle == nullptr) {
      return kNullPointer;
    }
    const Switches& switches = engine.GetSwitches();
    const Refusal badFlags = wanted->flags != 0 && switches.RefusesUnknownFlags()
                                 ? Refusal(FWP_E_INVALID_FLAGS, "subscriptions to net events have no flags")
                                 : Refusal();
    if (const Refusal refusal = badFlags ? badFlags : CheckTemplate(wanted->enumTemplate, true, switches)) {
      engine.lastRefusal = refusal.Reason();
      return refusal.Code();
    }
    FWPM_NET_EVENT_SUBSCRIPTION0 record = *wanted;
    record.sessionKey = session.Key();
    const HANDLE events = engine.NewHandle();
    *eventsHandle = events;
    session.netEventSubscriptions.emplace(
        events, NetEventSubscription{MakeBlock([&](Packer& packer) { return PackRecord(packer, record); }),
                                     CanTell<Native>, [events, callback, context](const NetEvent& event) {
                                       TellClient<Native>(events, callback, context, event);
                                     }});
    return ERROR_SUCCESS;
  };
  return AnswerOutsideTransaction(function, engineHandle,
                                  wanted == nullptr ? "null" : Describe(wanted->enumTemplate), subscribe);
}

template <class Native>
DWORD AnswerEnumEvents(const char* function, HANDLE engineHandle, HANDLE enumHandle, UINT32 requested,
                       Native*** entries, UINT32* returned) {
  const auto enumerate = [&](Engine& engine, Session& session) -> DWORD {
    if (entries == nullptr || returned == nullptr) {
      return kNullPointer;
    }
    if (engine.options[FWPM_ENGINE_COLLECT_NET_EVENTS] == 0) {
      engine.lastRefusal = "the option COLLECT_NET_EVENTS is off";
      return static_cast<DWORD>(FWP_E_NET_EVENTS_DISABLED);
    }
    const auto found = session.netEventEnumerations.find(enumHandle);
    if (found == session.netEventEnumerations.end()) {
      return static_cast<DWORD>(FWP_E_NOT_FOUND);
    }
    const std::vector<NetEventPtr> page = found->second.Take<Native>(requested);
    const auto pack = [&](Packer& packer) {
      std::vector<Native*> records;
      records.reserve(page.size());
      for (const NetEventPtr& event : page) {
        records.push_back(PackVersion<Native>(packer, event->Record()));
      }
      return packer.Copy(records.data(), records.size());
    };
    *returned = static_cast<UINT32>(page.size());
    *entries = page.empty() ? nullptr : engine.memory.HandOut(function, MakeBlock(pack));
    return ERROR_SUCCESS;
  };
  return AnswerSession(function, engineHandle, std::to_string(requested), enumerate);
}

}  // namespace EngineEmulator
