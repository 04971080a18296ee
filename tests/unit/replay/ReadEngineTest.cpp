#include "replay/ReadEngine.h"

#include <gtest/gtest.h>

#include "MachineState.h"
#include "dump/ReadDump.h"
#include "dump/WriteDump.h"
#include "emulator/Control.h"
#include "replay/FillEngine.h"

namespace {

using Replay::EngineError;
using Replay::FillEngine;
using Replay::FlagsToAdd;
using Replay::LinkedEngine;
using Replay::ReadEngine;

class Engines : public testing::Test {
 protected:
  void SetUp() override { EngineEmulator::Reset(); }
  void TearDown() override {
    const EngineEmulator::Outstanding outstanding = EngineEmulator::CountOutstanding();
    EXPECT_EQ(outstanding.sessions, 0u);
    EXPECT_EQ(outstanding.memoryBlocks, 0u);
    EXPECT_EQ(outstanding.enumHandles, 0u);
    EngineEmulator::Reset();
  }
};

TEST_F(Engines, AreReadWithTheirLayersAndBuiltInObjects) {
  const Replay::EngineContents contents = ReadEngine(LinkedEngine());
  EXPECT_EQ(contents.state.kind, Dump::DumpKind::State);
  EXPECT_EQ(contents.state.layers.size(), 99u);
  EXPECT_EQ(contents.state.subLayers.size(), 18u);
  EXPECT_EQ(contents.state.filters.size(), 0u);
}

TEST_F(Engines, AreReadInPages) {
  MachineState machine;
  for (UINT64 id = 1; id <= 2048; ++id) {
    machine.Add({.id = id, .effectiveWeight = 0});
  }
  FillEngine(LinkedEngine(), machine.State(), FlagsToAdd::AllButDisabled, EngineEmulator::LastRefusal);
  EXPECT_EQ(ReadEngine(LinkedEngine()).state.filters.size(), 2048u);
}

TEST_F(Engines, GiveTheSameObjectsWhenTheirDumpIsRead) {
  MachineState machine;
  machine.AddSublayer(kOurs, 9);
  machine.Add({.id = 1, .effectiveWeight = 0, .remotePort = 443, .sublayerKey = kOurs});
  FillEngine(LinkedEngine(), machine.State(), FlagsToAdd::AllButDisabled, EngineEmulator::LastRefusal);
  const std::string dump = Dump::WriteDump(ReadEngine(LinkedEngine()).state);
  const Dump::EngineState read = Dump::ReadDump(dump, "m.xml");
  ASSERT_EQ(read.filters.size(), 1u);
  EXPECT_EQ(*read.filters[0].effectiveWeight.uint64, 0x0000038000000000u);
  EXPECT_EQ(read.filters[0].filterCondition[0].conditionValue.uint16, 443u);
  EXPECT_EQ(read.subLayers.size(), 19u);
  EXPECT_EQ(Dump::WriteDump(read), dump);
}

TEST_F(Engines, TellWhichCallFailed) {
  EngineEmulator::FailCall("FwpmSubLayerEnum0", 1, ERROR_ACCESS_DENIED);
  try {
    ReadEngine(LinkedEngine());
    FAIL() << "no error";
  } catch (const EngineError& error) {
    EXPECT_EQ(error.Code(), 5u);
    EXPECT_STREQ(error.what(), "FwpmSubLayerEnum0 failed: ERROR_ACCESS_DENIED (0x00000005)");
  }
}

TEST_F(Engines, AreLeftAsTheyWereWhenFillingThemFails) {
  MachineState machine;
  machine.Add({.id = 1, .effectiveWeight = 0});
  EngineEmulator::FailCall("FwpmTransactionCommit0", 1, ERROR_ACCESS_DENIED);
  EXPECT_THROW(
      FillEngine(LinkedEngine(), machine.State(), FlagsToAdd::AllButDisabled, EngineEmulator::LastRefusal),
      EngineError);
  EXPECT_TRUE(EngineEmulator::TakeSnapshot().filters.empty());
}

TEST_F(Engines, ThatCannotBeOpenedAreNotFilled) {
  EngineEmulator::FailCall("FwpmEngineOpen0", 1, ERROR_ACCESS_DENIED);
  EXPECT_THROW(FillEngine(LinkedEngine(), MachineState().State(), FlagsToAdd::AllButDisabled,
                          EngineEmulator::LastRefusal),
               EngineError);
}

}  // namespace
