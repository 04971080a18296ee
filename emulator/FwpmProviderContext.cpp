// This engine has no provider contexts.
#include "emulator/EntryPoint.h"

using namespace EngineEmulator;

namespace {

DWORD Decline(const char* function, HANDLE engineHandle) {
  return AnswerSession(function, engineHandle, "",
                       [](Engine&, Session&) -> DWORD { return ERROR_NOT_SUPPORTED; });
}

}  // namespace

extern "C" {

DWORD WINAPI FwpmProviderContextAdd0(HANDLE engineHandle, const FWPM_PROVIDER_CONTEXT0*, PSECURITY_DESCRIPTOR,
                                     UINT64*) {
  return Decline("FwpmProviderContextAdd0", engineHandle);
}

DWORD WINAPI FwpmProviderContextDeleteById0(HANDLE engineHandle, UINT64) {
  return Decline("FwpmProviderContextDeleteById0", engineHandle);
}

DWORD WINAPI FwpmProviderContextDeleteByKey0(HANDLE engineHandle, const GUID*) {
  return Decline("FwpmProviderContextDeleteByKey0", engineHandle);
}

DWORD WINAPI FwpmProviderContextGetById0(HANDLE engineHandle, UINT64, FWPM_PROVIDER_CONTEXT0**) {
  return Decline("FwpmProviderContextGetById0", engineHandle);
}

DWORD WINAPI FwpmProviderContextGetByKey0(HANDLE engineHandle, const GUID*, FWPM_PROVIDER_CONTEXT0**) {
  return Decline("FwpmProviderContextGetByKey0", engineHandle);
}

DWORD WINAPI FwpmProviderContextCreateEnumHandle0(HANDLE engineHandle,
                                                  const FWPM_PROVIDER_CONTEXT_ENUM_TEMPLATE0*, HANDLE*) {
  return Decline("FwpmProviderContextCreateEnumHandle0", engineHandle);
}

DWORD WINAPI FwpmProviderContextEnum0(HANDLE engineHandle, HANDLE, UINT32, FWPM_PROVIDER_CONTEXT0***,
                                      UINT32*) {
  return Decline("FwpmProviderContextEnum0", engineHandle);
}

DWORD WINAPI FwpmProviderContextDestroyEnumHandle0(HANDLE engineHandle, HANDLE) {
  return Decline("FwpmProviderContextDestroyEnumHandle0", engineHandle);
}

DWORD WINAPI FwpmProviderContextGetSecurityInfoByKey0(HANDLE engineHandle, const GUID*, SECURITY_INFORMATION,
                                                      PSID*, PSID*, PACL*, PACL*, PSECURITY_DESCRIPTOR*) {
  return Decline("FwpmProviderContextGetSecurityInfoByKey0", engineHandle);
}

DWORD WINAPI FwpmProviderContextSetSecurityInfoByKey0(HANDLE engineHandle, const GUID*, SECURITY_INFORMATION,
                                                      const SID*, const SID*, const ACL*, const ACL*) {
  return Decline("FwpmProviderContextSetSecurityInfoByKey0", engineHandle);
}

DWORD WINAPI FwpmProviderContextSubscribeChanges0(HANDLE engineHandle,
                                                  const FWPM_PROVIDER_CONTEXT_SUBSCRIPTION0*,
                                                  FWPM_PROVIDER_CONTEXT_CHANGE_CALLBACK0, void*, HANDLE*) {
  return Decline("FwpmProviderContextSubscribeChanges0", engineHandle);
}

DWORD WINAPI FwpmProviderContextUnsubscribeChanges0(HANDLE engineHandle, HANDLE) {
  return Decline("FwpmProviderContextUnsubscribeChanges0", engineHandle);
}

DWORD WINAPI FwpmProviderContextSubscriptionsGet0(HANDLE engineHandle, FWPM_PROVIDER_CONTEXT_SUBSCRIPTION0***,
                                                  UINT32*) {
  return Decline("FwpmProviderContextSubscriptionsGet0", engineHandle);
}

}  // extern "C"
