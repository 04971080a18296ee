#include "emulator/EntryPoint.h"

namespace EngineEmulator {
namespace {

struct SharedEngine {
  std::mutex mutex;
  std::optional<Engine> engine{std::in_place};
};

/// Never destroyed: static objects of clients still call the engine while their process ends.
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
  return {std::unique_lock(shared.mutex), *shared.engine};
}

void ResetEngine() {
  SharedEngine& shared = Shared();
  const std::lock_guard lock(shared.mutex);
  shared.engine.emplace();
}

}  // namespace EngineEmulator
