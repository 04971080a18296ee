/**
 * @file
 * The engine itself: sessions, transactions and objects.
 */
#pragma once

#include <random>
#include <set>
#include <string>

#include "emulator/Control.h"
#include "emulator/EngineMemory.h"
#include "emulator/FaultPlan.h"
#include "emulator/Session.h"

namespace EngineEmulator {

/// One engine. Callers see to it that one thread at a time uses it.
class Engine {
 public:
  Engine();

  /// @param session null for a static session with a key of the engine's choice.
  DWORD OpenSession(const FWPM_SESSION0* session, HANDLE& handle);
  /// Null for a handle that is not an open session's.
  Session* FindSession(HANDLE handle);
  /// Undoes the session's transaction, ends its dynamic objects and its enumerations.
  void CloseSession(HANDLE handle);

  DWORD Begin(Session& session, UINT32 flags);
  DWORD Commit(Session& session);
  DWORD Abort(Session& session);

  /// What a session sees: what is committed, and its own changes.
  const Policy& PolicyOf(const Session& session) const;
  /// The same with the changes of whichever transaction is open.
  const Policy& NewestPolicy() const;

  /// @param number receives the number that the object got; may be null.
  template <class Native>
  DWORD Add(Session& session, const Native& record, UINT64* number);

  /// @param identity a key or a number.
  template <class Native, class Identity>
  DWORD Delete(Session& session, const Identity& identity);

  HANDLE NewHandle();
  const std::unordered_map<HANDLE, Session>& Sessions() const { return sessions_; }

  EngineMemory memory;
  std::vector<Call> journal;
  FaultPlan faults;
  std::set<std::wstring> pretendedFiles;  ///< in lower case

 private:
  struct PolicyForChange {
    DWORD result;
    Policy* policy;  ///< null on failure
  };
  PolicyForChange OpenForChange(Session& session);
  void AddBuiltInSublayers();
  GUID NewKey();

  std::unordered_map<HANDLE, Session> sessions_;
  Policy committed_;
  UINT64 nextNumber_;
  std::mt19937_64 keys_;
};

}  // namespace EngineEmulator
