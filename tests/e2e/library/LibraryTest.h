#pragma once

#include <gmock/gmock.h>

#include <optional>
#include <set>

#include "EmulatedEngine.h"
#include "FirewallLibrary.h"
#include "support/RuleSetKeys.h"

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
  [[nodiscard]] std::uint64_t DisableInternet() const;

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
