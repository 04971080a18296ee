#include "replay/Replay.h"

#include <gtest/gtest.h>

#include "MachineState.h"
#include "emulator/Control.h"
#include "replay/FillEngine.h"
#include "replay/ReadEngine.h"

namespace {

using Catalog::WindowsVersion;
using Dump::DumpKind;
using Replay::Agreement;
using Replay::ReplayIntoEmulator;

/// What Windows 11 24H2 gives a filter with a remote port at ALE_AUTH_CONNECT_V4, and Windows 11 before.
constexpr UINT64 kPortWeight = 0x0000038000000000;
constexpr UINT64 kOlderPortWeight = 0x000001c000000000;

TEST(Replay, AgreesWithAMachineOfItsVersion) {
  MachineState machine;
  machine.Add({.id = 70001, .effectiveWeight = 0});
  machine.Add({.id = 70002, .effectiveWeight = kPortWeight, .remotePort = 443});
  machine.AddSublayer(kUniversalSublayer, 32768);
  machine.AddSublayer(kOurs, 65535);
  const Agreement agreement = ReplayIntoEmulator(machine.State());
  EXPECT_EQ(agreement.filters, 2u);
  EXPECT_EQ(agreement.accepted, 2u);
  EXPECT_TRUE(agreement.refusals.empty());
  EXPECT_EQ(agreement.automaticWeights, 2u);
  EXPECT_EQ(agreement.equalWeights, 2u);
  EXPECT_EQ(agreement.orderedPairs, 1u);
  EXPECT_EQ(agreement.sameOrder, 1u);
  EXPECT_EQ(agreement.sublayers, 2u);
  EXPECT_EQ(agreement.equalSublayers, 2u);
  EXPECT_EQ(agreement.windows, WindowsVersion::Windows24H2);
}

TEST(Replay, InfersTheVersionThatGivesTheWeights) {
  MachineState machine(DumpKind::Filters);
  machine.Add({.id = 70001, .effectiveWeight = kOlderPortWeight, .remotePort = 443});
  const Agreement agreement = ReplayIntoEmulator(machine.State());
  EXPECT_EQ(agreement.windows, WindowsVersion::Windows11);
  EXPECT_EQ(agreement.equalWeights, 1u);
}

TEST(Replay, CountsWeightsThatDiffer) {
  MachineState machine;
  machine.Add({.id = 70001, .effectiveWeight = 4711, .remotePort = 443});
  machine.Add({.id = 70002, .effectiveWeight = kPortWeight, .remotePort = 80});
  const Agreement agreement = ReplayIntoEmulator(machine.State());
  EXPECT_EQ(agreement.automaticWeights, 2u);
  EXPECT_EQ(agreement.equalWeights, 1u);
}

TEST(Replay, CountsARangeOfWeightsAsAutomaticAndAGivenWeightNot) {
  MachineState machine;
  FWPM_FILTER0& inRange = machine.Add({.id = 70001, .effectiveWeight = 0xf000038000000000, .remotePort = 53});
  inRange.weight.type = FWP_UINT8;
  inRange.weight.uint8 = 15;
  UINT64 given = 9;
  FWPM_FILTER0& exact = machine.Add({.id = 70002, .effectiveWeight = 9});
  exact.weight.type = FWP_UINT64;
  exact.weight.uint64 = &given;
  const Agreement agreement = ReplayIntoEmulator(machine.State());
  EXPECT_EQ(agreement.accepted, 2u);
  EXPECT_EQ(agreement.automaticWeights, 1u);
  EXPECT_EQ(agreement.equalWeights, 1u);
}

TEST(Replay, CountsPairsInAnotherOrder) {
  MachineState machine;
  // The emulated engine gives 0, 0 and that of a port.
  machine.Add({.id = 70001, .effectiveWeight = 5});
  machine.Add({.id = 70002, .effectiveWeight = 4});
  machine.Add({.id = 70003, .effectiveWeight = 6, .remotePort = 443});
  const Agreement agreement = ReplayIntoEmulator(machine.State());
  EXPECT_EQ(agreement.orderedPairs, 3u);
  EXPECT_EQ(agreement.sameOrder, 2u);
}

TEST(Replay, PutsTheNewestOfEqualsFirstInWhateverOrderTheyAreListed) {
  MachineState machine;
  machine.Add({.id = 70002, .effectiveWeight = 5, .remotePort = 443});
  machine.Add({.id = 70001, .effectiveWeight = 5, .remotePort = 80});
  const Agreement agreement = ReplayIntoEmulator(machine.State());
  EXPECT_EQ(agreement.sameOrder, 1u);
}

TEST(Replay, ComparesNoPairsOfDifferentSublayers) {
  MachineState machine;
  machine.AddSublayer(kOurs, 9);
  machine.Add({.id = 70001, .effectiveWeight = 0});
  machine.Add({.id = 70002, .effectiveWeight = 0, .sublayerKey = kOurs});
  EXPECT_EQ(ReplayIntoEmulator(machine.State()).orderedPairs, 0u);
}

TEST(Replay, TellsWhyFiltersAreRefused) {
  constexpr GUID kNoLayer{0xdddd0000, 0, 0, {}};
  MachineState machine;
  machine.Add({.id = 1, .effectiveWeight = 0, .layerKey = kNoLayer});
  machine.Add({.id = 2, .effectiveWeight = 0, .sublayerKey = kOurs});
  machine.Add({.id = 3, .effectiveWeight = 0, .layerKey = kNoLayer});
  machine.Add({.id = 4, .effectiveWeight = 0});
  const Agreement agreement = ReplayIntoEmulator(machine.State());
  EXPECT_EQ(agreement.filters, 4u);
  EXPECT_EQ(agreement.accepted, 1u);
  EXPECT_EQ(agreement.automaticWeights, 4u);
  EXPECT_EQ(agreement.equalWeights, 1u);
  ASSERT_EQ(agreement.refusals.size(), 2u);
  EXPECT_EQ(agreement.refusals[0].reason, "FWP_E_LAYER_NOT_FOUND (0x80320004)");
  EXPECT_EQ(agreement.refusals[0].count, 2u);
  EXPECT_EQ(agreement.refusals[0].example,
            "filter {00000001-0000-0000-0000-000000000000} \"Filter 1\": "
            "the layer dddd0000-0000-0000-0000-000000000000 does not exist");
  EXPECT_EQ(agreement.refusals[1].reason, "FWP_E_SUBLAYER_NOT_FOUND (0x80320007)");
  EXPECT_EQ(agreement.refusals[1].count, 1u);
}

TEST(Replay, CountsSublayersOfOtherWeights) {
  MachineState machine;
  machine.AddSublayer(kUniversalSublayer, 4711);
  machine.AddSublayer(kOurs, 65535);
  const Agreement agreement = ReplayIntoEmulator(machine.State());
  EXPECT_EQ(agreement.sublayers, 2u);
  EXPECT_EQ(agreement.equalSublayers, 1u);
}

/// A persistent filter that names a provider, a sublayer, a callout and a provider context.
void AddFilterThatNamesAll(MachineState& machine) {
  constexpr GUID kProvider{0xbbbb0000, 0, 0, {}};
  constexpr UINT32 kFlags = FWPM_FILTER_FLAG_PERSISTENT | FWPM_FILTER_FLAG_HAS_PROVIDER_CONTEXT;
  FWPM_FILTER0& filter = machine.Add(
      {.id = 70001, .effectiveWeight = 0, .sublayerKey = kOurs, .providerKey = kProvider, .flags = kFlags});
  filter.action.type = FWP_ACTION_CALLOUT_TERMINATING;
  filter.action.calloutKey = {0xcccc0000, 0, 0, {}};
  filter.providerContextKey = {0xeeee0000, 0, 0, {}};
}

TEST(Replay, TakesWhatADumpOfTheFiltersLacksAsBeingThere) {
  MachineState machine(DumpKind::Filters);
  AddFilterThatNamesAll(machine);
  const Agreement agreement = ReplayIntoEmulator(machine.State());
  EXPECT_EQ(agreement.accepted, 1u);
  EXPECT_TRUE(agreement.refusals.empty());
  EXPECT_EQ(agreement.sublayers, 0u);
}

TEST(Replay, PutsLastingFiltersIntoASublayerOfTheirProvider) {
  constexpr GUID kProvider{0xbbbb0000, 0, 0, {}};
  MachineState machine(DumpKind::Filters);
  machine.Add({.id = 70001, .effectiveWeight = 0, .sublayerKey = kOurs});
  machine.Add({.id = 70002,
               .effectiveWeight = 0,
               .sublayerKey = kOurs,
               .providerKey = kProvider,
               .flags = FWPM_FILTER_FLAG_BOOTTIME});
  EXPECT_EQ(ReplayIntoEmulator(machine.State()).accepted, 2u);
}

TEST(Replay, MissesWhatADumpOfTheStateLacks) {
  MachineState machine(DumpKind::State);
  AddFilterThatNamesAll(machine);
  const Agreement agreement = ReplayIntoEmulator(machine.State());
  EXPECT_EQ(agreement.accepted, 0u);
  ASSERT_EQ(agreement.refusals.size(), 1u);
  EXPECT_EQ(agreement.refusals[0].reason, "FWP_E_SUBLAYER_NOT_FOUND (0x80320007)");
}

TEST(Replay, TakesFlagsThatOnlyEnginesSet) {
  constexpr UINT32 kFlags = 0x8060;  // DISABLED, INDEXED and one without a name
  MachineState machine;
  machine.AddProvider(kOurs, FWPM_PROVIDER_FLAG_PERSISTENT | FWPM_PROVIDER_FLAG_DISABLED);
  machine.Add({.id = 70001, .effectiveWeight = 0, .providerKey = kOurs, .flags = kFlags});
  const Agreement agreement = ReplayIntoEmulator(machine.State());
  EXPECT_TRUE(agreement.refusals.empty());
  EXPECT_EQ(agreement.accepted, 1u);
}

TEST(Replay, OfTheEmulatedEngineItselfLeavesItAsItIs) {
  EngineEmulator::Reset();
  MachineState machine;
  machine.AddSublayer(kOurs, 9);
  machine.Add({.id = 70001, .effectiveWeight = 0, .remotePort = 443, .sublayerKey = kOurs});
  FillEngine(Replay::LinkedEngine(), machine.State(), Replay::FlagsToAdd::All, EngineEmulator::LastRefusal);
  {
    const Replay::EngineContents contents = ReadEngine(Replay::LinkedEngine());
    const Agreement agreement = ReplayIntoEmulator(contents.state);
    EXPECT_EQ(agreement.accepted, 1u);
    EXPECT_EQ(agreement.equalWeights, 1u);
  }
  EXPECT_EQ(EngineEmulator::TakeSnapshot().filters.size(), 1u);
  EXPECT_EQ(EngineEmulator::TakeSnapshot().sublayers.size(), 1u);
  EXPECT_EQ(EngineEmulator::CountOutstanding().memoryBlocks, 0u);
  EngineEmulator::Reset();
}

TEST(Replay, AgreesOnNothing) {
  const Agreement agreement = ReplayIntoEmulator(MachineState().State());
  EXPECT_EQ(agreement.filters, 0u);
  EXPECT_EQ(agreement.sameOrder, 0u);
  EXPECT_EQ(agreement.windows, WindowsVersion::Windows24H2);
}

}  // namespace
