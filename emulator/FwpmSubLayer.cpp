#include "emulator/ObjectCalls.h"
#include "emulator/SecurityCalls.h"
#include "emulator/SubscriptionCalls.h"

using namespace EngineEmulator;

extern "C" {

DWORD WINAPI FwpmSubLayerAdd0(HANDLE engineHandle, const FWPM_SUBLAYER0* subLayer, PSECURITY_DESCRIPTOR sd) {
  return AnswerAdd("FwpmSubLayerAdd0", engineHandle, subLayer, sd, nullptr);
}

DWORD WINAPI FwpmSubLayerDeleteByKey0(HANDLE engineHandle, const GUID* key) {
  return AnswerDeleteByKey<FWPM_SUBLAYER0>("FwpmSubLayerDeleteByKey0", engineHandle, key);
}

DWORD WINAPI FwpmSubLayerGetByKey0(HANDLE engineHandle, const GUID* key, FWPM_SUBLAYER0** subLayer) {
  return AnswerGetByKey("FwpmSubLayerGetByKey0", engineHandle, key, subLayer);
}

DWORD WINAPI FwpmSubLayerCreateEnumHandle0(HANDLE engineHandle,
                                           const FWPM_SUBLAYER_ENUM_TEMPLATE0* enumTemplate,
                                           HANDLE* enumHandle) {
  return AnswerCreateEnumHandle<FWPM_SUBLAYER0>("FwpmSubLayerCreateEnumHandle0", engineHandle, enumTemplate,
                                                enumHandle);
}

DWORD WINAPI FwpmSubLayerEnum0(HANDLE engineHandle, HANDLE enumHandle, UINT32 numEntriesRequested,
                               FWPM_SUBLAYER0*** entries, UINT32* numEntriesReturned) {
  return AnswerEnum("FwpmSubLayerEnum0", engineHandle, enumHandle, numEntriesRequested, entries,
                    numEntriesReturned);
}

DWORD WINAPI FwpmSubLayerDestroyEnumHandle0(HANDLE engineHandle, HANDLE enumHandle) {
  return AnswerDestroyEnumHandle<FWPM_SUBLAYER0>("FwpmSubLayerDestroyEnumHandle0", engineHandle, enumHandle);
}

DWORD WINAPI FwpmSubLayerGetSecurityInfoByKey0(HANDLE engineHandle, const GUID* key,
                                               SECURITY_INFORMATION securityInfo, PSID* sidOwner,
                                               PSID* sidGroup, PACL* dacl, PACL* sacl,
                                               PSECURITY_DESCRIPTOR* securityDescriptor) {
  return AnswerGetSecurityByKey<FWPM_SUBLAYER0>("FwpmSubLayerGetSecurityInfoByKey0", engineHandle, key,
                                                securityInfo,
                                                {sidOwner, sidGroup, dacl, sacl, securityDescriptor});
}

DWORD WINAPI FwpmSubLayerSetSecurityInfoByKey0(HANDLE engineHandle, const GUID* key,
                                               SECURITY_INFORMATION securityInfo, const SID* sidOwner,
                                               const SID* sidGroup, const ACL* dacl, const ACL* sacl) {
  return AnswerSetSecurityByKey<FWPM_SUBLAYER0>("FwpmSubLayerSetSecurityInfoByKey0", engineHandle, key,
                                                securityInfo, {sidOwner, sidGroup, dacl, sacl});
}

DWORD WINAPI FwpmSubLayerSubscribeChanges0(HANDLE engineHandle,
                                           const FWPM_SUBLAYER_SUBSCRIPTION0* subscription,
                                           FWPM_SUBLAYER_CHANGE_CALLBACK0 callback, void* context,
                                           HANDLE* changeHandle) {
  return AnswerSubscribe<FWPM_SUBLAYER0>("FwpmSubLayerSubscribeChanges0", engineHandle, subscription,
                                         callback, context, changeHandle);
}

DWORD WINAPI FwpmSubLayerUnsubscribeChanges0(HANDLE engineHandle, HANDLE changeHandle) {
  return AnswerUnsubscribe<FWPM_SUBLAYER0>("FwpmSubLayerUnsubscribeChanges0", engineHandle, changeHandle);
}

DWORD WINAPI FwpmSubLayerSubscriptionsGet0(HANDLE engineHandle, FWPM_SUBLAYER_SUBSCRIPTION0*** entries,
                                           UINT32* numEntries) {
  return AnswerSubscriptionsGet<FWPM_SUBLAYER0>("FwpmSubLayerSubscriptionsGet0", engineHandle, entries,
                                                numEntries);
}

}  // extern "C"
