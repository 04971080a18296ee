// How subscribers hear of net events.
#include <gmock/gmock.h>

#include <future>

#include "EventListener.h"
#include "emulator/ControlExports.h"
#include "support/NetEventRecord.h"

namespace {

using EngineEmulator::RaiseEvent;
using testing::ElementsAre;

using NetEvent = EngineTest;

void RaiseDrop(UINT64 filterId) {
  EXPECT_EQ(RaiseEvent(NetEventRecord::Drop(filterId, 48).Native()), kSuccess);
}

TEST_F(NetEvent, IsToldOnAnotherThread) {
  EventListener listener;
  const TestSession session;
  const HANDLE handle = SubscribeEvents(session, listener);
  RaiseDrop(7);
  EXPECT_THAT(listener.Await(1), ElementsAre("drop 7"));
  EXPECT_NE(listener.Thread(), std::this_thread::get_id());
  EXPECT_EQ(FwpmNetEventUnsubscribe0(session, handle), kSuccess);
}

TEST_F(NetEvent, IsToldToEverySubscriberOfEverySession) {
  EventListener first;
  EventListener second;
  EventListener third;
  const TestSession one;
  const TestSession other(kDynamic);
  SubscribeEvents(one, first);
  SubscribeEvents(one, second);
  SubscribeEvents(other, third);
  RaiseDrop(7);
  EXPECT_THAT(first.Await(1), ElementsAre("drop 7"));
  EXPECT_THAT(second.Await(1), ElementsAre("drop 7"));
  EXPECT_THAT(third.Await(1), ElementsAre("drop 7"));
}

TEST_F(NetEvent, IsToldInAnyVersion) {
  EventListener listeners[3];
  const TestSession session;
  const FWPM_NET_EVENT_SUBSCRIPTION0 wanted{};
  HANDLE handle = nullptr;
  ASSERT_EQ(
      FwpmNetEventSubscribe0(session, &wanted, EventListener::Hear<FWPM_NET_EVENT1>, &listeners[0], &handle),
      kSuccess);
  ASSERT_EQ(
      FwpmNetEventSubscribe1(session, &wanted, EventListener::Hear<FWPM_NET_EVENT2>, &listeners[1], &handle),
      kSuccess);
  ASSERT_EQ(
      FwpmNetEventSubscribe2(session, &wanted, EventListener::Hear<FWPM_NET_EVENT3>, &listeners[2], &handle),
      kSuccess);
  RaiseDrop(7);
  for (EventListener& listener : listeners) {
    EXPECT_THAT(listener.Await(1), ElementsAre("drop 7"));
  }
}

TEST_F(NetEvent, OfWindows8IsNotToldInVersion0) {
  EventListener older;
  EventListener newer;
  const TestSession session;
  RecordEverything(session);
  const FWPM_NET_EVENT_SUBSCRIPTION0 wanted{};
  HANDLE handle = nullptr;
  ASSERT_EQ(FwpmNetEventSubscribe0(session, &wanted, EventListener::Hear<FWPM_NET_EVENT1>, &older, &handle),
            kSuccess);
  ASSERT_EQ(FwpmNetEventSubscribe1(session, &wanted, EventListener::Hear<FWPM_NET_EVENT2>, &newer, &handle),
            kSuccess);
  RaiseEvent(NetEventRecord::Allow(1, 48).Native());
  RaiseEvent(NetEventRecord::CapabilityDrop(2, FWPM_APPC_NETWORK_CAPABILITY_INTERNET_CLIENT).Native());
  RaiseEvent(NetEventRecord::CapabilityAllow(3, FWPM_APPC_NETWORK_CAPABILITY_INTERNET_CLIENT).Native());
  RaiseDrop(4);
  EXPECT_THAT(newer.Await(4), ElementsAre("allow 1", "capability drop 2", "capability allow 3", "drop 4"));
  EXPECT_THAT(older.Await(1), ElementsAre("drop 4"));
}

TEST_F(NetEvent, HasThePresentTimeIfItHasNone) {
  struct Times {
    EventListener listener;
    UINT64 time = 0;
  } times;
  const TestSession session;
  const auto hear = [](void* context, const FWPM_NET_EVENT3* event) {
    const FILETIME stamp = event->header.timeStamp;
    auto* const heard = static_cast<Times*>(context);
    heard->time = UINT64{stamp.dwHighDateTime} << 32 | stamp.dwLowDateTime;
    heard->listener.Note("");
  };
  const FWPM_NET_EVENT_SUBSCRIPTION0 wanted{};
  HANDLE handle = nullptr;
  ASSERT_EQ(FwpmNetEventSubscribe2(session, &wanted, hear, &times, &handle), kSuccess);
  RaiseDrop(7);
  times.listener.Await(1);
  EXPECT_GT(times.time, 134'000'000'000'000'000U);  // 2025
  EXPECT_LT(times.time, 200'000'000'000'000'000U);  // 2234
  RaiseEvent(NetEventRecord::Drop(7, 48).At(0x123456789ABCDEF0).Native());
  times.listener.Await(2);
  EXPECT_EQ(times.time, 0x123456789ABCDEF0U);
}

TEST_F(NetEvent, IsNotToldAfterUnsubscribing) {
  EventListener ended;
  EventListener going;
  const TestSession session;
  const HANDLE handle = SubscribeEvents(session, ended);
  SubscribeEvents(session, going);
  EXPECT_EQ(FwpmNetEventUnsubscribe0(session, handle), kSuccess);
  RaiseDrop(7);
  going.Await(1);
  EXPECT_THAT(ended.Texts(), ElementsAre());
  EXPECT_EQ(FwpmNetEventUnsubscribe0(session, handle), kNotFound);
}

/// A callback that says that it runs, and goes on when it may.
struct HeldCallback {
  static void CALLBACK Hear(void* context, const FWPM_NET_EVENT3* event) {
    auto* const held = static_cast<HeldCallback*>(context);
    if (!std::exchange(held->began, true)) {
      held->runs.set_value();
      held->mayGoOn.get_future().wait();
    }
    held->listener.Note(EventText(*event));
  }

  HANDLE Subscribe(HANDLE session) {
    const FWPM_NET_EVENT_SUBSCRIPTION0 wanted{};
    HANDLE handle = nullptr;
    EXPECT_EQ(FwpmNetEventSubscribe2(session, &wanted, Hear, this, &handle), kSuccess);
    return handle;
  }

  bool began = false;
  std::promise<void> runs;
  std::promise<void> mayGoOn;
  EventListener listener;
};

TEST_F(NetEvent, LeavesItsCallbackBeforeUnsubscribingEnds) {
  HeldCallback held;
  const TestSession session;
  const HANDLE handle = held.Subscribe(session);
  RaiseDrop(7);
  held.runs.get_future().wait();
  std::thread releaser([&] { held.mayGoOn.set_value(); });
  EXPECT_EQ(FwpmNetEventUnsubscribe0(session, handle), kSuccess);
  EXPECT_THAT(held.listener.Texts(), ElementsAre("drop 7"));
  releaser.join();
}

TEST_F(NetEvent, LeavesItsCallbackBeforeTheSessionEnds) {
  HeldCallback held;
  HANDLE session = nullptr;
  ASSERT_EQ(FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &session), kSuccess);
  held.Subscribe(session);
  RaiseDrop(7);
  held.runs.get_future().wait();
  std::thread releaser([&] { held.mayGoOn.set_value(); });
  EXPECT_EQ(FwpmEngineClose0(session), kSuccess);
  EXPECT_THAT(held.listener.Texts(), ElementsAre("drop 7"));
  EXPECT_EQ(EngineEmulator::CountOutstanding().subscriptions, 0U);
  releaser.join();
}

TEST_F(NetEvent, LeavesTheEngineFreeDuringItsCallback) {
  HeldCallback held;
  const TestSession session;
  held.Subscribe(session);
  RaiseDrop(7);
  held.runs.get_future().wait();
  EXPECT_EQ(Add(session, ProviderRecord()), kSuccess);
  RaiseDrop(8);
  held.mayGoOn.set_value();
  EXPECT_THAT(held.listener.Await(2), ElementsAre("drop 7", "drop 8"));
}

/// The data that a callback needs to end its own subscription.
struct EventSelfEnder {
  static void CALLBACK End(void* context, const FWPM_NET_EVENT3*) {
    auto* const self = static_cast<EventSelfEnder*>(context);
    self->subscribed.get_future().wait();
    self->listener.Note(std::to_string(FwpmNetEventUnsubscribe0(self->session, self->handle)));
  }

  HANDLE session = nullptr;
  HANDLE handle = nullptr;
  std::promise<void> subscribed;
  EventListener listener;
};

TEST_F(NetEvent, CanEndItsSubscriptionInItsCallbackAndTheJournalTells) {
  EventSelfEnder self;
  EventListener other;
  const TestSession session;
  const FWPM_NET_EVENT_SUBSCRIPTION0 wanted{};
  ASSERT_EQ(FwpmNetEventSubscribe2(session, &wanted, EventSelfEnder::End, &self, &self.handle), kSuccess);
  const HANDLE going = SubscribeEvents(session, other);
  self.session = session;
  self.subscribed.set_value();
  RaiseDrop(7);
  EXPECT_THAT(self.listener.Await(1), ElementsAre("0"));
  EXPECT_EQ(EngineEmulator::Journal().back().function, "FwpmNetEventUnsubscribe0");
  EXPECT_EQ(EngineEmulator::Journal().back().arguments, "in its callback");
  RaiseDrop(8);
  other.Await(2);
  EXPECT_THAT(self.listener.Texts(), ElementsAre("0"));
  EXPECT_EQ(FwpmNetEventUnsubscribe0(session, going), kSuccess);
  EXPECT_EQ(EngineEmulator::Journal().back().arguments, "");
}

TEST_F(NetEvent, IsMissedBySubscribersForWhomTooManyWait) {
  EngineEmulator::Switches switches;
  switches.waitingEvents = 2;
  EngineEmulator::SetSwitches(switches);
  HeldCallback held;
  EventListener quick;
  const TestSession session;
  held.Subscribe(session);
  RaiseDrop(1);
  held.runs.get_future().wait();
  for (UINT64 filterId = 2; filterId <= 5; ++filterId) {
    RaiseDrop(filterId);
  }
  EXPECT_EQ(EngineEmulator::CountMissedEvents(), 2U);
  EXPECT_EQ(EngineEmulatorCountMissedEvents(), 2U);
  held.mayGoOn.set_value();
  EXPECT_THAT(held.listener.Await(3), ElementsAre("drop 1", "drop 2", "drop 3"));
  SubscribeEvents(session, quick);
  RaiseDrop(6);
  EXPECT_THAT(held.listener.Await(4), ElementsAre("drop 1", "drop 2", "drop 3", "drop 6"));
  quick.Await(1);
  EngineEmulator::Reset();
  EXPECT_EQ(EngineEmulator::CountMissedEvents(), 0U);
}

TEST_F(NetEvent, WaitsForSubscribersUpToAThousand) {
  EXPECT_EQ(EngineEmulator::GetSwitches().waitingEvents, 1'000U);
  EXPECT_EQ(EngineEmulatorSetRule("waitingEvents", 5), 1);
  EXPECT_EQ(EngineEmulator::GetSwitches().waitingEvents, 5U);
}

TEST_F(NetEvent, IsNoPartOfATransaction) {
  EventListener listener;
  const TestSession session;
  const HANDLE handle = SubscribeEvents(session, listener);
  const FWPM_NET_EVENT_SUBSCRIPTION0 wanted{};
  HANDLE other = nullptr;
  ASSERT_EQ(FwpmTransactionBegin0(session, 0), kSuccess);
  EXPECT_EQ(FwpmNetEventSubscribe0(session, &wanted, EventListener::Hear<FWPM_NET_EVENT1>, &listener, &other),
            kTransactionInProgress);
  EXPECT_EQ(FwpmNetEventSubscribe1(session, &wanted, EventListener::Hear<FWPM_NET_EVENT2>, &listener, &other),
            kTransactionInProgress);
  EXPECT_EQ(FwpmNetEventSubscribe2(session, &wanted, EventListener::Hear<FWPM_NET_EVENT3>, &listener, &other),
            kTransactionInProgress);
  EXPECT_EQ(FwpmNetEventUnsubscribe0(session, handle), kTransactionInProgress);
  EXPECT_EQ(FwpmNetEventCreateEnumHandle0(session, nullptr, &other), kTransactionInProgress);
  EXPECT_EQ(SetOption(session, FWPM_ENGINE_COLLECT_NET_EVENTS, 1), kTransactionInProgress);
  RaiseDrop(7);
  EXPECT_THAT(listener.Await(1), ElementsAre("drop 7"));
  FwpmTransactionAbort0(session);
  EXPECT_EQ(FwpmNetEventUnsubscribe0(session, handle), kSuccess);
}

TEST_F(NetEvent, IsRaisedOverTheDllsInterface) {
  EventListener listener;
  const TestSession session;
  SubscribeEvents(session, listener);
  NetEventRecord drop = NetEventRecord::Drop(7, 48);
  EXPECT_EQ(EngineEmulatorRaiseEvent(&drop.Native()), kSuccess);
  EXPECT_EQ(EngineEmulatorRaiseEvent(nullptr), kNullPointer);
  EXPECT_THAT(listener.Await(1), ElementsAre("drop 7"));
}

TEST_F(NetEvent, IsNotRaisedWithoutWhatItClaimsToHave) {
  NetEventRecord drop = NetEventRecord::Drop(7, 48);
  FWPM_NET_EVENT3 event = drop.Native();
  event.type = static_cast<decltype(event.type)>(4);
  EXPECT_EQ(RaiseEvent(event), kInvalidEnumerator);
  EXPECT_EQ(EngineEmulator::LastRefusal(), "events of type 4 cannot be raised");
  event = drop.Native();
  event.classifyDrop = nullptr;
  EXPECT_EQ(RaiseEvent(event), kNullPointer);
  EXPECT_EQ(EngineEmulator::LastRefusal(), "the event has no data");
  event = drop.Native();
  event.header.flags = FWPM_NET_EVENT_FLAG_USER_ID_SET;
  EXPECT_EQ(RaiseEvent(event), kInvalidParameter);
  event.header.flags = FWPM_NET_EVENT_FLAG_PACKAGE_ID_SET;
  EXPECT_EQ(RaiseEvent(event), kInvalidParameter);
  event.header.flags = FWPM_NET_EVENT_FLAG_APP_ID_SET;
  event.header.appId = {2, nullptr};
  EXPECT_EQ(RaiseEvent(event), kNullPointer);
  event.header.flags = FWPM_NET_EVENT_FLAG_EFFECTIVE_NAME_SET;
  event.header.effectiveName = {2, nullptr};
  EXPECT_EQ(RaiseEvent(event), kNullPointer);
}

}  // namespace
