// The emulator has no traffic, so there are never any net events, and subscribers get none.
#include "emulator/EntryPoint.h"
#include "emulator/SecurityCalls.h"

using namespace EngineEmulator;

namespace {

constexpr const char* kEventsSecurityName = "net events";

template <class Event>
DWORD AnswerNoEvents(const char* function, HANDLE engineHandle, HANDLE enumHandle, Event*** entries,
                     UINT32* returned) {
  return AnswerSession(function, engineHandle, "", [&](Engine&, Session& session) -> DWORD {
    if (entries == nullptr || returned == nullptr) {
      return kNullPointer;
    }
    if (!session.netEventEnumerations.contains(enumHandle)) {
      return static_cast<DWORD>(FWP_E_NOT_FOUND);
    }
    *entries = nullptr;
    *returned = 0;
    return ERROR_SUCCESS;
  });
}

}  // namespace

extern "C" {

DWORD WINAPI FwpmNetEventCreateEnumHandle0(HANDLE engineHandle, const FWPM_NET_EVENT_ENUM_TEMPLATE0*,
                                           HANDLE* enumHandle) {
  return AnswerSession("FwpmNetEventCreateEnumHandle0", engineHandle, "",
                       [&](Engine& engine, Session& session) {
                         if (enumHandle == nullptr) {
                           return kNullPointer;
                         }
                         *enumHandle = engine.NewHandle();
                         session.netEventEnumerations.insert(*enumHandle);
                         return DWORD{ERROR_SUCCESS};
                       });
}

DWORD WINAPI FwpmNetEventEnum0(HANDLE engineHandle, HANDLE enumHandle, UINT32, FWPM_NET_EVENT0*** entries,
                               UINT32* numEntriesReturned) {
  return AnswerNoEvents("FwpmNetEventEnum0", engineHandle, enumHandle, entries, numEntriesReturned);
}

DWORD WINAPI FwpmNetEventEnum1(HANDLE engineHandle, HANDLE enumHandle, UINT32, FWPM_NET_EVENT1*** entries,
                               UINT32* numEntriesReturned) {
  return AnswerNoEvents("FwpmNetEventEnum1", engineHandle, enumHandle, entries, numEntriesReturned);
}

DWORD WINAPI FwpmNetEventDestroyEnumHandle0(HANDLE engineHandle, HANDLE enumHandle) {
  return AnswerSession("FwpmNetEventDestroyEnumHandle0", engineHandle, "", [&](Engine&, Session& session) {
    const bool existed = session.netEventEnumerations.erase(enumHandle) != 0;
    return existed ? ERROR_SUCCESS : static_cast<DWORD>(FWP_E_NOT_FOUND);
  });
}

DWORD WINAPI FwpmNetEventSubscribe0(HANDLE engineHandle, const FWPM_NET_EVENT_SUBSCRIPTION0* subscription,
                                    FWPM_NET_EVENT_CALLBACK0 callback, void*, HANDLE* eventsHandle) {
  const auto subscribe = [&](Engine& engine, Session& session) -> DWORD {
    if (subscription == nullptr || callback == nullptr || eventsHandle == nullptr) {
      return kNullPointer;
    }
    FWPM_NET_EVENT_SUBSCRIPTION0 record = *subscription;
    record.sessionKey = session.Key();
    *eventsHandle = engine.NewHandle();
    session.netEventSubscriptions.emplace(
        *eventsHandle, MakeBlock([&](Packer& packer) { return PackRecord(packer, record); }));
    return ERROR_SUCCESS;
  };
  return AnswerOutsideTransaction("FwpmNetEventSubscribe0", engineHandle, "", subscribe);
}

DWORD WINAPI FwpmNetEventUnsubscribe0(HANDLE engineHandle, HANDLE eventsHandle) {
  return AnswerOutsideTransaction(
      "FwpmNetEventUnsubscribe0", engineHandle, "", [&](Engine&, Session& session) {
        const bool existed = session.netEventSubscriptions.erase(eventsHandle) != 0;
        return existed ? ERROR_SUCCESS : static_cast<DWORD>(FWP_E_NOT_FOUND);
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
      for (const auto& [eventsHandle, record] : session.netEventSubscriptions) {
        records.push_back(*record.root);
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
