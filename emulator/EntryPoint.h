/**
 * @file
 * What every function of the engine's interface has in common.
 */
#pragma once

#include <condition_variable>
#include <mutex>
#include <new>
#include <string>
#include <utility>

#include "emulator/Engine.h"
#include "emulator/Texts.h"

namespace EngineEmulator {

/// The engine, to be replaced at a reset. Hold the lock while using it.
struct LockedEngine {
  std::unique_lock<std::mutex> lock;
  Engine& engine;
  std::condition_variable& answered;  ///< Tells of every call that has been answered.
};
LockedEngine LockEngine();
void ResetEngine();
/// Ends all sessions of the engine in use.
void StopTheEngine();
/// Puts a fresh engine in the place of the one in use, and that one back.
void PutEngineAside();
void TakeEngineBack();

/// Waits until the session may change something, at most as long as the session says. If there is no such
/// session, or it ends meanwhile: Engine::InvalidHandleCode.
DWORD WaitForWriteLock(LockedEngine& locked, HANDLE engineHandle);

/// Answers a call: with the planned failure if there is one, else with what the body gives. Either way
/// the call is in the journal.
/// @param body takes the LockedEngine&.
template <class Body>
DWORD AnswerLocked(const char* function, std::string arguments, Body body) {
  LockedEngine locked = LockEngine();
  const std::optional<DWORD> failure = locked.engine.faults.Count(function);
  DWORD result = ERROR_NOT_ENOUGH_MEMORY;
  try {
    result = failure.has_value() ? *failure : body(locked);
  } catch (const std::bad_alloc&) {
    locked.engine.lastRefusal = "there is no memory left";
  }
  locked.engine.Record({function, std::move(arguments), result});
  locked.answered.notify_all();
  return result;
}

/// @param body takes the Engine&.
template <class Body>
DWORD Answer(const char* function, std::string arguments, Body body) {
  return AnswerLocked(function, std::move(arguments),
                      [&](LockedEngine& locked) { return body(locked.engine); });
}

/// For calls within a session.
/// @param body takes the Engine& and the Session&.
template <class Body>
DWORD AnswerSession(const char* function, HANDLE engineHandle, std::string arguments, Body body) {
  return Answer(function, std::move(arguments), [&](Engine& engine) -> DWORD {
    Session* session = engine.FindSession(engineHandle);
    if (session == nullptr) {
      return engine.InvalidHandleCode();
    }
    if (std::exchange(session->transactionExpired, false)) {
      return static_cast<DWORD>(FWP_E_TXN_ABORTED);
    }
    return body(engine, *session);
  });
}

/// For calls that change something: they wait for other sessions' transactions.
/// @param body takes the Engine& and the Session&.
template <class Body>
DWORD AnswerChange(const char* function, HANDLE engineHandle, std::string arguments, Body body) {
  return AnswerLocked(function, std::move(arguments), [&](LockedEngine& locked) -> DWORD {
    if (const DWORD result = WaitForWriteLock(locked, engineHandle); result != ERROR_SUCCESS) {
      return result;
    }
    return body(locked.engine, *locked.engine.FindSession(engineHandle));
  });
}

/// For calls that cannot be part of a transaction.
/// @param body takes the Engine& and the Session&.
template <class Body>
DWORD AnswerOutsideTransaction(const char* function, HANDLE engineHandle, std::string arguments, Body body) {
  return AnswerSession(function, engineHandle, std::move(arguments),
                       [&](Engine& engine, Session& session) -> DWORD {
                         return session.transaction.has_value() ? static_cast<DWORD>(FWP_E_TXN_IN_PROGRESS)
                                                                : body(engine, session);
                       });
}

constexpr DWORD kNullPointer = static_cast<DWORD>(FWP_E_NULL_POINTER);

}  // namespace EngineEmulator
