#include "support/EngineTest.h"

#include "emulator/Control.h"

void EngineTest::SetUp() { EngineEmulator::Reset(); }

void EngineTest::TearDown() {
  const EngineEmulator::Outstanding outstanding = EngineEmulator::CountOutstanding();
  EXPECT_EQ(outstanding.sessions, sessions_) << "sessions not closed";
  EXPECT_EQ(outstanding.openTransactions, 0U) << "transactions neither committed nor aborted";
  EXPECT_EQ(outstanding.enumHandles, 0U) << "enumeration handles not destroyed";
  EXPECT_EQ(outstanding.memoryBlocks, memoryBlocks_) << "memory not freed";
}

std::vector<std::string> EngineTest::Calls() {
  std::vector<std::string> functions;
  for (const EngineEmulator::Call& call : EngineEmulator::Journal()) {
    functions.push_back(call.function);
  }
  return functions;
}

std::vector<std::string> EngineTest::FilterTexts() {
  std::vector<std::string> texts;
  for (const EngineEmulator::FilterObject& filter : EngineEmulator::TakeSnapshot().filters) {
    texts.push_back(filter.text);
  }
  return texts;
}
