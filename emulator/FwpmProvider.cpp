#include "emulator/EntryPoint.h"

using namespace EngineEmulator;

extern "C" {

DWORD WINAPI FwpmProviderAdd0(HANDLE engineHandle, const FWPM_PROVIDER0* provider, PSECURITY_DESCRIPTOR) {
  return AnswerAdd("FwpmProviderAdd0", engineHandle, provider, nullptr);
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

}  // extern "C"
