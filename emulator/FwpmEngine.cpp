// Sessions and transactions.
#include "emulator/EntryPoint.h"

using namespace EngineEmulator;

extern "C" {

DWORD WINAPI FwpmEngineOpen0(const wchar_t* serverName, UINT32 authnService, SEC_WINNT_AUTH_IDENTITY_W*,
                             const FWPM_SESSION0* session, HANDLE* engineHandle) {
  return Answer("FwpmEngineOpen0", Describe(session), [&](Engine& engine) -> DWORD {
    if (engineHandle == nullptr) {
      return kNullPointer;
    }
    const bool knownService = authnService == RPC_C_AUTHN_WINNT || authnService == RPC_C_AUTHN_DEFAULT;
    if (serverName != nullptr || !knownService) {
      return ERROR_INVALID_PARAMETER;
    }
    return engine.OpenSession(session, *engineHandle);
  });
}

DWORD WINAPI FwpmEngineClose0(HANDLE engineHandle) {
  return AnswerSession("FwpmEngineClose0", engineHandle, "", [&](Engine& engine, Session&) -> DWORD {
    engine.CloseSession(engineHandle);
    return ERROR_SUCCESS;
  });
}

DWORD WINAPI FwpmTransactionBegin0(HANDLE engineHandle, UINT32 flags) {
  return AnswerSession("FwpmTransactionBegin0", engineHandle, "flags " + std::to_string(flags),
                       [&](Engine& engine, Session& session) { return engine.Begin(session, flags); });
}

DWORD WINAPI FwpmTransactionCommit0(HANDLE engineHandle) {
  return AnswerSession("FwpmTransactionCommit0", engineHandle, "",
                       [](Engine& engine, Session& session) { return engine.Commit(session); });
}

DWORD WINAPI FwpmTransactionAbort0(HANDLE engineHandle) {
  return AnswerSession("FwpmTransactionAbort0", engineHandle, "",
                       [](Engine& engine, Session& session) { return engine.Abort(session); });
}

}  // extern "C"
