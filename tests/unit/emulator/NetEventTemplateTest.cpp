// Which net events templates select, and which templates are refused.
#include <gmock/gmock.h>

#include <cstring>

#include "EventListener.h"
#include "support/NetEventRecord.h"

namespace {

using EngineEmulator::RaiseEvent;
using testing::ElementsAre;

using NetEventTemplate = EngineTest;

constexpr GUID kNetEventType{0x206e9996, 0x490e, 0x40cf, {0xb8, 0x31, 0xb3, 0x86, 0x41, 0xeb, 0x6f, 0xcb}};
constexpr UINT64 kNever = 0x7FFFFFFFFFFFFFFF;

FILETIME TimeOf(UINT64 time) { return {static_cast<DWORD>(time), static_cast<DWORD>(time >> 32)}; }

/// A template of conditions that compares each value for equality, for all times.
class Criteria {
 public:
  FWP_CONDITION_VALUE0& Test(const GUID& field, FWP_DATA_TYPE type, FWP_MATCH_TYPE match = FWP_MATCH_EQUAL) {
    FWPM_FILTER_CONDITION0 condition{};
    condition.fieldKey = field;
    condition.matchType = match;
    condition.conditionValue.type = type;
    return conditions_.emplace_back(condition).conditionValue;
  }

  FWPM_NET_EVENT_ENUM_TEMPLATE0* Native() {
    native.filterCondition = conditions_.data();
    native.numFilterConditions = static_cast<UINT32>(conditions_.size());
    return &native;
  }

  FWPM_NET_EVENT_ENUM_TEMPLATE0 native{{}, TimeOf(kNever), 0, nullptr};

 private:
  std::vector<FWPM_FILTER_CONDITION0> conditions_;
};

DWORD Create(HANDLE session, Criteria& criteria) {
  HANDLE enumHandle = nullptr;
  return FwpmNetEventCreateEnumHandle0(session, criteria.Native(), &enumHandle);
}

DWORD Subscribe(HANDLE session, Criteria& criteria) {
  const FWPM_NET_EVENT_SUBSCRIPTION0 wanted{criteria.Native(), 0, {}};
  const auto ignore = [](void*, const FWPM_NET_EVENT3*) {};
  HANDLE handle = nullptr;
  return FwpmNetEventSubscribe2(session, &wanted, ignore, nullptr, &handle);
}

/// The ids of the recorded events that a template selects.
std::vector<UINT64> Selected(Criteria& criteria) {
  const TestSession session;
  HANDLE enumHandle = nullptr;
  EXPECT_EQ(FwpmNetEventCreateEnumHandle0(session, criteria.Native(), &enumHandle), kSuccess)
      << EngineEmulator::LastRefusal();
  FWPM_NET_EVENT3** events = nullptr;
  UINT32 count = 0;
  EXPECT_EQ(FwpmNetEventEnum3(session, enumHandle, INFINITE, &events, &count), kSuccess);
  std::vector<UINT64> ids;
  for (UINT32 index = 0; index < count; ++index) {
    ids.push_back(events[index]->classifyDrop->filterId);
  }
  Free(events);
  return ids;
}

void Raise(NetEventRecord record) { EXPECT_EQ(RaiseEvent(record.Native()), kSuccess); }

const FWP_BYTE_ARRAY16 kAddress{{0x20, 0x01, 0x0D, 0xB8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}};

TEST_F(NetEventTemplate, SelectsByProtocol) {
  Raise(NetEventRecord::Drop(1, 48));
  Raise(NetEventRecord::Drop(2, 48).Protocol(6));
  Raise(NetEventRecord::Drop(3, 48).Protocol(17));
  Criteria criteria;
  criteria.Test(kProtocol, FWP_UINT8).uint8 = 17;
  EXPECT_THAT(Selected(criteria), ElementsAre(3));
}

TEST_F(NetEventTemplate, SelectsByPorts) {
  Raise(NetEventRecord::Drop(1, 48));
  Raise(NetEventRecord::Drop(2, 48).Local(0x0A000001, 50'000).Remote(0x0A000002, 443));
  Raise(NetEventRecord::Drop(3, 48).Local(0x0A000001, 443).Remote(0x0A000002, 50'000));
  Criteria local;
  local.Test(kLocalPort, FWP_UINT16).uint16 = 443;
  EXPECT_THAT(Selected(local), ElementsAre(3));
  Criteria remote;
  remote.Test(kRemotePort, FWP_UINT16).uint16 = 443;
  EXPECT_THAT(Selected(remote), ElementsAre(2));
  Criteria both;
  both.Test(kRemotePort, FWP_UINT16).uint16 = 443;
  both.Test(kLocalPort, FWP_UINT16).uint16 = 443;
  EXPECT_THAT(Selected(both), ElementsAre());
}

TEST_F(NetEventTemplate, SelectsByRangesAndComparisons) {
  Raise(NetEventRecord::Drop(1, 48));
  Raise(NetEventRecord::Drop(2, 48).Remote(0x0A000002, 99));
  Raise(NetEventRecord::Drop(3, 48).Remote(0x0A000002, 100));
  Raise(NetEventRecord::Drop(4, 48).Remote(0x0A000002, 200));
  FWP_RANGE0 range{};
  range.valueLow.type = range.valueHigh.type = FWP_UINT16;
  range.valueLow.uint16 = 100;
  range.valueHigh.uint16 = 199;
  Criteria between;
  between.Test(kRemotePort, FWP_RANGE_TYPE, FWP_MATCH_RANGE).rangeValue = &range;
  EXPECT_THAT(Selected(between), ElementsAre(3));
  Criteria above;
  above.Test(kRemotePort, FWP_UINT16, FWP_MATCH_GREATER).uint16 = 99;
  EXPECT_THAT(Selected(above), ElementsAre(3, 4));
  Criteria other;
  other.Test(kRemotePort, FWP_UINT16, FWP_MATCH_NOT_EQUAL).uint16 = 100;
  EXPECT_THAT(Selected(other), ElementsAre(2, 4));
}

TEST_F(NetEventTemplate, SelectsByIpv4Addresses) {
  Raise(NetEventRecord::Drop(1, 48));
  Raise(NetEventRecord::Drop(2, 48).Local(0x0A000001, 1).Remote(0x0A000002, 1));
  Raise(NetEventRecord::Drop(3, 48).Local(0x0A000002, 1).Remote(0x0A010001, 1));
  Raise(NetEventRecord::Drop(4, 50).Local(FWP_BYTE_ARRAY16{{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 10, 0, 0, 2}},
                                          1));
  Criteria local;
  local.Test(kLocalAddress, FWP_UINT32).uint32 = 0x0A000002;
  EXPECT_THAT(Selected(local), ElementsAre(3));
  FWP_V4_ADDR_AND_MASK network{0x0A000000, 0xFFFF0000};
  Criteria remote;
  remote.Test(kRemoteAddress, FWP_V4_ADDR_MASK).v4AddrMask = &network;
  EXPECT_THAT(Selected(remote), ElementsAre(2));
}

TEST_F(NetEventTemplate, SelectsByIpv6Addresses) {
  FWP_BYTE_ARRAY16 address = kAddress;
  FWP_BYTE_ARRAY16 neighbour = kAddress;
  neighbour.byteArray16[15] = 2;
  Raise(NetEventRecord::Drop(1, 50));
  Raise(NetEventRecord::Drop(2, 50).Remote(address, 1));
  Raise(NetEventRecord::Drop(3, 50).Remote(neighbour, 1).Local(address, 1));
  Raise(NetEventRecord::Drop(4, 48).Remote(0x00000001, 1));
  Criteria remote;
  remote.Test(kRemoteAddress, FWP_BYTE_ARRAY16_TYPE).byteArray16 = &address;
  EXPECT_THAT(Selected(remote), ElementsAre(2));
  FWP_V6_ADDR_AND_MASK network{{0x20, 0x01, 0x0D, 0xB8}, 64};
  Criteria prefix;
  prefix.Test(kRemoteAddress, FWP_V6_ADDR_MASK).v6AddrMask = &network;
  EXPECT_THAT(Selected(prefix), ElementsAre(2, 3));
  FWP_V6_ADDR_AND_MASK low{{}, 64};
  Criteria mapped;
  mapped.Test(kRemoteAddress, FWP_V6_ADDR_MASK).v6AddrMask = &low;
  EXPECT_THAT(Selected(mapped), ElementsAre());
}

TEST_F(NetEventTemplate, SelectsByApplication) {
  Raise(NetEventRecord::Drop(1, 48));
  Raise(NetEventRecord::Drop(2, 48).App("\\a"));
  Raise(NetEventRecord::Drop(3, 48).App("\\b"));
  UINT8 name[]{'\\', 0, 'b', 0, 0, 0};
  FWP_BYTE_BLOB blob{6, name};
  Criteria criteria;
  criteria.Test(kAppId, FWP_BYTE_BLOB_TYPE).byteBlob = &blob;
  EXPECT_THAT(Selected(criteria), ElementsAre(3));
}

TEST_F(NetEventTemplate, SelectsByUser) {
  Raise(NetEventRecord::Drop(1, 48));
  Raise(NetEventRecord::Drop(2, 48).User({18}));
  Raise(NetEventRecord::Drop(3, 48).User({19}));
  SID localService{1, 1, {{0, 0, 0, 0, 0, 5}}, {19}};
  Criteria criteria;
  criteria.Test(kUserId, FWP_SID).sid = &localService;
  EXPECT_THAT(Selected(criteria), ElementsAre(3));
}

TEST_F(NetEventTemplate, SelectsByType) {
  RecordEverything(TestSession());
  Raise(NetEventRecord::Drop(1, 48));
  Raise(NetEventRecord::Allow(2, 48));
  Criteria drops;
  drops.Test(kNetEventType, FWP_UINT32).uint32 = 3;
  EXPECT_THAT(Selected(drops), ElementsAre(1));
  Criteria allows;
  allows.Test(kNetEventType, FWP_UINT32).uint32 = 6;
  EXPECT_THAT(Selected(allows), ElementsAre(2));
}

TEST_F(NetEventTemplate, SelectsByTimeWithBothEnds) {
  for (const UINT64 time : {UINT64{99}, UINT64{100}, UINT64{200}, UINT64{201}}) {
    Raise(NetEventRecord::Drop(time, 48).At(time));
  }
  Criteria criteria;
  criteria.native.startTime = TimeOf(100);
  criteria.native.endTime = TimeOf(200);
  EXPECT_THAT(Selected(criteria), ElementsAre(100, 200));
}

TEST_F(NetEventTemplate, OfAnEnumerationSelectsNothingIfItEndsAtZero) {
  Raise(NetEventRecord::Drop(1, 48));
  Criteria criteria;
  criteria.native.endTime = {};
  EXPECT_THAT(Selected(criteria), ElementsAre());
}

TEST_F(NetEventTemplate, OfASubscriptionHasNoEndIfThatIsZero) {
  EventListener type;
  EventListener late;
  EventListener all;
  const TestSession session;
  Criteria drops;
  drops.Test(kNetEventType, FWP_UINT32).uint32 = 3;
  drops.native.endTime = {};
  Criteria from;
  from.native.startTime = TimeOf(100);
  from.native.endTime = {};
  RecordEverything(session);
  SubscribeEvents(session, type, drops.Native());
  SubscribeEvents(session, late, from.Native());
  SubscribeEvents(session, all);
  Raise(NetEventRecord::Drop(1, 48).At(99));
  Raise(NetEventRecord::Allow(2, 48).At(100));
  Raise(NetEventRecord::Drop(3, 48).At(101));
  EXPECT_THAT(all.Await(3), ElementsAre("drop 1", "allow 2", "drop 3"));
  EXPECT_THAT(type.Await(2), ElementsAre("drop 1", "drop 3"));
  EXPECT_THAT(late.Await(2), ElementsAre("allow 2", "drop 3"));
}

TEST_F(NetEventTemplate, IsCopiedWhenSubscribing) {
  EventListener listener;
  const TestSession session;
  {
    FWP_V4_ADDR_AND_MASK network{0x0A000000, 0xFF000000};
    Criteria criteria;
    criteria.Test(kRemoteAddress, FWP_V4_ADDR_MASK).v4AddrMask = &network;
    SubscribeEvents(session, listener, criteria.Native());
    network = {0xC0A80000, 0xFFFF0000};
  }
  Raise(NetEventRecord::Drop(1, 48).Remote(0xC0A80001, 1));
  Raise(NetEventRecord::Drop(2, 48).Remote(0x0A000001, 1));
  EXPECT_THAT(listener.Await(1), ElementsAre("drop 2"));
}

/// What an enumeration and a subscription with a bad template give, and why.
void ExpectRefused(Criteria& criteria, DWORD code, const std::string& reason) {
  const TestSession session;
  EXPECT_EQ(Create(session, criteria), code);
  EXPECT_EQ(EngineEmulator::LastRefusal(), reason);
  EXPECT_EQ(Subscribe(session, criteria), code);
  EXPECT_EQ(EngineEmulator::CountOutstanding().subscriptions, 0U);
}

TEST_F(NetEventTemplate, IsRefusedIfItEndsBeforeItsStart) {
  Criteria criteria;
  criteria.native.startTime = TimeOf(0x100000000);
  criteria.native.endTime = TimeOf(0xFFFFFFFF);
  ExpectRefused(criteria, kInvalidInterval, "the template ends before its start");
  criteria.native.endTime = {};
  EXPECT_EQ(Create(TestSession(), criteria), kInvalidInterval);
}

TEST_F(NetEventTemplate, IsRefusedWithTwoConditionsOnAField) {
  Criteria criteria;
  criteria.Test(kRemotePort, FWP_UINT16).uint16 = 1;
  criteria.Test(kRemotePort, FWP_UINT16).uint16 = 2;
  ExpectRefused(criteria, kDuplicateCondition, "the template tests IP_REMOTE_PORT twice");
}

TEST_F(NetEventTemplate, IsRefusedWithAFieldThatEventsLack) {
  Criteria criteria;
  criteria.Test(kLocalInterface, FWP_UINT64);
  UINT64 number = 1;
  criteria.Native()->filterCondition->conditionValue.uint64 = &number;
  ExpectRefused(criteria, kConditionNotFound, "IP_LOCAL_INTERFACE is not a field of net events");
}

TEST_F(NetEventTemplate, IsRefusedWithAnotherTypeOfValue) {
  Criteria port;
  port.Test(kRemotePort, FWP_UINT32).uint32 = 443;
  ExpectRefused(port, kTypeMismatch, "IP_REMOTE_PORT of net events is not of type UINT32");
  Criteria empty;
  empty.Test(kProtocol, FWP_EMPTY);
  ExpectRefused(empty, kTypeMismatch, "IP_PROTOCOL of net events is not of type EMPTY");
}

TEST_F(NetEventTemplate, IsRefusedWithAMatchThatDoesNotGoWithTheField) {
  Criteria flags;
  flags.Test(kRemotePort, FWP_UINT16, FWP_MATCH_FLAGS_ANY_SET).uint16 = 1;
  ExpectRefused(flags, kMatchTypeMismatch, "FLAGS_ANY_SET does not go with IP_REMOTE_PORT");
  SID localService{1, 1, {{0, 0, 0, 0, 0, 5}}, {19}};
  Criteria user;
  user.Test(kUserId, FWP_SID, FWP_MATCH_NOT_EQUAL).sid = &localService;
  ExpectRefused(user, kMatchTypeMismatch, "NOT_EQUAL does not go with ALE_USER_ID");
  Criteria range;
  range.Test(kRemotePort, FWP_UINT16, FWP_MATCH_RANGE).uint16 = 1;
  ExpectRefused(range, kMatchTypeMismatch, "RANGE does not go with the type UINT16 of IP_REMOTE_PORT");
}

TEST_F(NetEventTemplate, IsRefusedWithDataThatAreNotThere) {
  Criteria null;
  null.Test(kAppId, FWP_BYTE_BLOB_TYPE).byteBlob = nullptr;
  ExpectRefused(null, kNullPointer, "a value of type BYTE_BLOB is null");
  Criteria match;
  match.Test(kRemotePort, FWP_UINT16, static_cast<FWP_MATCH_TYPE>(13));
  ExpectRefused(match, kInvalidEnumerator, "there is no match type 13");
}

TEST_F(NetEventTemplate, IsRefusedWithConditionsThatNobodyCanHave) {
  const TestSession session;
  FWPM_NET_EVENT_ENUM_TEMPLATE0 criteria{{}, TimeOf(kNever), 1, nullptr};
  HANDLE handle = nullptr;
  EXPECT_EQ(FwpmNetEventCreateEnumHandle0(session, &criteria, &handle), kNullPointer);
  FWPM_FILTER_CONDITION0 condition{};
  criteria.filterCondition = &condition;
  criteria.numFilterConditions = 0xFFFFFFFF;
  EXPECT_EQ(FwpmNetEventCreateEnumHandle0(session, &criteria, &handle), kInvalidParameter);
}

TEST_F(NetEventTemplate, HasNoFlagsBesideIt) {
  const TestSession session;
  const FWPM_NET_EVENT_SUBSCRIPTION0 wanted{nullptr, 1, {}};
  const auto ignore = [](void*, const FWPM_NET_EVENT3*) {};
  HANDLE handle = nullptr;
  EXPECT_EQ(FwpmNetEventSubscribe2(session, &wanted, ignore, nullptr, &handle), kInvalidFlags);
  EXPECT_EQ(EngineEmulator::LastRefusal(), "subscriptions to net events have no flags");
  EngineEmulator::SetSwitches(EngineEmulator::LenientSwitches());
  EXPECT_EQ(FwpmNetEventSubscribe2(session, &wanted, ignore, nullptr, &handle), kSuccess);
}

}  // namespace
