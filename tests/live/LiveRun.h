/**
 * @file
 * How this run reaches the engine that it tests.
 */
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "e2e/tool/ToolRun.h"

/// Set once, by main.
struct LiveRun {
  bool isEmulated = false;       ///< the emulator stands in for the system's engine
  std::filesystem::path folder;  ///< for dumps of this run
  std::filesystem::path start;   ///< what the stand-in begins with

  static LiveRun& Get();

  /// Runs the tool on the engine under test. Its rules vanish when it ends.
  [[nodiscard]] ToolRun OnTheEngine(std::vector<std::wstring> steps) const;
  /// Runs the tool on an emulated engine that begins with a dump.
  static ToolRun OnAnEmulatedOne(const std::filesystem::path& dump, std::vector<std::wstring> steps);
  /// The client library of the engine under test.
  [[nodiscard]] std::filesystem::path ClientLibrary() const;
  static std::filesystem::path EmulatedClientLibrary();
};
