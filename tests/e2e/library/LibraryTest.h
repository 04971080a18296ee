#pragma once

#include <gmock/gmock.h>

#include <optional>
#include <set>

#include "EmulatedEngine.h"
#include "FirewallLibrary.h"

constexpr GUID kProviderKey{0xc0de0000, 0x0001, 0x4001, {0x80, 0, 0, 0, 0, 0, 0, 1}};
constexpr GUID kKillSwitchKey{0xc0de0000, 0x0002, 0x4002, {0x80, 0, 0, 0, 0, 0, 0, 2}};
constexpr GUID kLocalNetworkKey{0xc0de0000, 0x0003, 0x4003, {0x80, 0, 0, 0, 0, 0, 0, 3}};
constexpr GUID kDhcpKey{0xc0de0000, 0x0004, 0x4004, {0x80, 0, 0, 0, 0, 0, 0, 4}};
constexpr GUID kDnsLeakKey{0xc0de0000, 0x0005, 0x4005, {0x80, 0, 0, 0, 0, 0, 0, 5}};
constexpr GUID kInterfaceLeakKey{0xc0de0000, 0x0006, 0x4006, {0x80, 0, 0, 0, 0, 0, 0, 6}};
constexpr GUID kFirewallCopyKey{0xc0de0000, 0x0007, 0x4007, {0x80, 0, 0, 0, 0, 0, 0, 7}};
constexpr GUID kSkeinKey{0xc0de0000, 0x0008, 0x4008, {0x80, 0, 0, 0, 0, 0, 0, 8}};

/// The DLL freshly loaded, with a fresh engine.
class LibraryTest : public testing::Test {
 protected:
  LibraryTest();
  void TearDown() override;

  /// Calls Initialize with the keys above, each with a name and a description of its own.
  void Initialize() const;
  /// The blocks of engine memory that remain at the end of this test: the library never frees the list of
  /// filters that its copy of application blocks points into.
  void ExpectOutstandingMemory(std::size_t blocks) { memoryBlocks_ = blocks; }
  /// DisableInternet without apps and interface names.
  std::uint64_t DisableInternet() const;

  /// The log callback that the tests give to commands.
  static std::uint64_t CORVANE_CALL Log(const char* line);
  /// The lines logged since the last call.
  static Texts TakeLog();
  /// The threads that have called the callback since the test began.
  static std::set<DWORD> LoggingThreads();

  EmulatedEngine& engine_;
  std::optional<FirewallLibrary> library_;

 private:
  std::size_t memoryBlocks_ = 0;
};
