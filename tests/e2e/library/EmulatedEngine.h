#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "LoadedModule.h"
#include "emulator/ControlExports.h"

using Texts = std::vector<std::string>;

/// The emulated engine, loaded in the place of the platform's client library: the loader binds what is
/// loaded afterwards to it.
class EmulatedEngine {
  LoadedModule module_;

 public:
  static EmulatedEngine& Get();

  const decltype(&EngineEmulatorReset) Reset;
  const decltype(&EngineEmulatorFailCall) FailCall;
  const decltype(&EngineEmulatorClearJournal) ClearJournal;
  const decltype(&EngineEmulatorPretendFileExists) PretendFileExists;

  /// The functions called.
  [[nodiscard]] Texts Journal() const;
  /// One line for each object that clients added.
  [[nodiscard]] Texts Snapshot() const;
  /// The lines of the snapshot that tell of filters.
  [[nodiscard]] Texts Filters() const;
  [[nodiscard]] EngineEmulatorOutstanding CountOutstanding() const;

  /// Adds a sublayer of another program, which has it as long as the result lives.
  [[nodiscard]] std::shared_ptr<void> OccupySublayer(const GUID& key) const;

 private:
  EmulatedEngine();
};
