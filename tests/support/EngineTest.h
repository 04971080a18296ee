/**
 * @file
 * The fixture of tests that use the emulated engine.
 */
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

/// Starts each test with a fresh engine. At its end all sessions, transactions, enumerations and memory of
/// the engine must be given back.
class EngineTest : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  /// The blocks of engine memory that remain at the end of this test. The library never frees the record of a
  /// provider that it found, nor the list of filters that its copy of application blocks points into.
  void ExpectOutstandingMemory(std::size_t blocks) { memoryBlocks_ = blocks; }
  void ExpectOpenSessions(std::size_t sessions) { sessions_ = sessions; }

  /// The functions called so far, oldest first.
  static std::vector<std::string> Calls();

  /// The filters in the engine, in the order of adding.
  static std::vector<std::string> FilterTexts();

 private:
  std::size_t memoryBlocks_ = 0;
  std::size_t sessions_ = 0;
};
