#pragma once

#include <WfpPlatform.h>

#include <cstdint>
#include <string>
#include <vector>

#include "corvane/native_firewall.h"
#include "support/EngineTest.h"

constexpr GUID kProviderKey{0xc0de0000, 0x0001, 0x4001, {0x80, 0, 0, 0, 0, 0, 0, 1}};
constexpr GUID kKillSwitchKey{0xc0de0000, 0x0002, 0x4002, {0x80, 0, 0, 0, 0, 0, 0, 2}};
constexpr GUID kLocalNetworkKey{0xc0de0000, 0x0003, 0x4003, {0x80, 0, 0, 0, 0, 0, 0, 3}};
constexpr GUID kDhcpKey{0xc0de0000, 0x0004, 0x4004, {0x80, 0, 0, 0, 0, 0, 0, 4}};
constexpr GUID kDnsLeakKey{0xc0de0000, 0x0005, 0x4005, {0x80, 0, 0, 0, 0, 0, 0, 5}};
constexpr GUID kInterfaceLeakKey{0xc0de0000, 0x0006, 0x4006, {0x80, 0, 0, 0, 0, 0, 0, 6}};
constexpr GUID kFirewallCopyKey{0xc0de0000, 0x0007, 0x4007, {0x80, 0, 0, 0, 0, 0, 0, 7}};
constexpr GUID kSkeinKey{0xc0de0000, 0x0008, 0x4008, {0x80, 0, 0, 0, 0, 0, 0, 8}};

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
