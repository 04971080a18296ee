#include "watch/Folding.h"

#include <gmock/gmock.h>

#include "unit/watch/Drops.h"

namespace {

using std::chrono::seconds;
using Watch::EventDirection;
using Watch::Folding;
using Watch::Group;
using Watch::NetEvent;

constexpr Folding::Clock::time_point kStart{};

/// "#1: 3 until 7" for each group: its number, the repeats that are told, and the time of the last.
std::vector<std::string> Texts(const std::vector<Group>& groups) {
  std::vector<std::string> texts;
  for (const Group& group : groups) {
    texts.push_back('#' + std::to_string(group.number) + ": " + std::to_string(group.Untold()) + " until " +
                    std::to_string(group.lastTime));
  }
  return texts;
}

class FoldingTest : public testing::Test {
 protected:
  /// Whether a drop is one that nothing like it came before.
  bool Begins(const NetEvent& event) { return folding_.Add(event, kStart).begun.has_value(); }

  Folding folding_;
};

TEST_F(FoldingTest, TheFirstOfItsKindBeginsAGroup) {
  const auto begun = folding_.Add(Drop(), kStart).begun;
  ASSERT_TRUE(begun);
  EXPECT_EQ(begun->number, 1u);
  EXPECT_EQ(begun->count, 1u);
  EXPECT_EQ(begun->Untold(), 0u);
  EXPECT_FALSE(Begins(Drop()));
}

TEST_F(FoldingTest, WhatTellsDropsApartBeginsANewGroup) {
  EXPECT_TRUE(Begins(Drop()));
  std::vector<NetEvent> others(9, Drop());
  others[0].remotePort = 80;
  others[1].remoteAddress = Policy::Number(1);
  others[2].localAddress = Policy::Number(1);
  others[3].protocol = UINT8{17};
  others[4].application = "other";
  others[5].filterId = 13;
  others[6].direction.reset();
  others[7].user.reset();
  others[8].layerId = UINT16{52};
  for (const NetEvent& other : others) {
    EXPECT_TRUE(Begins(other));
    EXPECT_FALSE(Begins(other));
  }
}

TEST_F(FoldingTest, AnotherAttemptOfAProgramIsARepeatThoughItsPortIsNew) {
  NetEvent event = Drop();
  EXPECT_TRUE(Begins(event));
  event.localPort = UINT16{50001};
  EXPECT_FALSE(Begins(event));
}

TEST_F(FoldingTest, OfInboundConnectionsTheRemotePortMakesNoDifference) {
  NetEvent event = Drop();
  event.direction = EventDirection::Inbound;
  EXPECT_TRUE(Begins(event));
  event.remotePort = UINT16{1024};
  EXPECT_FALSE(Begins(event));
  event.localPort = UINT16{22};
  EXPECT_TRUE(Begins(event));
}

TEST_F(FoldingTest, WithoutADirectionBothPortsCount) {
  NetEvent event = Drop();
  event.direction.reset();
  EXPECT_TRUE(Begins(event));
  event.localPort = UINT16{50001};
  EXPECT_TRUE(Begins(event));
}

TEST_F(FoldingTest, TheTypeOfIcmpIsNoPort) {
  NetEvent event = Drop();
  event.protocol = UINT8{1};
  EXPECT_TRUE(Begins(event));
  event.localPort = UINT16{8};
  EXPECT_TRUE(Begins(event));
}

TEST_F(FoldingTest, RepeatsAreToldEveryTenSecondsIfThereAreAny) {
  folding_.Add(Drop(1), kStart);
  EXPECT_THAT(Texts(folding_.TakeDue(kStart + seconds(10))), testing::ElementsAre());
  folding_.Add(Drop(2), kStart + seconds(1));
  folding_.Add(Drop(3), kStart + seconds(9));
  EXPECT_THAT(Texts(folding_.TakeDue(kStart + std::chrono::milliseconds(9999))), testing::ElementsAre());
  EXPECT_THAT(Texts(folding_.TakeDue(kStart + seconds(10))), testing::ElementsAre("#1: 2 until 3"));
  folding_.Add(Drop(4), kStart + seconds(11));
  EXPECT_THAT(Texts(folding_.TakeDue(kStart + seconds(19))), testing::ElementsAre());
  EXPECT_THAT(Texts(folding_.TakeDue(kStart + seconds(20))), testing::ElementsAre("#1: 1 until 4"));
}

TEST_F(FoldingTest, AtTheEndAllRepeatsAreTold) {
  NetEvent other = Drop(5);
  other.filterId = 1;
  folding_.Add(Drop(1), kStart);
  folding_.Add(other, kStart);
  folding_.Add(other, kStart);
  folding_.Add(Drop(7), kStart);
  EXPECT_THAT(Texts(folding_.TakeRest()), testing::ElementsAre("#1: 1 until 7", "#2: 1 until 5"));
  EXPECT_THAT(Texts(folding_.TakeRest()), testing::ElementsAre());
}

TEST_F(FoldingTest, TheLatestIsTheLastOfAll) {
  NetEvent other = Drop(2);
  other.filterId = 1;
  folding_.Add(Drop(1), kStart);
  folding_.Add(other, kStart);
  folding_.Add(Drop(3), kStart);
  EXPECT_THAT(Texts(folding_.All()), testing::ElementsAre("#2: 0 until 2", "#1: 1 until 3"));
}

TEST(FoldingOfManyKinds, ForgetsTheOneThatCameLongestAgo) {
  Folding folding(2);
  std::vector<NetEvent> events(3, Drop());
  events[1].filterId = 1;
  events[2].filterId = 2;
  folding.Add(events[0], kStart);
  folding.Add(events[1], kStart);
  folding.Add(events[1], kStart);
  folding.Add(events[0], kStart);
  const auto added = folding.Add(events[2], kStart);
  ASSERT_TRUE(added.begun);
  EXPECT_EQ(added.begun->number, 3u);
  ASSERT_TRUE(added.forgotten);
  EXPECT_EQ(added.forgotten->number, 2u);
  EXPECT_EQ(added.forgotten->Untold(), 1u);
  EXPECT_FALSE(folding.Add(events[0], kStart).begun);
  EXPECT_TRUE(folding.Add(events[1], kStart).begun);
  EXPECT_EQ(folding.All().size(), 2u);
}

}  // namespace
