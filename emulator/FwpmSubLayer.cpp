#include "emulator/EntryPoint.h"

using namespace EngineEmulator;

extern "C" {

DWORD WINAPI FwpmSubLayerAdd0(HANDLE engineHandle, const FWPM_SUBLAYER0* subLayer, PSECURITY_DESCRIPTOR) {
  return AnswerAdd("FwpmSubLayerAdd0", engineHandle, subLayer, nullptr);
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

}  // extern "C"
