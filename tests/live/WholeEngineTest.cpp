// What everybody has put into the engine under test.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

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

}  // namespace
