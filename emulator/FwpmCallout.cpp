// Callouts are stored; nothing ever calls them.
#include "emulator/ObjectCalls.h"
#include "emulator/SecurityCalls.h"
#include "emulator/SubscriptionCalls.h"

using namespace EngineEmulator;

extern "C" {

DWORD WINAPI FwpmCalloutAdd0(HANDLE engineHandle, const FWPM_CALLOUT0* callout, PSECURITY_DESCRIPTOR sd,
                             UINT32* id) {
  UINT64 number = 0;
  const DWORD result = AnswerAdd("FwpmCalloutAdd0", engineHandle, callout, sd, &number);
  if (id != nullptr && result == ERROR_SUCCESS) {
    *id = static_cast<UINT32>(number);
  }
  return result;
}

DWORD WINAPI FwpmCalloutDeleteByKey0(HANDLE engineHandle, const GUID* key) {
  return AnswerDeleteByKey<FWPM_CALLOUT0>("FwpmCalloutDeleteByKey0", engineHandle, key);
}

DWORD WINAPI FwpmCalloutGetByKey0(HANDLE engineHandle, const GUID* key, FWPM_CALLOUT0** callout) {
  return AnswerGetByKey("FwpmCalloutGetByKey0", engineHandle, key, callout);
}

DWORD WINAPI FwpmCalloutDeleteById0(HANDLE engineHandle, UINT32 id) {
  return AnswerDeleteById<FWPM_CALLOUT0>("FwpmCalloutDeleteById0", engineHandle, id);
}

DWORD WINAPI FwpmCalloutGetById0(HANDLE engineHandle, UINT32 id, FWPM_CALLOUT0** callout) {
  return AnswerGetById("FwpmCalloutGetById0", engineHandle, id, callout);
}

DWORD WINAPI FwpmCalloutCreateEnumHandle0(HANDLE engineHandle,
                                          const FWPM_CALLOUT_ENUM_TEMPLATE0* enumTemplate,
                                          HANDLE* enumHandle) {
  return AnswerCreateEnumHandle<FWPM_CALLOUT0>("FwpmCalloutCreateEnumHandle0", engineHandle, enumTemplate,
                                               enumHandle);
}

DWORD WINAPI FwpmCalloutEnum0(HANDLE engineHandle, HANDLE enumHandle, UINT32 numEntriesRequested,
                              FWPM_CALLOUT0*** entries, UINT32* numEntriesReturned) {
  return AnswerEnum("FwpmCalloutEnum0", engineHandle, enumHandle, numEntriesRequested, entries,
                    numEntriesReturned);
}

DWORD WINAPI FwpmCalloutDestroyEnumHandle0(HANDLE engineHandle, HANDLE enumHandle) {
  return AnswerDestroyEnumHandle<FWPM_CALLOUT0>("FwpmCalloutDestroyEnumHandle0", engineHandle, enumHandle);
}

DWORD WINAPI FwpmCalloutGetSecurityInfoByKey0(HANDLE engineHandle, const GUID* key,
                                              SECURITY_INFORMATION securityInfo, PSID* sidOwner,
                                              PSID* sidGroup, PACL* dacl, PACL* sacl,
                                              PSECURITY_DESCRIPTOR* securityDescriptor) {
  return AnswerGetSecurityByKey<FWPM_CALLOUT0>("FwpmCalloutGetSecurityInfoByKey0", engineHandle, key,
                                               securityInfo,
                                               {sidOwner, sidGroup, dacl, sacl, securityDescriptor});
}

DWORD WINAPI FwpmCalloutSetSecurityInfoByKey0(HANDLE engineHandle, const GUID* key,
                                              SECURITY_INFORMATION securityInfo, const SID* sidOwner,
                                              const SID* sidGroup, const ACL* dacl, const ACL* sacl) {
  return AnswerSetSecurityByKey<FWPM_CALLOUT0>("FwpmCalloutSetSecurityInfoByKey0", engineHandle, key,
                                               securityInfo, {sidOwner, sidGroup, dacl, sacl});
}

DWORD WINAPI FwpmCalloutSubscribeChanges0(HANDLE engineHandle, const FWPM_CALLOUT_SUBSCRIPTION0* subscription,
                                          FWPM_CALLOUT_CHANGE_CALLBACK0 callback, void* context,
                                          HANDLE* changeHandle) {
  return AnswerSubscribe<FWPM_CALLOUT0>("FwpmCalloutSubscribeChanges0", engineHandle, subscription, callback,
                                        context, changeHandle);
}

DWORD WINAPI FwpmCalloutUnsubscribeChanges0(HANDLE engineHandle, HANDLE changeHandle) {
  return AnswerUnsubscribe<FWPM_CALLOUT0>("FwpmCalloutUnsubscribeChanges0", engineHandle, changeHandle);
}

DWORD WINAPI FwpmCalloutSubscriptionsGet0(HANDLE engineHandle, FWPM_CALLOUT_SUBSCRIPTION0*** entries,
                                          UINT32* numEntries) {
  return AnswerSubscriptionsGet<FWPM_CALLOUT0>("FwpmCalloutSubscriptionsGet0", engineHandle, entries,
                                               numEntries);
}

}  // extern "C"
