#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "LoadedModule.h"
#include "emulator/ControlExports.h"

using Texts = std::vector<std::string>;

/// The emulated engine, loaded under the name of the platform's client library. The loader binds to it
/// everything that is loaded afterwards.
class EmulatedEngine {
  LoadedModule module_;

 public:
  static EmulatedEngine& Get();

  const decltype(&EngineEmulatorReset) Reset;
  const decltype(&EngineEmulatorFailCall) FailCall;
  const decltype(&EngineEmulatorClearJournal) ClearJournal;
  const decltype(&EngineEmulatorPretendFileExists) PretendFileExists;

  /// The functions called so far, oldest first.
  [[nodiscard]] Texts Journal() const;
  /// One line for each object that a client added.
  [[nodiscard]] Texts Snapshot() const;
  /// The lines of the snapshot that are about filters.
  [[nodiscard]] Texts Filters() const;
  [[nodiscard]] EngineEmulatorOutstanding CountOutstanding() const;

  /// Adds a sublayer for another program, which is removed when the result is destroyed.
  [[nodiscard]] std::shared_ptr<void> OccupySublayer(const GUID& key) const;

 private:
  EmulatedEngine();
};
