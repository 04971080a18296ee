// The engine itself, its sessions and transactions.
#include "emulator/MakeObject.h"
#include "emulator/ObjectCalls.h"
#include "emulator/SecurityCalls.h"

using namespace EngineEmulator;

namespace {

constexpr const char* kEngineSecurityName = "engine";

/// FWPM_ENGINE_OPTION has grown with Windows; a number is an option if there is room for its value.
UINT32* FindOption(Engine& engine, FWPM_ENGINE_OPTION option) {
  const auto index = static_cast<std::size_t>(option);
  return index < engine.options.size() ? &engine.options[index] : nullptr;
}

void UndoAfterFailedCommit(HANDLE engineHandle) {
  const LockedEngine locked = LockEngine();
  Session* session = locked.engine.FindSession(engineHandle);
  if (session != nullptr && session->transaction.has_value() &&
      locked.engine.GetSwitches().failedCommitEndsTransaction != 0) {
    locked.engine.Abort(*session);
    locked.answered.notify_all();
  }
}

}  // namespace

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
  // Destroyed after the engine is unlocked, because a running callback may be waiting to use it.
  std::optional<Session> closed;
  return Answer("FwpmEngineClose0", "", [&](Engine& engine) -> DWORD {
    if (engine.FindSession(engineHandle) == nullptr) {
      return engine.InvalidHandleCode();
    }
    closed = engine.CloseSession(engineHandle);
    return ERROR_SUCCESS;
  });
}

DWORD WINAPI FwpmEngineGetOption0(HANDLE engineHandle, FWPM_ENGINE_OPTION option, FWP_VALUE0** value) {
  constexpr const char* kFunction = "FwpmEngineGetOption0";
  return AnswerSession(
      kFunction, engineHandle, std::to_string(int{option}), [&](Engine& engine, Session&) -> DWORD {
        const UINT32* found = FindOption(engine, option);
        if (value == nullptr || found == nullptr) {
          return value == nullptr ? kNullPointer : static_cast<DWORD>(FWP_E_INVALID_ENUMERATOR);
        }
        FWP_VALUE0 record{};
        record.type = FWP_UINT32;
        record.uint32 = *found;
        *value = engine.memory.HandOut(kFunction,
                                       MakeBlock([&](Packer& packer) { return PackRecord(packer, record); }));
        return ERROR_SUCCESS;
      });
}

DWORD WINAPI FwpmEngineSetOption0(HANDLE engineHandle, FWPM_ENGINE_OPTION option,
                                  const FWP_VALUE0* newValue) {
  const auto set = [&](Engine& engine, Session& session) -> DWORD {
    if (session.IsDynamic()) {
      engine.lastRefusal = "a dynamic session sets no options";
      return static_cast<DWORD>(FWP_E_DYNAMIC_SESSION_IN_PROGRESS);
    }
    UINT32* found = FindOption(engine, option);
    if (newValue == nullptr || found == nullptr) {
      return newValue == nullptr ? kNullPointer : static_cast<DWORD>(FWP_E_INVALID_ENUMERATOR);
    }
    if (newValue->type != FWP_UINT32) {
      return static_cast<DWORD>(FWP_E_TYPE_MISMATCH);
    }
    *found = newValue->uint32;
    return ERROR_SUCCESS;
  };
  return AnswerOutsideTransaction("FwpmEngineSetOption0", engineHandle, std::to_string(int{option}), set);
}

DWORD WINAPI FwpmEngineGetSecurityInfo0(HANDLE engineHandle, SECURITY_INFORMATION securityInfo,
                                        PSID* sidOwner, PSID* sidGroup, PACL* dacl, PACL* sacl,
                                        PSECURITY_DESCRIPTOR* securityDescriptor) {
  return AnswerGetSecurity("FwpmEngineGetSecurityInfo0", engineHandle, kEngineSecurityName, securityInfo,
                           {sidOwner, sidGroup, dacl, sacl, securityDescriptor});
}

DWORD WINAPI FwpmEngineSetSecurityInfo0(HANDLE engineHandle, SECURITY_INFORMATION securityInfo,
                                        const SID* sidOwner, const SID* sidGroup, const ACL* dacl,
                                        const ACL* sacl) {
  return AnswerSetSecurity("FwpmEngineSetSecurityInfo0", engineHandle, kEngineSecurityName, securityInfo,
                           {sidOwner, sidGroup, dacl, sacl});
}

DWORD WINAPI FwpmSessionCreateEnumHandle0(HANDLE engineHandle, const FWPM_SESSION_ENUM_TEMPLATE0*,
                                          HANDLE* enumHandle) {
  return AnswerSession("FwpmSessionCreateEnumHandle0", engineHandle, "all",
                       [&](Engine& engine, Session& session) {
                         std::vector<ObjectPtr<FWPM_SESSION0>> sessions;
                         for (const auto& [handle, open] : engine.Sessions()) {
                           sessions.push_back(MakeObject(*open.record.root, {Lifetime::BuiltIn, nullptr}, 0));
                         }
                         return StartEnumeration(engine, session, std::move(sessions), enumHandle);
                       });
}

DWORD WINAPI FwpmSessionEnum0(HANDLE engineHandle, HANDLE enumHandle, UINT32 numEntriesRequested,
                              FWPM_SESSION0*** entries, UINT32* numEntriesReturned) {
  return AnswerEnum("FwpmSessionEnum0", engineHandle, enumHandle, numEntriesRequested, entries,
                    numEntriesReturned);
}

DWORD WINAPI FwpmSessionDestroyEnumHandle0(HANDLE engineHandle, HANDLE enumHandle) {
  return AnswerDestroyEnumHandle<FWPM_SESSION0>("FwpmSessionDestroyEnumHandle0", engineHandle, enumHandle);
}

DWORD WINAPI FwpmTransactionBegin0(HANDLE engineHandle, UINT32 flags) {
  constexpr const char* kFunction = "FwpmTransactionBegin0";
  const std::string arguments = "flags " + std::to_string(flags);
  const auto begin = [&](Engine& engine, Session& session) { return engine.Begin(session, flags); };
  return flags == 0 ? AnswerChange(kFunction, engineHandle, arguments, begin)
                    : AnswerSession(kFunction, engineHandle, arguments, begin);
}

DWORD WINAPI FwpmTransactionCommit0(HANDLE engineHandle) {
  const DWORD result = AnswerSession("FwpmTransactionCommit0", engineHandle, "",
                                     [](Engine& engine, Session& session) { return engine.Commit(session); });
  if (result != ERROR_SUCCESS) {
    UndoAfterFailedCommit(engineHandle);
  }
  return result;
}

DWORD WINAPI FwpmTransactionAbort0(HANDLE engineHandle) {
  return AnswerSession("FwpmTransactionAbort0", engineHandle, "",
                       [](Engine& engine, Session& session) { return engine.Abort(session); });
}

}  // extern "C"
