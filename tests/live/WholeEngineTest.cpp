// What everybody has put into the engine under test.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "live/LiveRun.h"

namespace {

using Json = nlohmann::json;

TEST(WholeEngine, IsHeldByAFreshEmulatorInTheSameOrder) {
  const ToolRun run = LiveRun::Get().OnTheEngine({L"--json", L"replay"});
  ASSERT_EQ(run.exitCode, 0u) << run.output << run.errors;
  const Json replay = Json::parse(run.output).at("steps").back();
  RecordProperty("windows", replay.at("windows").get<std::string>());
  EXPECT_GT(replay.at("sublayers"), 0);
  EXPECT_EQ(replay.at("accepted"), replay.at("filters"));
  EXPECT_EQ(replay.at("refusals"), Json::array());
  EXPECT_EQ(replay.at("equalWeights"), replay.at("automaticWeights"));
  EXPECT_EQ(replay.at("sameOrder"), replay.at("orderedPairs"));
  EXPECT_EQ(replay.at("equalSublayers"), replay.at("sublayers"));
}

TEST(WholeEngine, SettlesEachAssumptionButThatOnDrivers) {
  const ToolRun run = LiveRun::Get().OnTheEngine({L"--json", L"calibrate"});
  ASSERT_EQ(run.exitCode, 0u) << run.output << run.errors;
  const Json calibration = Json::parse(run.output).at("steps").back().at("calibration");
  EXPECT_EQ(calibration.at("simulated"), LiveRun::Get().isEmulated);
  std::vector<std::string> settled;
  for (const Json& assumption : calibration.at("assumptions")) {
    if (assumption.at("reading").is_string()) {
      settled.push_back(assumption.at("name"));
      RecordProperty(settled.back(), assumption.at("reading").get<std::string>());
    }
  }
  EXPECT_THAT(settled, testing::ElementsAre("filter-ties", "several-negations", "unset-fields",
                                            "static-block-below-hard-permit", "loopback-bits",
                                            "flow-established-blocks"))
      << calibration.dump(2);
}

TEST(WholeEngine, TellsWhatItRemembersOfDrops) {
  const ToolRun run = LiveRun::Get().OnTheEngine({L"watch", L"--last"});
  EXPECT_EQ(run.exitCode, 0u) << run.output << run.errors;
}

}  // namespace
