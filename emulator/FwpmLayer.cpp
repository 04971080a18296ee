#include "emulator/ObjectCalls.h"
#include "emulator/SecurityCalls.h"

using namespace EngineEmulator;

extern "C" {

DWORD WINAPI FwpmLayerGetByKey0(HANDLE engineHandle, const GUID* key, FWPM_LAYER0** layer) {
  return AnswerGetByKey("FwpmLayerGetByKey0", engineHandle, key, layer);
}

DWORD WINAPI FwpmLayerGetById0(HANDLE engineHandle, UINT16 id, FWPM_LAYER0** layer) {
  return AnswerGetById("FwpmLayerGetById0", engineHandle, id, layer);
}

DWORD WINAPI FwpmLayerCreateEnumHandle0(HANDLE engineHandle, const FWPM_LAYER_ENUM_TEMPLATE0* enumTemplate,
                                        HANDLE* enumHandle) {
  return AnswerCreateEnumHandle<FWPM_LAYER0>("FwpmLayerCreateEnumHandle0", engineHandle, enumTemplate,
                                             enumHandle);
}

DWORD WINAPI FwpmLayerEnum0(HANDLE engineHandle, HANDLE enumHandle, UINT32 numEntriesRequested,
                            FWPM_LAYER0*** entries, UINT32* numEntriesReturned) {
  return AnswerEnum("FwpmLayerEnum0", engineHandle, enumHandle, numEntriesRequested, entries,
                    numEntriesReturned);
}

DWORD WINAPI FwpmLayerDestroyEnumHandle0(HANDLE engineHandle, HANDLE enumHandle) {
  return AnswerDestroyEnumHandle<FWPM_LAYER0>("FwpmLayerDestroyEnumHandle0", engineHandle, enumHandle);
}

DWORD WINAPI FwpmLayerGetSecurityInfoByKey0(HANDLE engineHandle, const GUID* key,
                                            SECURITY_INFORMATION securityInfo, PSID* sidOwner, PSID* sidGroup,
                                            PACL* dacl, PACL* sacl,
                                            PSECURITY_DESCRIPTOR* securityDescriptor) {
  return AnswerGetSecurityByKey<FWPM_LAYER0>("FwpmLayerGetSecurityInfoByKey0", engineHandle, key,
                                             securityInfo,
                                             {sidOwner, sidGroup, dacl, sacl, securityDescriptor});
}

DWORD WINAPI FwpmLayerSetSecurityInfoByKey0(HANDLE engineHandle, const GUID* key,
                                            SECURITY_INFORMATION securityInfo, const SID* sidOwner,
                                            const SID* sidGroup, const ACL* dacl, const ACL* sacl) {
  return AnswerSetSecurityByKey<FWPM_LAYER0>("FwpmLayerSetSecurityInfoByKey0", engineHandle, key,
                                             securityInfo, {sidOwner, sidGroup, dacl, sacl});
}

}  // extern "C"
