#pragma once

#include <WfpPlatform.h>

#include <cstdint>
#include <string>
#include <vector>

#include "corvane/native_firewall.h"
#include "support/EngineTest.h"
#include "support/RuleSetKeys.h"

using Texts = std::vector<std::string>;

/// The state of a process that has just loaded the library, with a fresh engine and a machine without network
/// adapters.
class ModuleTest : public EngineTest {
 protected:
  void SetUp() override;
  void TearDown() override;

  /// Calls Initialize with the keys above, each with a name and a description of its own.
  static void InitializeModule();

  /// The log callback that the tests give to commands.
  static std::uint64_t CORVANE_CALL Log(const char* line);
  /// The lines logged since the last call.
  static Texts TakeLog();

  /// The engine's functions called since the last call, in order; a run of n > 1 calls of one function
  /// is a single "Function x n".
  static Texts TakeCalls();
};

/// As ModuleTest, after Initialize.
class InitializedModuleTest : public ModuleTest {
 protected:
  void SetUp() override;
};

/// A code of an engine call, with the result of the command and the text in the log that it leads to.
struct CodeExample {
  DWORD code;
  std::uint64_t result;
  const char* logged;
};

/// One code each of the engine, of RPC and of Win32.
constexpr CodeExample kCodeExamples[]{
    {0x80320010, 2150760464, "-2144206832"}, {1753, 1753, "1753"}, {5, 5, "5"}};
