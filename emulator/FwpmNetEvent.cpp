// Net events, which clients of the control interface raise.
#include "emulator/NetEventCalls.h"
#include "emulator/SecurityCalls.h"

using namespace EngineEmulator;

namespace {

constexpr const char* kEventsSecurityName = "net events";

}  // namespace

namespace EngineEmulator {

HANDLE& SubscriptionOfThisThread() {
  static thread_local HANDLE subscription = nullptr;
  return subscription;
}

}  // namespace EngineEmulator

extern "C" {

DWORD WINAPI FwpmNetEventCreateEnumHandle0(HANDLE engineHandle, const FWPM_NET_EVENT_ENUM_TEMPLATE0* criteria,
                                           HANDLE* enumHandle) {
  const auto create = [&](Engine& engine, Session& session) -> DWORD {
    if (enumHandle == nullptr) {
      return kNullPointer;
    }
    if (const Refusal refusal = CheckTemplate(criteria, false, engine.GetSwitches())) {
      engine.lastRefusal = refusal.Reason();
      return refusal.Code();
    }
    *enumHandle = engine.NewHandle();
    session.netEventEnumerations.emplace(*enumHandle, NetEventEnumeration{engine.netEvents.Select(criteria)});
    return ERROR_SUCCESS;
  };
  return AnswerOutsideTransaction("FwpmNetEventCreateEnumHandle0", engineHandle, Describe(criteria), create);
}

DWORD WINAPI FwpmNetEventEnum0(HANDLE engineHandle, HANDLE enumHandle, UINT32 numEntriesRequested,
                               FWPM_NET_EVENT0*** entries, UINT32* numEntriesReturned) {
  return AnswerEnumEvents("FwpmNetEventEnum0", engineHandle, enumHandle, numEntriesRequested, entries,
                          numEntriesReturned);
}

DWORD WINAPI FwpmNetEventEnum1(HANDLE engineHandle, HANDLE enumHandle, UINT32 numEntriesRequested,
                               FWPM_NET_EVENT1*** entries, UINT32* numEntriesReturned) {
  return AnswerEnumEvents("FwpmNetEventEnum1", engineHandle, enumHandle, numEntriesRequested, entries,
                          numEntriesReturned);
}

DWORD WINAPI FwpmNetEventEnum2(HANDLE engineHandle, HANDLE enumHandle, UINT32 numEntriesRequested,
                               FWPM_NET_EVENT2*** entries, UINT32* numEntriesReturned) {
  return AnswerEnumEvents("FwpmNetEventEnum2", engineHandle, enumHandle, numEntriesRequested, entries,
                          numEntriesReturned);
}

DWORD WINAPI FwpmNetEventEnum3(HANDLE engineHandle, HANDLE enumHandle, UINT32 numEntriesRequested,
                               FWPM_NET_EVENT3*** entries, UINT32* numEntriesReturned) {
  return AnswerEnumEvents("FwpmNetEventEnum3", engineHandle, enumHandle, numEntriesRequested, entries,
                          numEntriesReturned);
}

DWORD WINAPI FwpmNetEventDestroyEnumHandle0(HANDLE engineHandle, HANDLE enumHandle) {
  return AnswerSession("FwpmNetEventDestroyEnumHandle0", engineHandle, "", [&](Engine&, Session& session) {
    const bool existed = session.netEventEnumerations.erase(enumHandle) != 0;
    return existed ? ERROR_SUCCESS : static_cast<DWORD>(FWP_E_NOT_FOUND);
  });
}

DWORD WINAPI FwpmNetEventSubscribe0(HANDLE engineHandle, const FWPM_NET_EVENT_SUBSCRIPTION0* subscription,
                                    FWPM_NET_EVENT_CALLBACK0 callback, void* context, HANDLE* eventsHandle) {
  return AnswerSubscribeEvents<FWPM_NET_EVENT1>("FwpmNetEventSubscribe0", engineHandle, subscription,
                                                callback, context, eventsHandle);
}

DWORD WINAPI FwpmNetEventSubscribe1(HANDLE engineHandle, const FWPM_NET_EVENT_SUBSCRIPTION0* subscription,
                                    FWPM_NET_EVENT_CALLBACK1 callback, void* context, HANDLE* eventsHandle) {
  return AnswerSubscribeEvents<FWPM_NET_EVENT2>("FwpmNetEventSubscribe1", engineHandle, subscription,
                                                callback, context, eventsHandle);
}

DWORD WINAPI FwpmNetEventSubscribe2(HANDLE engineHandle, const FWPM_NET_EVENT_SUBSCRIPTION0* subscription,
                                    FWPM_NET_EVENT_CALLBACK2 callback, void* context, HANDLE* eventsHandle) {
  return AnswerSubscribeEvents<FWPM_NET_EVENT3>("FwpmNetEventSubscribe2", engineHandle, subscription,
                                                callback, context, eventsHandle);
}

DWORD WINAPI FwpmNetEventUnsubscribe0(HANDLE engineHandle, HANDLE eventsHandle) {
  // A client that does this on a live engine waits for itself for ever.
  const bool isInCallback = eventsHandle != nullptr && eventsHandle == SubscriptionOfThisThread();
  // Destroyed after the engine is unlocked, because a running callback may be waiting to use it.
  std::map<HANDLE, NetEventSubscription>::node_type ended;
  return AnswerOutsideTransaction("FwpmNetEventUnsubscribe0", engineHandle,
                                  isInCallback ? "in its callback" : "", [&](Engine&, Session& session) {
                                    ended = session.netEventSubscriptions.extract(eventsHandle);
                                    return ended.empty() ? static_cast<DWORD>(FWP_E_NOT_FOUND)
                                                         : ERROR_SUCCESS;
                                  });
}

DWORD WINAPI FwpmNetEventSubscriptionsGet0(HANDLE engineHandle, FWPM_NET_EVENT_SUBSCRIPTION0*** entries,
                                           UINT32* numEntries) {
  constexpr const char* kFunction = "FwpmNetEventSubscriptionsGet0";
  return AnswerSession(kFunction, engineHandle, "", [&](Engine& engine, Session&) -> DWORD {
    if (entries == nullptr || numEntries == nullptr) {
      return kNullPointer;
    }
    std::vector<FWPM_NET_EVENT_SUBSCRIPTION0> records;
    for (const auto& [handle, session] : engine.Sessions()) {
      for (const auto& [eventsHandle, subscription] : session.netEventSubscriptions) {
        records.push_back(*subscription.record.root);
      }
    }
    *numEntries = static_cast<UINT32>(records.size());
    *entries =
        records.empty() ? nullptr : engine.memory.HandOut(kFunction, MakeBlock([&](Packer& packer) {
                                                            return PackRecords<FWPM_NET_EVENT_SUBSCRIPTION0>(
                                                                packer, records);
                                                          }));
    return ERROR_SUCCESS;
  });
}

DWORD WINAPI FwpmNetEventsGetSecurityInfo0(HANDLE engineHandle, SECURITY_INFORMATION securityInfo,
                                           PSID* sidOwner, PSID* sidGroup, PACL* dacl, PACL* sacl,
                                           PSECURITY_DESCRIPTOR* securityDescriptor) {
  return AnswerGetSecurity("FwpmNetEventsGetSecurityInfo0", engineHandle, kEventsSecurityName, securityInfo,
                           {sidOwner, sidGroup, dacl, sacl, securityDescriptor});
}

DWORD WINAPI FwpmNetEventsSetSecurityInfo0(HANDLE engineHandle, SECURITY_INFORMATION securityInfo,
                                           const SID* sidOwner, const SID* sidGroup, const ACL* dacl,
                                           const ACL* sacl) {
  return AnswerSetSecurity("FwpmNetEventsSetSecurityInfo0", engineHandle, kEventsSecurityName, securityInfo,
                           {sidOwner, sidGroup, dacl, sacl});
}

}  // extern "C"
