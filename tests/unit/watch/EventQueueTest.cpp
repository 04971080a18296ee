#include "watch/EventQueue.h"

#include <gmock/gmock.h>

#include <thread>

namespace {

using Watch::EventQueue;

constexpr EventQueue::Clock::time_point kAtOnce{};

Watch::NetEvent Event(UINT64 time) {
  Watch::NetEvent event;
  event.time = time;
  return event;
}

TEST(EventQueue, GivesTheOldestFirst) {
  EventQueue queue;
  queue.Add(Event(1));
  queue.Add(Event(2));
  EXPECT_EQ(queue.Take(kAtOnce)->time, 1u);
  EXPECT_EQ(queue.Take(kAtOnce)->time, 2u);
  EXPECT_FALSE(queue.Take(kAtOnce));
}

TEST(EventQueue, CountsWhatFindsNoRoom) {
  EventQueue queue(2);
  for (UINT64 time = 1; time <= 5; ++time) {
    queue.Add(Event(time));
  }
  queue.CountLost();
  EXPECT_EQ(queue.LostCount(), 4u);
  EXPECT_EQ(queue.Take(kAtOnce)->time, 1u);
  queue.Add(Event(6));
  EXPECT_EQ(queue.LostCount(), 4u);
  EXPECT_EQ(queue.Take(kAtOnce)->time, 2u);
  EXPECT_EQ(queue.Take(kAtOnce)->time, 6u);
}

TEST(EventQueue, WakesWhoWaits) {
  EventQueue queue;
  std::thread engine([&queue] { queue.Add(Event(7)); });
  const auto event = queue.Take(EventQueue::Clock::now() + std::chrono::hours(1));
  engine.join();
  ASSERT_TRUE(event);
  EXPECT_EQ(event->time, 7u);
}

}  // namespace
