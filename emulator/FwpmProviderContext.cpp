#include "emulator/ObjectCalls.h"
#include "emulator/SecurityCalls.h"
#include "emulator/SubscriptionCalls.h"

using namespace EngineEmulator;

extern "C" {

DWORD WINAPI FwpmProviderContextAdd0(HANDLE engineHandle, const FWPM_PROVIDER_CONTEXT0* providerContext,
                                     PSECURITY_DESCRIPTOR sd, UINT64* id) {
  return AnswerAdd("FwpmProviderContextAdd0", engineHandle, providerContext, sd, id);
}

DWORD WINAPI FwpmProviderContextDeleteByKey0(HANDLE engineHandle, const GUID* key) {
  return AnswerDeleteByKey<FWPM_PROVIDER_CONTEXT0>("FwpmProviderContextDeleteByKey0", engineHandle, key);
}

DWORD WINAPI FwpmProviderContextGetByKey0(HANDLE engineHandle, const GUID* key,
                                          FWPM_PROVIDER_CONTEXT0** providerContext) {
  return AnswerGetByKey("FwpmProviderContextGetByKey0", engineHandle, key, providerContext);
}

DWORD WINAPI FwpmProviderContextDeleteById0(HANDLE engineHandle, UINT64 id) {
  return AnswerDeleteById<FWPM_PROVIDER_CONTEXT0>("FwpmProviderContextDeleteById0", engineHandle, id);
}

DWORD WINAPI FwpmProviderContextGetById0(HANDLE engineHandle, UINT64 id,
                                         FWPM_PROVIDER_CONTEXT0** providerContext) {
  return AnswerGetById("FwpmProviderContextGetById0", engineHandle, id, providerContext);
}

DWORD WINAPI FwpmProviderContextCreateEnumHandle0(HANDLE engineHandle,
                                                  const FWPM_PROVIDER_CONTEXT_ENUM_TEMPLATE0* enumTemplate,
                                                  HANDLE* enumHandle) {
  return AnswerCreateEnumHandle<FWPM_PROVIDER_CONTEXT0>("FwpmProviderContextCreateEnumHandle0", engineHandle,
                                                        enumTemplate, enumHandle);
}

DWORD WINAPI FwpmProviderContextEnum0(HANDLE engineHandle, HANDLE enumHandle, UINT32 numEntriesRequested,
                                      FWPM_PROVIDER_CONTEXT0*** entries, UINT32* numEntriesReturned) {
  return AnswerEnum("FwpmProviderContextEnum0", engineHandle, enumHandle, numEntriesRequested, entries,
                    numEntriesReturned);
}

DWORD WINAPI FwpmProviderContextDestroyEnumHandle0(HANDLE engineHandle, HANDLE enumHandle) {
  return AnswerDestroyEnumHandle<FWPM_PROVIDER_CONTEXT0>("FwpmProviderContextDestroyEnumHandle0",
                                                         engineHandle, enumHandle);
}

DWORD WINAPI FwpmProviderContextGetSecurityInfoByKey0(HANDLE engineHandle, const GUID* key,
                                                      SECURITY_INFORMATION securityInfo, PSID* sidOwner,
                                                      PSID* sidGroup, PACL* dacl, PACL* sacl,
                                                      PSECURITY_DESCRIPTOR* securityDescriptor) {
  return AnswerGetSecurityByKey<FWPM_PROVIDER_CONTEXT0>("FwpmProviderContextGetSecurityInfoByKey0",
                                                        engineHandle, key, securityInfo,
                                                        {sidOwner, sidGroup, dacl, sacl, securityDescriptor});
}

DWORD WINAPI FwpmProviderContextSetSecurityInfoByKey0(HANDLE engineHandle, const GUID* key,
                                                      SECURITY_INFORMATION securityInfo, const SID* sidOwner,
                                                      const SID* sidGroup, const ACL* dacl, const ACL* sacl) {
  return AnswerSetSecurityByKey<FWPM_PROVIDER_CONTEXT0>("FwpmProviderContextSetSecurityInfoByKey0",
                                                        engineHandle, key, securityInfo,
                                                        {sidOwner, sidGroup, dacl, sacl});
}

DWORD WINAPI FwpmProviderContextSubscribeChanges0(HANDLE engineHandle,
                                                  const FWPM_PROVIDER_CONTEXT_SUBSCRIPTION0* subscription,
                                                  FWPM_PROVIDER_CONTEXT_CHANGE_CALLBACK0 callback,
                                                  void* context, HANDLE* changeHandle) {
  return AnswerSubscribe<FWPM_PROVIDER_CONTEXT0>("FwpmProviderContextSubscribeChanges0", engineHandle,
                                                 subscription, callback, context, changeHandle);
}

DWORD WINAPI FwpmProviderContextUnsubscribeChanges0(HANDLE engineHandle, HANDLE changeHandle) {
  return AnswerUnsubscribe<FWPM_PROVIDER_CONTEXT0>("FwpmProviderContextUnsubscribeChanges0", engineHandle,
                                                   changeHandle);
}

DWORD WINAPI FwpmProviderContextSubscriptionsGet0(HANDLE engineHandle,
                                                  FWPM_PROVIDER_CONTEXT_SUBSCRIPTION0*** entries,
                                                  UINT32* numEntries) {
  return AnswerSubscriptionsGet<FWPM_PROVIDER_CONTEXT0>("FwpmProviderContextSubscriptionsGet0", engineHandle,
                                                        entries, numEntries);
}

}  // extern "C"
