#include "emulator/EntryPoint.h"

#include <chrono>
#include <list>

namespace EngineEmulator {
namespace {

struct SharedEngine {
  SharedEngine() { engines.emplace_back(std::in_place); }

  std::mutex mutex;
  std::condition_variable answered;
  /// The last one is in use; those before it were put aside. A call that waits keeps a reference to its
  /// engine, so none of them ever moves.
  std::list<std::optional<Engine>> engines;
};

/// Never destroyed, because static objects of clients may call the engine while their process ends.
union Everlasting {
  Everlasting() : shared() {}
  ~Everlasting() {}  // NOLINT(modernize-use-equals-default): the default one would be deleted.
  SharedEngine shared;
};

SharedEngine& Shared() {
  static Everlasting everlasting;
  return everlasting.shared;
}

}  // namespace

LockedEngine LockEngine() {
  SharedEngine& shared = Shared();
  return {std::unique_lock(shared.mutex), *shared.engines.back(), shared.answered};
}

void ResetEngine() {
  SharedEngine& shared = Shared();
  std::unordered_map<HANDLE, Session> ended;  // destroyed when callbacks that run can use the engine again
  const std::lock_guard lock(shared.mutex);
  ended = shared.engines.back()->TakeSessions();
  shared.engines.back().emplace();
  shared.answered.notify_all();
}

void StopTheEngine() {
  std::unordered_map<HANDLE, Session> ended;  // destroyed when callbacks that run can use the engine again
  const LockedEngine locked = LockEngine();
  ended = locked.engine.Stop();
  locked.answered.notify_all();
}

void PutEngineAside() {
  SharedEngine& shared = Shared();
  const std::lock_guard lock(shared.mutex);
  shared.engines.emplace_back(std::in_place);
}

void TakeEngineBack() {
  ResetEngine();  // which ends the sessions
  SharedEngine& shared = Shared();
  const std::lock_guard lock(shared.mutex);
  shared.engines.pop_back();
}

DWORD WaitForWriteLock(LockedEngine& locked, HANDLE engineHandle) {
  Engine& engine = locked.engine;
  const auto isOver = [&] {
    const Session* session = engine.FindSession(engineHandle);
    return session == nullptr || engine.MayWrite(*session);
  };
  bool isFree = true;
  if (const Session* session = engine.FindSession(engineHandle); session != nullptr) {
    const UINT32 patience = engine.LockWaitMilliseconds(*session);
    if (patience == INFINITE) {
      locked.answered.wait(locked.lock, isOver);
    } else {
      isFree = locked.answered.wait_for(locked.lock, std::chrono::milliseconds(patience), isOver);
    }
  }
  Session* const session = engine.FindSession(engineHandle);
  if (session == nullptr) {
    return engine.InvalidHandleCode();
  }
  if (std::exchange(session->transactionExpired, false)) {
    return static_cast<DWORD>(FWP_E_TXN_ABORTED);
  }
  if (!isFree) {
    engine.lastRefusal = "another session's transaction holds the write lock";
  }
  return isFree ? ERROR_SUCCESS : static_cast<DWORD>(FWP_E_TIMEOUT);
}

}  // namespace EngineEmulator
