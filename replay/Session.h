/**
 * @file
 * A session with an engine.
 */
#pragma once

#include <memory>

#include "replay/EngineCalls.h"

namespace Replay {

/// A session with a transaction, which ends with it: what was not committed is undone.
class Session {
 public:
  /// @param engine must live longer.
  /// @param flags 0 or FWPM_TXN_READ_ONLY.
  /// @throws EngineError
  Session(const EngineCalls& engine, UINT32 flags);

  [[nodiscard]] HANDLE Handle() const { return handle_.get(); }

  /// @throws EngineError
  void Commit();

 private:
  const EngineCalls& engine_;
  std::unique_ptr<void, decltype(EngineCalls::FwpmEngineClose0)> handle_;
  std::unique_ptr<void, decltype(EngineCalls::FwpmTransactionAbort0)> transaction_;
};

}  // namespace Replay
