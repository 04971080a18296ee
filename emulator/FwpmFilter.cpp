#include "emulator/EntryPoint.h"

using namespace EngineEmulator;

extern "C" {

DWORD WINAPI FwpmFilterAdd0(HANDLE engineHandle, const FWPM_FILTER0* filter, PSECURITY_DESCRIPTOR,
                            UINT64* id) {
  return AnswerAdd("FwpmFilterAdd0", engineHandle, filter, id);
}

DWORD WINAPI FwpmFilterDeleteById0(HANDLE engineHandle, UINT64 id) {
  return AnswerSession(
      "FwpmFilterDeleteById0", engineHandle, std::to_string(id),
      [&](Engine& engine, Session& session) { return engine.Delete<FWPM_FILTER0>(session, id); });
}

DWORD WINAPI FwpmFilterDeleteByKey0(HANDLE engineHandle, const GUID* key) {
  return AnswerDeleteByKey<FWPM_FILTER0>("FwpmFilterDeleteByKey0", engineHandle, key);
}

DWORD WINAPI FwpmFilterGetById0(HANDLE engineHandle, UINT64 id, FWPM_FILTER0** filter) {
  return AnswerSession("FwpmFilterGetById0", engineHandle, std::to_string(id),
                       [&](Engine& engine, Session& session) { return Get(engine, session, id, filter); });
}

DWORD WINAPI FwpmFilterGetByKey0(HANDLE engineHandle, const GUID* key, FWPM_FILTER0** filter) {
  return AnswerGetByKey("FwpmFilterGetByKey0", engineHandle, key, filter);
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

}  // extern "C"
