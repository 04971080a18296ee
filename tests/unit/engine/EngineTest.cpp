#include "engine/Engine.h"

#include <gmock/gmock.h>

#include <memory>

#include "emulator/Control.h"
#include "support/EngineTest.h"
#include "unit/engine/FailsWith.h"
#include "unit/engine/Samples.h"

namespace WfpFirewall {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

class OpenEngineTest : public EngineTest {};

TEST_F(OpenEngineTest, OpensOneSessionAndNothingElse) {
  const std::shared_ptr<void> session = Engine::OpenEngine();
  EXPECT_NE(session, nullptr);
  EXPECT_THAT(Calls(), ElementsAre("FwpmEngineOpen0"));
  EXPECT_EQ(EngineEmulator::CountOutstanding().sessions, 1u);
}

TEST_F(OpenEngineTest, ClosesWithTheLastOwner) {
  std::shared_ptr<void> session = Engine::OpenEngine();
  std::shared_ptr<void> copy = session;
  session.reset();
  EXPECT_EQ(EngineEmulator::CountOutstanding().sessions, 1u);
  copy.reset();
  EXPECT_THAT(Calls(), ElementsAre("FwpmEngineOpen0", "FwpmEngineClose0"));
  EXPECT_EQ(EngineEmulator::CountOutstanding().sessions, 0u);
}

TEST_F(OpenEngineTest, SessionIsDynamic) {
  std::shared_ptr<void> session = Engine::OpenEngine();
  Samples::Empty(Samples::kFirstKey).Apply(session.get(), Samples::MakeProvider());
  ASSERT_THAT(EngineEmulator::TakeSnapshot().sublayers, SizeIs(1));
  session.reset();
  EXPECT_THAT(EngineEmulator::TakeSnapshot().sublayers, SizeIs(0));
}

TEST_F(OpenEngineTest, EachCallOpensASessionOfItsOwn) {
  const std::shared_ptr<void> first = Engine::OpenEngine();
  const std::shared_ptr<void> second = Engine::OpenEngine();
  EXPECT_NE(first, second);
  EXPECT_EQ(EngineEmulator::CountOutstanding().sessions, 2u);
}

TEST_F(OpenEngineTest, FailureCarriesTheEnginesCode) {
  for (const DWORD code : {DWORD{5}, DWORD{1753}, DWORD{0x80320010}}) {
    EngineEmulator::FailCall("FwpmEngineOpen0", 1, code);
    EXPECT_THAT([] { Engine::OpenEngine(); }, FailsWith("Error opening engine.", code));
  }
  EXPECT_EQ(EngineEmulator::CountOutstanding().sessions, 0u);
}

}  // namespace
}  // namespace WfpFirewall
