#include "emulator/ObjectCalls.h"
#include "emulator/SecurityCalls.h"
#include "emulator/SubscriptionCalls.h"

using namespace EngineEmulator;

extern "C" {

DWORD WINAPI FwpmFilterAdd0(HANDLE engineHandle, const FWPM_FILTER0* filter, PSECURITY_DESCRIPTOR sd,
                            UINT64* id) {
  return AnswerAdd("FwpmFilterAdd0", engineHandle, filter, sd, id);
}

DWORD WINAPI FwpmFilterDeleteByKey0(HANDLE engineHandle, const GUID* key) {
  return AnswerDeleteByKey<FWPM_FILTER0>("FwpmFilterDeleteByKey0", engineHandle, key);
}

DWORD WINAPI FwpmFilterGetByKey0(HANDLE engineHandle, const GUID* key, FWPM_FILTER0** filter) {
  return AnswerGetByKey("FwpmFilterGetByKey0", engineHandle, key, filter);
}

DWORD WINAPI FwpmFilterDeleteById0(HANDLE engineHandle, UINT64 id) {
  return AnswerDeleteById<FWPM_FILTER0>("FwpmFilterDeleteById0", engineHandle, id);
}

DWORD WINAPI FwpmFilterGetById0(HANDLE engineHandle, UINT64 id, FWPM_FILTER0** filter) {
  return AnswerGetById("FwpmFilterGetById0", engineHandle, id, filter);
}

DWORD WINAPI FwpmFilterCreateEnumHandle0(HANDLE engineHandle, const FWPM_FILTER_ENUM_TEMPLATE0* enumTemplate,
                                         HANDLE* enumHandle) {
  return AnswerCreateEnumHandle<FWPM_FILTER0>("FwpmFilterCreateEnumHandle0", engineHandle, enumTemplate,
                                              enumHandle);
}

DWORD WINAPI FwpmFilterEnum0(HANDLE engineHandle, HANDLE enumHandle, UINT32 numEntriesRequested,
                             FWPM_FILTER0*** entries, UINT32* numEntriesReturned) {
  return AnswerEnum("FwpmFilterEnum0", engineHandle, enumHandle, numEntriesRequested, entries,
                    numEntriesReturned);
}

DWORD WINAPI FwpmFilterDestroyEnumHandle0(HANDLE engineHandle, HANDLE enumHandle) {
  return AnswerDestroyEnumHandle<FWPM_FILTER0>("FwpmFilterDestroyEnumHandle0", engineHandle, enumHandle);
}

DWORD WINAPI FwpmFilterGetSecurityInfoByKey0(HANDLE engineHandle, const GUID* key,
                                             SECURITY_INFORMATION securityInfo, PSID* sidOwner,
                                             PSID* sidGroup, PACL* dacl, PACL* sacl,
                                             PSECURITY_DESCRIPTOR* securityDescriptor) {
  return AnswerGetSecurityByKey<FWPM_FILTER0>("FwpmFilterGetSecurityInfoByKey0", engineHandle, key,
                                              securityInfo,
                                              {sidOwner, sidGroup, dacl, sacl, securityDescriptor});
}

DWORD WINAPI FwpmFilterSetSecurityInfoByKey0(HANDLE engineHandle, const GUID* key,
                                             SECURITY_INFORMATION securityInfo, const SID* sidOwner,
                                             const SID* sidGroup, const ACL* dacl, const ACL* sacl) {
  return AnswerSetSecurityByKey<FWPM_FILTER0>("FwpmFilterSetSecurityInfoByKey0", engineHandle, key,
                                              securityInfo, {sidOwner, sidGroup, dacl, sacl});
}

DWORD WINAPI FwpmFilterSubscribeChanges0(HANDLE engineHandle, const FWPM_FILTER_SUBSCRIPTION0* subscription,
                                         FWPM_FILTER_CHANGE_CALLBACK0 callback, void* context,
                                         HANDLE* changeHandle) {
  return AnswerSubscribe<FWPM_FILTER0>("FwpmFilterSubscribeChanges0", engineHandle, subscription, callback,
                                       context, changeHandle);
}

DWORD WINAPI FwpmFilterUnsubscribeChanges0(HANDLE engineHandle, HANDLE changeHandle) {
  return AnswerUnsubscribe<FWPM_FILTER0>("FwpmFilterUnsubscribeChanges0", engineHandle, changeHandle);
}

DWORD WINAPI FwpmFilterSubscriptionsGet0(HANDLE engineHandle, FWPM_FILTER_SUBSCRIPTION0*** entries,
                                         UINT32* numEntries) {
  return AnswerSubscriptionsGet<FWPM_FILTER0>("FwpmFilterSubscriptionsGet0", engineHandle, entries,
                                              numEntries);
}

}  // extern "C"
