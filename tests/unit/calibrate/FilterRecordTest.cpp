// Whatever an experiment installs names this program and its own port, and goes with the session.
#include "calibrate/FilterRecord.h"

#include <algorithm>
#include <set>
#include <vector>

#include "calibrate/Bench.h"
#include "calibrate/Experiment.h"
#include "catalog/Keys.h"
#include "unit/calibrate/CalibrateTest.h"

namespace {

using Calibrate::Experiment;

class FilterRecordTest : public CalibrateTest {
 protected:
  static std::vector<const Calibrate::Rule*> AllRules() {
    std::vector<const Calibrate::Rule*> rules;
    const auto add = [&rules](const Calibrate::Trial& trial) {
      for (const Calibrate::Case& tried : trial.cases) {
        for (const Calibrate::Rule& rule : tried.rules) {
          rules.push_back(&rule);
        }
      }
    };
    add(Calibrate::Controls());
    add(Calibrate::AcceptControls());
    for (const Experiment& experiment : Calibrate::Experiments()) {
      std::ranges::for_each(experiment.trials, add);
    }
    return rules;
  }

  static std::size_t Count(const FWPM_FILTER0& filter, const GUID& field, FWP_MATCH_TYPE match) {
    return static_cast<std::size_t>(
        std::count_if(filter.filterCondition, filter.filterCondition + filter.numFilterConditions,
                      [&](const FWPM_FILTER_CONDITION0& condition) {
                        return condition.fieldKey == field && condition.matchType == match;
                      }));
  }
};

TEST_F(FilterRecordTest, EveryFilterNamesThisProgramAndItsPort) {
  const std::string application = Application();
  EXPECT_EQ(AllRules().size(), 94U);
  for (const Calibrate::Rule* rule : AllRules()) {
    for (const Calibrate::Path& path : Calibrate::kAllPaths) {
      const Calibrate::FilterRecord record(*rule, {application, path, 50001}, Calibrate::kUpperKey);
      const FWPM_FILTER0& filter = record.Get();
      EXPECT_EQ(Count(filter, Catalog::kAleAppIdFieldKey, FWP_MATCH_EQUAL), 1U);
      EXPECT_EQ(Count(filter, Catalog::kIpLocalPortFieldKey, FWP_MATCH_EQUAL) +
                    Count(filter, Catalog::kIpRemotePortFieldKey, FWP_MATCH_EQUAL),
                1U);
      EXPECT_EQ(filter.flags & ~UINT32{FWPM_FILTER_FLAG_CLEAR_ACTION_RIGHT}, 0U);
      EXPECT_TRUE(*filter.providerKey == Calibrate::kProviderKey);
    }
  }
}

TEST_F(FilterRecordTest, ConditionsSayWhatIsMeant) {
  using Calibrate::Operand;
  using Calibrate::Place;
  static constexpr Calibrate::Extra kNegations[]{
      {Catalog::kIpRemoteAddressFieldKey, FWP_MATCH_NOT_EQUAL, Operand::OwnAddress},
      {Catalog::kIpRemoteAddressFieldKey, FWP_MATCH_NOT_EQUAL, Operand::OtherAddress}};
  static constexpr Calibrate::Extra kAnyInterface[]{
      {Catalog::kIpArrivalInterfaceFieldKey, FWP_MATCH_RANGE, Operand::AnyNumber},
      {Catalog::kIpProtocolFieldKey, FWP_MATCH_NOT_EQUAL, Operand::OtherProtocol}};
  static constexpr Calibrate::Rule kRules[]{
      {},
      {.place = Place::Accept, .action = Policy::Action::Permit, .isHard = true},
      {.place = Place::FlowIn},
      {.place = Place::FlowOut},
      {.extras = kNegations, .areApart = true},
      {.extras = kAnyInterface},
  };
  const Calibrate::EngineCalls engine = Calibrate::LinkedEngine();
  const Calibrate::Bench bench(engine, std::string("a\0\0\0", 4));
  const Calibrate::Bench::Installed installed = bench.Install(kRules, Calibrate::kUdpV4, 50001);
  EXPECT_THAT(
      FilterTexts(),
      testing::ElementsAre(
          "ALE_AUTH_CONNECT_V4 | BLOCK | UINT64 1000 | - | ALE_APP_ID EQUAL BYTE_BLOB a & IP_REMOTE_PORT "
          "EQUAL UINT16 50001 & IP_PROTOCOL EQUAL UINT8 17 & IP_REMOTE_ADDRESS EQUAL UINT32 127.0.0.1",
          "ALE_AUTH_RECV_ACCEPT_V4 | PERMIT | UINT64 1000 | CLEAR_ACTION_RIGHT | ALE_APP_ID EQUAL BYTE_BLOB "
          "a & IP_LOCAL_PORT EQUAL UINT16 50001 & IP_PROTOCOL EQUAL UINT8 17 & IP_REMOTE_ADDRESS EQUAL "
          "UINT32 127.0.0.1",
          "ALE_FLOW_ESTABLISHED_V4 | BLOCK | UINT64 1000 | - | ALE_APP_ID EQUAL BYTE_BLOB a & IP_LOCAL_PORT "
          "EQUAL UINT16 50001 & IP_PROTOCOL EQUAL UINT8 17 & DIRECTION EQUAL UINT32 1",
          "ALE_FLOW_ESTABLISHED_V4 | BLOCK | UINT64 1000 | - | ALE_APP_ID EQUAL BYTE_BLOB a & IP_REMOTE_PORT "
          "EQUAL UINT16 50001 & IP_PROTOCOL EQUAL UINT8 17 & DIRECTION EQUAL UINT32 0",
          "ALE_AUTH_CONNECT_V4 | BLOCK | UINT64 1000 | - | IP_REMOTE_ADDRESS NOT_EQUAL UINT32 127.0.0.1 & "
          "ALE_APP_ID EQUAL BYTE_BLOB a & IP_REMOTE_PORT EQUAL UINT16 50001 & IP_PROTOCOL EQUAL UINT8 17 & "
          "IP_REMOTE_ADDRESS NOT_EQUAL UINT32 127.0.0.2",
          "ALE_AUTH_CONNECT_V4 | BLOCK | UINT64 1000 | - | ALE_APP_ID EQUAL BYTE_BLOB a & IP_REMOTE_PORT "
          "EQUAL UINT16 50001 & IP_REMOTE_ADDRESS EQUAL UINT32 127.0.0.1 & IP_ARRIVAL_INTERFACE RANGE RANGE "
          "UINT64 0 to UINT64 18446744073709551615 & IP_PROTOCOL NOT_EQUAL UINT8 6"));
}

TEST_F(FilterRecordTest, AddressesOfIpV6AreOnesOwnAndTheNext) {
  static constexpr Calibrate::Extra kNext[]{
      {Catalog::kIpRemoteAddressFieldKey, FWP_MATCH_NOT_EQUAL, Calibrate::Operand::OtherAddress}};
  static constexpr Calibrate::Rule kRules[]{{}, {.extras = kNext}};
  const Calibrate::EngineCalls engine = Calibrate::LinkedEngine();
  const Calibrate::Bench bench(engine, std::string("a\0\0\0", 4));
  const Calibrate::Bench::Installed installed = bench.Install(kRules, Calibrate::kTcpV6, 50001);
  EXPECT_THAT(
      FilterTexts(),
      testing::ElementsAre(
          "ALE_AUTH_CONNECT_V6 | BLOCK | UINT64 1000 | - | ALE_APP_ID EQUAL BYTE_BLOB a & IP_REMOTE_PORT "
          "EQUAL UINT16 50001 & IP_PROTOCOL EQUAL UINT8 6 & IP_REMOTE_ADDRESS EQUAL BYTE_ARRAY16 ::1",
          "ALE_AUTH_CONNECT_V6 | BLOCK | UINT64 1000 | - | ALE_APP_ID EQUAL BYTE_BLOB a & IP_REMOTE_PORT "
          "EQUAL UINT16 50001 & IP_PROTOCOL EQUAL UINT8 6 & IP_REMOTE_ADDRESS NOT_EQUAL BYTE_ARRAY16 ::2"));
}

TEST_F(FilterRecordTest, AFilterThatFailsTakesTheOthersWithIt) {
  static constexpr Calibrate::Rule kRules[]{{}, {}};
  const Calibrate::EngineCalls engine = Calibrate::LinkedEngine();
  const Calibrate::Bench bench(engine, Application());
  for (const bool together : {false, true}) {
    EngineEmulator::FailCall("FwpmFilterAdd0", 2, FWP_E_TIMEOUT);
    EXPECT_THROW(static_cast<void>(bench.Install(kRules, Calibrate::kTcpV4, 50001, {.together = together})),
                 Calibrate::EngineError);
    EXPECT_THAT(FilterTexts(), testing::IsEmpty());
  }
}

}  // namespace
