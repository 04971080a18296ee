// What the engine remembers of net events, and what it records at all.
#include <gmock/gmock.h>

#include "EventListener.h"
#include "support/NetEventRecord.h"

namespace {

using EngineEmulator::RaiseEvent;
using testing::ElementsAre;

using NetEventLog = EngineTest;

void Record(NetEventRecord record) { EXPECT_EQ(RaiseEvent(record.Native()), kSuccess); }

void RecordDrop(UINT64 filterId) { Record(NetEventRecord::Drop(filterId, 48)); }

HANDLE StartEnumeration(HANDLE session, const FWPM_NET_EVENT_ENUM_TEMPLATE0* criteria = nullptr) {
  HANDLE enumHandle = nullptr;
  EXPECT_EQ(FwpmNetEventCreateEnumHandle0(session, criteria, &enumHandle), kSuccess);
  return enumHandle;
}

/// The next events of an enumeration.
std::vector<std::string> NextPage(HANDLE session, HANDLE enumHandle, UINT32 most = INFINITE) {
  FWPM_NET_EVENT3** events = nullptr;
  UINT32 count = 0;
  EXPECT_EQ(FwpmNetEventEnum3(session, enumHandle, most, &events, &count), kSuccess);
  std::vector<std::string> texts;
  for (UINT32 index = 0; index < count; ++index) {
    texts.push_back(EventText(*events[index]));
  }
  Free(events);
  return texts;
}

std::vector<std::string> Logged(HANDLE session) { return NextPage(session, StartEnumeration(session)); }

TEST_F(NetEventLog, IsEmptyAtFirst) {
  const TestSession session;
  const HANDLE enumHandle = StartEnumeration(session);
  FWPM_NET_EVENT0** events = nullptr;
  UINT32 count = 9;
  EXPECT_EQ(FwpmNetEventEnum0(session, enumHandle, 10, &events, &count), kSuccess);
  EXPECT_EQ(count, 0U);
  EXPECT_EQ(events, nullptr);
}

TEST_F(NetEventLog, IsReadPageByPageInAnyVersion) {
  const TestSession session;
  for (UINT64 filterId = 1; filterId <= 5; ++filterId) {
    RecordDrop(filterId);
  }
  const HANDLE enumHandle = StartEnumeration(session);
  FWPM_NET_EVENT0** oldest = nullptr;
  FWPM_NET_EVENT1** older = nullptr;
  FWPM_NET_EVENT2** newer = nullptr;
  UINT32 count = 0;
  ASSERT_EQ(FwpmNetEventEnum0(session, enumHandle, 1, &oldest, &count), kSuccess);
  ASSERT_EQ(count, 1U);
  EXPECT_EQ(EventText(*oldest[0]), "drop 1");
  ASSERT_EQ(FwpmNetEventEnum1(session, enumHandle, 1, &older, &count), kSuccess);
  ASSERT_EQ(count, 1U);
  EXPECT_EQ(EventText(*older[0]), "drop 2");
  ASSERT_EQ(FwpmNetEventEnum2(session, enumHandle, 2, &newer, &count), kSuccess);
  ASSERT_EQ(count, 2U);
  EXPECT_EQ(EventText(*newer[1]), "drop 4");
  EXPECT_THAT(NextPage(session, enumHandle, 2), ElementsAre("drop 5"));
  EXPECT_THAT(NextPage(session, enumHandle, 2), ElementsAre());
  EXPECT_THAT(EngineEmulator::OutstandingMemory(),
              ElementsAre("FwpmNetEventEnum0", "FwpmNetEventEnum1", "FwpmNetEventEnum2"));
  Free(oldest);
  Free(older);
  Free(newer);
}

TEST_F(NetEventLog, ShowsOlderVersionsOnlyDrops) {
  const TestSession session;
  RecordEverything(session);
  Record(NetEventRecord::Allow(1, 48));
  RecordDrop(2);
  Record(NetEventRecord::Allow(3, 48));
  RecordDrop(4);
  const HANDLE enumHandle = StartEnumeration(session);
  FWPM_NET_EVENT1** events = nullptr;
  UINT32 count = 0;
  ASSERT_EQ(FwpmNetEventEnum1(session, enumHandle, 2, &events, &count), kSuccess);
  ASSERT_EQ(count, 2U);
  EXPECT_EQ(EventText(*events[0]), "drop 2");
  EXPECT_EQ(EventText(*events[1]), "drop 4");
  Free(events);
}

TEST_F(NetEventLog, IsEnumeratedAsItWasWhenTheHandleWasMade) {
  const TestSession session;
  RecordDrop(1);
  const HANDLE enumHandle = StartEnumeration(session);
  RecordDrop(2);
  EXPECT_THAT(NextPage(session, enumHandle), ElementsAre("drop 1"));
  EXPECT_THAT(Logged(session), ElementsAre("drop 1", "drop 2"));
}

TEST_F(NetEventLog, OutlivesSessionsButNotTheEngine) {
  { const TestSession session; }
  RecordDrop(1);
  EXPECT_THAT(Logged(TestSession()), ElementsAre("drop 1"));
  EngineEmulator::Reset();
  EXPECT_THAT(Logged(TestSession()), ElementsAre());
}

TEST_F(NetEventLog, ForgetsTheOldestAbove128Kilobytes) {
  const TestSession session;
  // Each of these takes more than 16 KB, and less than 18.
  const std::string path(8'192, 'x');
  for (UINT64 filterId = 1; filterId <= 9; ++filterId) {
    Record(NetEventRecord::Drop(filterId, 48).App(path));
  }
  EXPECT_THAT(Logged(session),
              ElementsAre("drop 3", "drop 4", "drop 5", "drop 6", "drop 7", "drop 8", "drop 9"));
  RecordDrop(10);
  EXPECT_EQ(Logged(session).size(), 8U);
}

TEST_F(NetEventLog, KeepsAHundredUsualEvents) {
  const TestSession session;
  for (UINT64 filterId = 1; filterId <= 1'000; ++filterId) {
    NetEventRecord drop = NetEventRecord::Drop(filterId, 48);
    drop.Protocol(6).Local(0x7F000001, 1).Remote(0x7F000001, 2).User({21, 1, 2, 3, 1000});
    Record(drop.App("\\device\\harddiskvolume3\\program files\\some company\\some program.exe"));
  }
  const std::vector<std::string> logged = Logged(session);
  EXPECT_GE(logged.size(), 100U);
  EXPECT_LT(logged.size(), 400U);
  EXPECT_EQ(logged.back(), "drop 1000");
}

TEST_F(NetEventLog, IsEnumeratedByItsOwnHandlesUntilTheyAreDestroyed) {
  const TestSession session;
  const TestSession other;
  const HANDLE enumHandle = StartEnumeration(session);
  EXPECT_EQ(EngineEmulator::CountOutstanding().enumHandles, 1U);
  FWPM_NET_EVENT3** events = nullptr;
  UINT32 count = 0;
  EXPECT_EQ(FwpmNetEventEnum3(other, enumHandle, 1, &events, &count), kNotFound);
  EXPECT_EQ(FwpmNetEventDestroyEnumHandle0(session, enumHandle), kSuccess);
  EXPECT_EQ(FwpmNetEventEnum3(session, enumHandle, 1, &events, &count), kNotFound);
  EXPECT_EQ(FwpmNetEventDestroyEnumHandle0(session, enumHandle), kNotFound);
  EXPECT_EQ(EngineEmulator::CountOutstanding().enumHandles, 0U);
}

TEST_F(NetEventLog, CannotBeEnumeratedWhileCollectionIsOff) {
  EventListener listener;
  const TestSession session;
  SubscribeEvents(session, listener);
  RecordDrop(1);
  const HANDLE enumHandle = StartEnumeration(session);
  ASSERT_EQ(SetOption(session, FWPM_ENGINE_COLLECT_NET_EVENTS, 0), kSuccess);
  RecordDrop(2);
  FWPM_NET_EVENT0** events = nullptr;
  UINT32 count = 0;
  EXPECT_EQ(FwpmNetEventEnum0(session, enumHandle, 1, &events, &count), kNetEventsDisabled);
  EXPECT_EQ(EngineEmulator::LastRefusal(), "the option COLLECT_NET_EVENTS is off");
  ASSERT_EQ(SetOption(session, FWPM_ENGINE_COLLECT_NET_EVENTS, 1), kSuccess);
  RecordDrop(3);
  EXPECT_THAT(Logged(session), ElementsAre("drop 1", "drop 3"));
  EXPECT_THAT(listener.Await(2), ElementsAre("drop 1", "drop 3"));
}

/// One event of each kind, and drops of inbound packets to each kind of address.
void RecordOneOfEach() {
  constexpr auto kClient = FWPM_APPC_NETWORK_CAPABILITY_INTERNET_CLIENT;
  Record(NetEventRecord::Drop(1, 48).Local(0xE00000FB, 5353));
  Record(NetEventRecord::Drop(2, 44, FWP_DIRECTION_IN).Local(0xC0A80102, 80));
  Record(NetEventRecord::Drop(3, 44, FWP_DIRECTION_IN).Local(0xEFFFFFFA, 1900));
  Record(NetEventRecord::Drop(4, 46, FWP_DIRECTION_IN)
             .Local(FWP_BYTE_ARRAY16{{0xFF, 0x02, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFB}}, 5353));
  Record(NetEventRecord::Drop(5, 44, FWP_DIRECTION_IN).Local(0xFFFFFFFF, 67));
  Record(NetEventRecord::CapabilityDrop(6, kClient));
  Record(NetEventRecord::CapabilityAllow(7, kClient));
  Record(NetEventRecord::Allow(8, 48));
  Record(NetEventRecord::Drop(9, 44, FWP_DIRECTION_IN));
}

/// What is recorded in a fresh engine with these keywords.
std::vector<std::string> RecordedWith(UINT32 keywords) {
  EngineEmulator::Reset();
  const TestSession session;
  EXPECT_EQ(SetOption(session, FWPM_ENGINE_NET_EVENT_MATCH_ANY_KEYWORDS, keywords), kSuccess);
  RecordOneOfEach();
  return Logged(session);
}

TEST_F(NetEventLog, HoldsDropsButThoseOfInboundMulticastAndBroadcast) {
  const TestSession session;
  RecordOneOfEach();
  EXPECT_THAT(Logged(session), ElementsAre("drop 1", "drop 2", "drop 9"));
}

TEST_F(NetEventLog, HoldsWhatTheKeywordsAskForBesides) {
  EXPECT_THAT(RecordedWith(0x1), ElementsAre("drop 1", "drop 2", "drop 3", "drop 4", "drop 9"));
  EXPECT_THAT(RecordedWith(0x2), ElementsAre("drop 1", "drop 2", "drop 5", "drop 9"));
  EXPECT_THAT(RecordedWith(0x4), ElementsAre("drop 1", "drop 2", "capability drop 6", "drop 9"));
  EXPECT_THAT(RecordedWith(0x8), ElementsAre("drop 1", "drop 2", "capability allow 7", "drop 9"));
  EXPECT_THAT(RecordedWith(0x10), ElementsAre("drop 1", "drop 2", "allow 8", "drop 9"));
  EXPECT_EQ(RecordedWith(0x1F).size(), 9U);
}

}  // namespace
