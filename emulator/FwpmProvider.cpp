#include "emulator/ObjectCalls.h"
#include "emulator/SecurityCalls.h"
#include "emulator/SubscriptionCalls.h"

using namespace EngineEmulator;

extern "C" {

DWORD WINAPI FwpmProviderAdd0(HANDLE engineHandle, const FWPM_PROVIDER0* provider, PSECURITY_DESCRIPTOR sd) {
  return AnswerAdd("FwpmProviderAdd0", engineHandle, provider, sd, nullptr);
}

DWORD WINAPI FwpmProviderDeleteByKey0(HANDLE engineHandle, const GUID* key) {
  return AnswerDeleteByKey<FWPM_PROVIDER0>("FwpmProviderDeleteByKey0", engineHandle, key);
}

DWORD WINAPI FwpmProviderGetByKey0(HANDLE engineHandle, const GUID* key, FWPM_PROVIDER0** provider) {
  return AnswerGetByKey("FwpmProviderGetByKey0", engineHandle, key, provider);
}

DWORD WINAPI FwpmProviderCreateEnumHandle0(HANDLE engineHandle,
                                           const FWPM_PROVIDER_ENUM_TEMPLATE0* enumTemplate,
                                           HANDLE* enumHandle) {
  return AnswerCreateEnumHandle<FWPM_PROVIDER0>("FwpmProviderCreateEnumHandle0", engineHandle, enumTemplate,
                                                enumHandle);
}

DWORD WINAPI FwpmProviderEnum0(HANDLE engineHandle, HANDLE enumHandle, UINT32 numEntriesRequested,
                               FWPM_PROVIDER0*** entries, UINT32* numEntriesReturned) {
  return AnswerEnum("FwpmProviderEnum0", engineHandle, enumHandle, numEntriesRequested, entries,
                    numEntriesReturned);
}

DWORD WINAPI FwpmProviderDestroyEnumHandle0(HANDLE engineHandle, HANDLE enumHandle) {
  return AnswerDestroyEnumHandle<FWPM_PROVIDER0>("FwpmProviderDestroyEnumHandle0", engineHandle, enumHandle);
}

DWORD WINAPI FwpmProviderGetSecurityInfoByKey0(HANDLE engineHandle, const GUID* key,
                                               SECURITY_INFORMATION securityInfo, PSID* sidOwner,
                                               PSID* sidGroup, PACL* dacl, PACL* sacl,
                                               PSECURITY_DESCRIPTOR* securityDescriptor) {
  return AnswerGetSecurityByKey<FWPM_PROVIDER0>("FwpmProviderGetSecurityInfoByKey0", engineHandle, key,
                                                securityInfo,
                                                {sidOwner, sidGroup, dacl, sacl, securityDescriptor});
}

DWORD WINAPI FwpmProviderSetSecurityInfoByKey0(HANDLE engineHandle, const GUID* key,
                                               SECURITY_INFORMATION securityInfo, const SID* sidOwner,
                                               const SID* sidGroup, const ACL* dacl, const ACL* sacl) {
  return AnswerSetSecurityByKey<FWPM_PROVIDER0>("FwpmProviderSetSecurityInfoByKey0", engineHandle, key,
                                                securityInfo, {sidOwner, sidGroup, dacl, sacl});
}

DWORD WINAPI FwpmProviderSubscribeChanges0(HANDLE engineHandle,
                                           const FWPM_PROVIDER_SUBSCRIPTION0* subscription,
                                           FWPM_PROVIDER_CHANGE_CALLBACK0 callback, void* context,
                                           HANDLE* changeHandle) {
  return AnswerSubscribe<FWPM_PROVIDER0>("FwpmProviderSubscribeChanges0", engineHandle, subscription,
                                         callback, context, changeHandle);
}

DWORD WINAPI FwpmProviderUnsubscribeChanges0(HANDLE engineHandle, HANDLE changeHandle) {
  return AnswerUnsubscribe<FWPM_PROVIDER0>("FwpmProviderUnsubscribeChanges0", engineHandle, changeHandle);
}

DWORD WINAPI FwpmProviderSubscriptionsGet0(HANDLE engineHandle, FWPM_PROVIDER_SUBSCRIPTION0*** entries,
                                           UINT32* numEntries) {
  return AnswerSubscriptionsGet<FWPM_PROVIDER0>("FwpmProviderSubscriptionsGet0", engineHandle, entries,
                                                numEntries);
}

}  // extern "C"
