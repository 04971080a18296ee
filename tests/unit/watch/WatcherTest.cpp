#include "watch/Watcher.h"

#include <functional>
#include <thread>

#include "emulator/Control.h"
#include "support/NetEventRecord.h"
#include "unit/policy/PolicyTest.h"
#include "unit/watch/Drops.h"
#include "watch/EventText.h"

namespace {

using EngineEmulator::RaiseEvent;
using testing::ElementsAre;
using Watch::EventCalls;

using Clock = std::chrono::steady_clock;

/// By then every test has seen what it waits for, or fails.
constexpr std::chrono::seconds kLongEnough{60};

constexpr const char* kUsualNote =
    "note: The engine does not record, as is usual: drops of inbound multicast, drops of inbound broadcast, "
    "drops for want of a capability, permitted connections.";

/// Writes down what it is told, a line each.
class Witness : public Watch::Audience {
 public:
  void Begin() override {
    if (onBegin) {
      onBegin();
    }
  }
  void Note(const std::string& text) override { lines.push_back("note: " + text); }
  void Tell(const Watch::Drop& drop) override {
    ++drops;
    lines.push_back('#' + std::to_string(drop.number) + ' ' + Watch::TimeText(drop.event.time) + ' ' +
                    std::to_string(drop.count) + ": " + drop.account.sentence);
    if (onDrop) {
      onDrop();
    }
  }
  void TellRepeats(const Watch::Group& group) override {
    lines.push_back('#' + std::to_string(group.number) + " again " + std::to_string(group.Untold()));
  }
  void End(const Watch::Totals& all) override { totals = all; }

  std::function<void()> onBegin;
  std::function<void()> onDrop;
  std::vector<std::string> lines;
  std::size_t drops = 0;
  std::optional<Watch::Totals> totals;
};

class WatcherTest : public PolicyTest {
 protected:
  void SetUp() override {
    PolicyTest::SetUp();
    Install(1, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | -");
    filterId_ = Read().filters.at(0).id;
  }
  void TearDown() override {
    if (raising_.joinable()) {
      raising_.join();
    }
    EXPECT_EQ(EngineEmulator::CountOutstanding().subscriptions, 0u);
    PolicyTest::TearDown();
  }

  /// A drop by the installed filter; each port of the other end makes another one.
  [[nodiscard]] NetEventRecord DropTo(UINT16 port) const {
    NetEventRecord record = NetEventRecord::Drop(filterId_, 48);
    record.At(kNineSixteen).Protocol(6).Local(0xC0000201, 50000).Remote(0xC6336407, port);
    return record;
  }

  [[nodiscard]] std::string Named() const {
    return "blocked by filter " + std::to_string(filterId_) + " \"Filter\" of no provider";
  }

  /// Once the watch has begun, a thread raises drops to these ports.
  void RaiseToPorts(std::vector<UINT16> ports) {
    witness_.onBegin = [this, ports = std::move(ports)] {
      raising_ = std::thread([this, ports] {
        for (const UINT16 port : ports) {
          RaiseEvent(DropTo(port).Native());
        }
      });
    };
  }

  void Run(const std::function<bool()>& isOver, const EventCalls& engine = Watch::LinkedEngine()) {
    const Clock::time_point end = Clock::now() + kLongEnough;
    Watch::Watcher(engine, &Read, std::nullopt, witness_).Run([&] {
      return isOver() || Clock::now() >= end;
    });
  }
  void RunUntilDrops(std::size_t drops, const EventCalls& engine = Watch::LinkedEngine()) {
    Run([this, drops] { return witness_.drops >= drops; }, engine);
  }

  static void SetOption(FWPM_ENGINE_OPTION option, UINT32 number) {
    HANDLE session = nullptr;
    FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &session);
    FWP_VALUE0 value{};
    value.type = FWP_UINT32;
    value.uint32 = number;
    EXPECT_EQ(FwpmEngineSetOption0(session, option, &value), DWORD{ERROR_SUCCESS});
    FwpmEngineClose0(session);
  }

  Witness witness_;
  std::thread raising_;
  UINT64 filterId_ = 0;
};

TEST_F(WatcherTest, TellsARaisedDropWithTheNameOfItsFilter) {
  RaiseToPorts({443});
  RunUntilDrops(1);
  EXPECT_THAT(witness_.lines, ElementsAre(kUsualNote, "#1 2026-11-22T09:16:19.123Z 1: " + Named()));
  EXPECT_EQ(witness_.totals->drops, 1u);
  EXPECT_EQ(witness_.totals->repeats, 0u);
}

TEST_F(WatcherTest, DoesSoWithTheFunctionsOfOlderSystemsToo) {
  EventCalls engine = Watch::LinkedEngine();
  engine.FwpmNetEventSubscribe2 = nullptr;
  RaiseToPorts({443});
  RunUntilDrops(1, engine);
  EXPECT_EQ(witness_.lines.back(), "#1 2026-11-22T09:16:19.123Z 1: " + Named());
}

TEST_F(WatcherTest, DoesSoWithTheOldestFunction) {
  EventCalls engine = Watch::LinkedEngine();
  engine.FwpmNetEventSubscribe1 = nullptr;
  engine.FwpmNetEventSubscribe2 = nullptr;
  RaiseToPorts({443});
  RunUntilDrops(1, engine);
  EXPECT_EQ(witness_.lines.back(), "#1 2026-11-22T09:16:19.123Z 1: " + Named());
}

TEST_F(WatcherTest, RepeatsAreCounted) {
  RaiseToPorts({443, 443, 443, 80});
  RunUntilDrops(2);
  EXPECT_THAT(witness_.lines, ElementsAre(kUsualNote, "#1 2026-11-22T09:16:19.123Z 1: " + Named(),
                                          "#2 2026-11-22T09:16:19.123Z 1: " + Named(), "#1 again 2"));
  EXPECT_EQ(witness_.totals->drops, 2u);
  EXPECT_EQ(witness_.totals->repeats, 2u);
}

TEST_F(WatcherTest, AFilterThatIsAddedMeanwhileIsFound) {
  witness_.onBegin = [this] {
    Install(2, "ALE_AUTH_CONNECT_V4 | BLOCK | UINT8 1 | - | IP_REMOTE_PORT EQUAL UINT16 25");
    filterId_ = Read().filters.at(1).id;
    raising_ = std::thread([this] { RaiseEvent(DropTo(25).Native()); });
  };
  RunUntilDrops(1);
  EXPECT_EQ(witness_.lines.back(), "#1 2026-11-22T09:16:19.123Z 1: " + Named());
}

TEST_F(WatcherTest, OtherEventsAreCountedByTheirTypes) {
  SetOption(FWPM_ENGINE_NET_EVENT_MATCH_ANY_KEYWORDS, 0x1F);
  witness_.onBegin = [this] {
    raising_ = std::thread([this] {
      NetEventRecord allow = NetEventRecord::Allow(filterId_, 48);
      RaiseEvent(allow.Native());
      RaiseEvent(allow.Native());
      NetEventRecord capability =
          NetEventRecord::CapabilityDrop(filterId_, FWPM_APPC_NETWORK_CAPABILITY_INTERNET_CLIENT);
      RaiseEvent(capability.At(kNineSixteen).Native());
    });
  };
  RunUntilDrops(1);
  EXPECT_THAT(
      witness_.lines,
      ElementsAre("#1 2026-11-22T09:16:19.123Z 1: blocked for want of the capability internetClient by "
                  "filter " +
                  std::to_string(filterId_) + " \"Filter\" of no provider"));
  EXPECT_EQ(witness_.totals->others, (std::map<std::string, std::size_t>{{"CLASSIFY_ALLOW", 2}}));
}

TEST_F(WatcherTest, SaysThatTheEngineDoesNotCollectAndWhenItDoesAgain) {
  SetOption(FWPM_ENGINE_COLLECT_NET_EVENTS, 0);
  Run([this] {
    if (witness_.lines.size() == 2) {
      SetOption(FWPM_ENGINE_COLLECT_NET_EVENTS, 1);
    }
    return witness_.lines.size() == 3;
  });
  EXPECT_THAT(
      witness_.lines,
      ElementsAre("note: The engine does not collect net events, so nothing can be seen. \"netsh wfp set "
                  "options netevents=on\" switches it on, for everybody and for good.",
                  kUsualNote, "note: The engine collects net events again."));
}

TEST_F(WatcherTest, ChangesNoOptionOfTheEngine) {
  RunUntilDrops(0);
  EXPECT_THAT(Calls(), testing::Not(testing::Contains("FwpmEngineSetOption0")));
  EXPECT_THAT(Calls(), testing::Contains("FwpmNetEventSubscribe2"));
  EXPECT_THAT(Calls(), testing::Contains("FwpmNetEventUnsubscribe0"));
}

TEST_F(WatcherTest, EndsWhenTheEngineStopsWithAllThatWasSeenTold) {
  RaiseToPorts({443, 443, 80});
  bool hasStopped = false;
  const auto run = [&] {
    Run([&] {
      if (witness_.drops == 2 && !hasStopped) {
        EngineEmulator::StopEngine();
        hasStopped = true;
      }
      return false;
    });
  };
  try {
    run();
    FAIL() << "the loss was not noticed";
  } catch (const Watch::LostSubscription& error) {
    EXPECT_EQ(error.Code(), DWORD{RPC_S_SERVER_UNAVAILABLE});
  }
  EXPECT_EQ(witness_.lines.back(), "#1 again 1");
  EXPECT_EQ(witness_.totals->drops, 2u);
  raising_.join();
  SetUpAgain();
}

TEST_F(WatcherTest, NeedsTheRightToSubscribe) {
  EngineEmulator::FailCall("FwpmNetEventSubscribe2", 1, ERROR_ACCESS_DENIED);
  try {
    RunUntilDrops(1);
    FAIL() << "it watches";
  } catch (const Watch::WatchError& error) {
    EXPECT_EQ(error.Code(), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_STREQ(error.what(), "FwpmNetEventSubscribe2 failed: ERROR_ACCESS_DENIED (0x00000005)");
  }
  EXPECT_EQ(witness_.totals, std::nullopt);
}

TEST_F(WatcherTest, DoesWithoutTheRightToReadOptions) {
  EngineEmulator::FailCall("FwpmEngineGetOption0", 1, ERROR_ACCESS_DENIED);
  EngineEmulator::FailCall("FwpmEngineGetOption0", 2, ERROR_ACCESS_DENIED);
  RaiseToPorts({443});
  RunUntilDrops(1);
  EXPECT_THAT(witness_.lines, ElementsAre("#1 2026-11-22T09:16:19.123Z 1: " + Named()));
}

TEST_F(WatcherTest, NeedsAFunctionThatTellsOfEvents) {
  EventCalls engine = Watch::LinkedEngine();
  engine.FwpmNetEventSubscribe0 = nullptr;
  engine.FwpmNetEventSubscribe1 = nullptr;
  engine.FwpmNetEventSubscribe2 = nullptr;
  try {
    RunUntilDrops(1, engine);
    FAIL() << "it watches";
  } catch (const Watch::WatchError& error) {
    EXPECT_EQ(error.Code(), DWORD{ERROR_CALL_NOT_IMPLEMENTED});
  }
}

class RememberedTest : public WatcherTest {
 protected:
  void Tell(const EventCalls& engine = Watch::LinkedEngine()) {
    Watch::Watcher(engine, &Read, std::nullopt, witness_).TellRemembered();
  }
  void Raise(UINT16 port, UINT64 secondsLater) const {
    RaiseEvent(DropTo(port).At(kNineSixteen + secondsLater * 10'000'000).Native());
  }
};

TEST_F(RememberedTest, TheNewestIsTheLastAndRepeatsAreCounted) {
  Raise(443, 0);
  Raise(80, 1);
  Raise(443, 2);
  Tell();
  EXPECT_THAT(witness_.lines, ElementsAre("#1 2026-11-22T09:16:20.123Z 1: " + Named(),
                                          "#2 2026-11-22T09:16:19.123Z 2: " + Named()));
  EXPECT_EQ(witness_.totals->drops, 2u);
  EXPECT_EQ(witness_.totals->repeats, 1u);
}

TEST_F(RememberedTest, IsReadByTheFunctionsOfOlderSystemsToo) {
  Raise(443, 0);
  EventCalls engine = Watch::LinkedEngine();
  engine.FwpmNetEventEnum3 = nullptr;
  Tell(engine);
  engine.FwpmNetEventEnum2 = nullptr;
  Tell(engine);
  EXPECT_THAT(witness_.lines, ElementsAre("#1 2026-11-22T09:16:19.123Z 1: " + Named(),
                                          "#1 2026-11-22T09:16:19.123Z 1: " + Named()));
}

TEST_F(RememberedTest, AnEngineThatCollectsNothingRemembersNothing) {
  SetOption(FWPM_ENGINE_COLLECT_NET_EVENTS, 0);
  try {
    Tell();
    FAIL() << "it tells";
  } catch (const Watch::WatchError& error) {
    EXPECT_EQ(error.Code(), static_cast<DWORD>(FWP_E_NET_EVENTS_DISABLED));
  }
}

TEST_F(RememberedTest, MoreThanAPageIsReadWhole) {
  for (UINT16 port = 1; port <= 300; ++port) {
    Raise(port, port);
  }
  Tell();
  EXPECT_EQ(witness_.lines.back(), "#300 2026-11-22T09:21:19.123Z 1: " + Named());
}

}  // namespace
