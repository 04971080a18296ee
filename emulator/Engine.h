/**
 * @file
 * The engine itself: sessions, transactions and objects.
 */
#pragma once

#include <array>
#include <deque>
#include <random>
#include <set>
#include <string>
#include <string_view>

#include "emulator/Call.h"
#include "emulator/EngineMemory.h"
#include "emulator/FaultPlan.h"
#include "emulator/Refusal.h"
#include "emulator/SecurityDescriptor.h"
#include "emulator/Session.h"
#include "emulator/Switches.h"

namespace EngineEmulator {

/// One engine. Callers see to it that one thread at a time uses it.
class Engine {
 public:
  Engine();

  /// @param session null for a static session with a key of the engine's choice.
  DWORD OpenSession(const FWPM_SESSION0* session, HANDLE& handle);
  /// Null if no open session has this handle.
  Session* FindSession(HANDLE handle);
  /// Undoes the session's transaction and removes its dynamic objects. Destroying a session waits for its
  /// callbacks, which may use the engine; so the caller gets it, to destroy it after unlocking the engine.
  Session CloseSession(HANDLE handle);
  /// All sessions, to be destroyed in the same way. The engine must not be used afterwards.
  std::unordered_map<HANDLE, Session> TakeSessions() { return std::move(sessions_); }

  /// Ends all sessions, and lets none begin. They are to be destroyed in the same way.
  std::unordered_map<HANDLE, Session> Stop();
  /// The code for a handle that no open session has.
  [[nodiscard]] DWORD InvalidHandleCode() const {
    return stopped_ ? DWORD{RPC_S_SERVER_UNAVAILABLE} : switches_.invalidHandleCode;
  }

  /// Unless the flags say read-only, MayWrite(session) must hold.
  DWORD Begin(Session& session, UINT32 flags);
  DWORD Commit(Session& session);
  DWORD Abort(Session& session);
  /// Ends every transaction, as the engine does with one that has been open for an hour.
  void ExpireTransactions();

  /// Whether no other session has a transaction that changes something.
  [[nodiscard]] bool MayWrite(const Session& session) const {
    return writer_ == nullptr || writer_ == session.handle;
  }
  [[nodiscard]] UINT32 LockWaitMilliseconds(const Session& session) const;

  /// The objects that a session sees: the committed ones, with its own changes.
  [[nodiscard]] const ObjectStore& ObjectsOf(const Session& session) const;
  /// The committed objects with the changes of the open transaction, of whichever session that is.
  [[nodiscard]] const ObjectStore& NewestObjects() const;

  // For each of these MayWrite(session) must hold.

  /// @param number receives the number that the object got; may be null.
  template <class Native>
  DWORD Add(Session& session, const Native& record, PSECURITY_DESCRIPTOR security, UINT64* number);

  /// @param identity a key or a number.
  template <class Native, class Identity>
  DWORD Delete(Session& session, const Identity& identity);

  template <class Native>
  DWORD SetSecurity(Session& session, const GUID& key, const SecurityDescriptor& security);

  /// Records an event and tells its subscribers, as far as the engine's options want it.
  DWORD Raise(FWPM_NET_EVENT3 event);

  /// Puts a call into the journal, from which the oldest goes if it is full.
  void Record(Call call);

  HANDLE NewHandle();
  [[nodiscard]] const std::unordered_map<HANDLE, Session>& Sessions() const { return sessions_; }

  [[nodiscard]] const Switches& GetSwitches() const { return switches_; }
  void SetSwitches(const Switches& switches);
  std::mt19937_64& Random() { return random_; }

  EngineMemory memory;
  std::deque<Call> journal;  ///< the last ones
  FaultPlan faults;
  std::set<std::wstring> pretendedFiles;  ///< in lower case
  std::string lastRefusal;
  /// The descriptors of what has no key: the engine, its net events and the container of each kind of
  /// objects.
  std::map<std::string_view, SecurityDescriptor> securities;
  std::array<UINT32, 6> options{1};  ///< by FWPM_ENGINE_OPTION; of them COLLECT_NET_EVENTS is on
  NetEventLog netEvents;
  std::size_t missedEvents = 0;  ///< by subscribers for whom too many were waiting

 private:
  DWORD Refuse(const Refusal& refusal);
  [[nodiscard]] Refusal CheckDeletion(const Session& session, const Origin& origin) const;
  template <class Native>
  UINT64 NewNumber(const Native& record, const ObjectStore& objects);
  /// Null in a transaction that only reads.
  ObjectStore* OpenForChange(Session& session);
  template <class Native>
  void Announce(Session& session, FWPM_CHANGE_TYPE type, const ObjectPtr<Native>& object);
  template <class Native>
  void Tell(FWPM_CHANGE_TYPE type, const ObjectPtr<Native>& object);
  template <class Native>
  void RemoveDynamicObjects(HANDLE session);
  GUID NewKey();

  std::unordered_map<HANDLE, Session> sessions_;
  bool stopped_ = false;
  HANDLE writer_ = nullptr;  ///< the session whose transaction holds the write lock
  ObjectStore committed_;
  Switches switches_;
  UINT64 nextNumber_;
  UINT64 nextCalloutNumber_;
  std::mt19937_64 random_;
};

}  // namespace EngineEmulator
