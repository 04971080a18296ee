// The bytes of net events, as clients of each version get them.
#include <gmock/gmock.h>

#include <cstring>

#include "EventListener.h"
#include "support/NetEventRecord.h"

namespace {

using testing::Each;
using testing::ElementsAre;

using NetEventBytes = EngineTest;

/// The numbers of so many bytes.
std::vector<int> Bytes(const void* memory, std::size_t offset, std::size_t count) {
  const auto* first = static_cast<const UINT8*>(memory) + offset;
  return {first, first + count};
}

/// The pointer in a record.
const void* PointerAt(const void* memory, std::size_t offset) {
  const void* pointer = nullptr;
  std::memcpy(&pointer, static_cast<const UINT8*>(memory) + offset, sizeof(pointer));
  return pointer;
}

NetEventRecord FullDrop() {
  NetEventRecord record = NetEventRecord::Drop(0x0102030405060708, 0x0930, FWP_DIRECTION_OUT);
  record.At(0x1112131415161718).Protocol(6).Local(0x7F000001, 0x1234).Remote(0xC0A80102, 443);
  record.Scope(0x21222324).App("\\x").User({21, 500}).Package({2, 9}).Loopback().ReauthorizedFor(0x31);
  return record;
}

/// Raises FullDrop with what only the newest version has.
void RaiseFullDrop() {
  wchar_t enterprise[] = L"e";
  UINT8 name[]{'n', 0, 0, 0};
  UINT8 vSwitch[]{5};
  NetEventRecord drop = FullDrop();
  FWPM_NET_EVENT3 raised = drop.Native();
  raised.header.flags |= 0x3800;
  raised.header.enterpriseId = enterprise;
  raised.header.policyFlags = 0x4142434445464748;
  raised.header.effectiveName = {4, name};
  raised.classifyDrop->originalProfile = 1;
  raised.classifyDrop->currentProfile = 2;
  raised.classifyDrop->vSwitchId = {1, vSwitch};
  raised.classifyDrop->vSwitchSourcePort = 3;
  raised.classifyDrop->vSwitchDestinationPort = 4;
  EXPECT_EQ(EngineEmulator::RaiseEvent(raised), kSuccess);
}

/// What headers of all versions begin with, for FullDrop.
void ExpectCommonBytes(const void* event) {
  EXPECT_THAT(Bytes(event, 0, 8), ElementsAre(0x18, 0x17, 0x16, 0x15, 0x14, 0x13, 0x12, 0x11));
  EXPECT_THAT(Bytes(event, 12, 5), ElementsAre(0, 0, 0, 0, 6));
  EXPECT_THAT(Bytes(event, 20, 4), ElementsAre(0x01, 0, 0, 0x7F));
  EXPECT_THAT(Bytes(event, 36, 4), ElementsAre(0x02, 0x01, 0xA8, 0xC0));
  EXPECT_THAT(Bytes(event, 52, 8), ElementsAre(0x34, 0x12, 0xBB, 0x01, 0x24, 0x23, 0x22, 0x21));
  EXPECT_THAT(Bytes(event, 64, 4), ElementsAre(6, 0, 0, 0));
  EXPECT_THAT(Bytes(PointerAt(event, 72), 0, 6), ElementsAre('\\', 0, 'x', 0, 0, 0));
  EXPECT_THAT(Bytes(PointerAt(event, 80), 0, 16),
              ElementsAre(1, 2, 0, 0, 0, 0, 0, 5, 21, 0, 0, 0, 0xF4, 1, 0, 0));
}

void ExpectPackage(const void* event) {
  EXPECT_THAT(Bytes(event, 88, 4), ElementsAre(0, 0, 0, 0));
  EXPECT_THAT(Bytes(PointerAt(event, 96), 0, 16),
              ElementsAre(1, 2, 0, 0, 0, 0, 0, 15, 2, 0, 0, 0, 9, 0, 0, 0));
}

void ExpectFilterAndLayer(const void* data) {
  EXPECT_THAT(Bytes(data, 0, 10), ElementsAre(8, 7, 6, 5, 4, 3, 2, 1, 0x30, 0x09));
}

void ExpectDrop1(const void* data, int originalProfile, int currentProfile) {
  ExpectFilterAndLayer(data);
  EXPECT_THAT(Bytes(data, 12, 4), ElementsAre(0x31, 0, 0, 0));
  EXPECT_THAT(Bytes(data, 16, 8), ElementsAre(originalProfile, 0, 0, 0, currentProfile, 0, 0, 0));
  EXPECT_THAT(Bytes(data, 24, 8), ElementsAre(0x01, 0x39, 0, 0, 1, 0, 0, 0));
}

void ExpectDrop2(const void* data) {
  ExpectDrop1(data, 1, 2);
  EXPECT_THAT(Bytes(data, 32, 4), ElementsAre(1, 0, 0, 0));
  EXPECT_THAT(Bytes(PointerAt(data, 40), 0, 1), ElementsAre(5));
  EXPECT_THAT(Bytes(data, 48, 8), ElementsAre(3, 0, 0, 0, 4, 0, 0, 0));
}

template <class Native>
using Enum = DWORD(WINAPI*)(HANDLE, HANDLE, UINT32, Native***, UINT32*);

/// Hands the first event of the log to a check.
template <class Native, class Check>
void CheckFirst(Enum<Native> enumerate, Check check) {
  const TestSession session;
  HANDLE enumHandle = nullptr;
  Native** events = nullptr;
  UINT32 count = 0;
  ASSERT_EQ(FwpmNetEventCreateEnumHandle0(session, nullptr, &enumHandle), kSuccess);
  ASSERT_EQ(enumerate(session, enumHandle, 1, &events, &count), kSuccess);
  ASSERT_EQ(count, 1U);
  check(events[0]);
  Free(events);
}

TEST_F(NetEventBytes, OfVersion0) {
  RaiseFullDrop();
  CheckFirst<FWPM_NET_EVENT0>(FwpmNetEventEnum0, [](const void* event) {
    ExpectCommonBytes(event);
    EXPECT_THAT(Bytes(event, 8, 4), ElementsAre(0xFF, 0x01, 0, 0));
    EXPECT_THAT(Bytes(event, 88, 4), ElementsAre(3, 0, 0, 0));
    ExpectFilterAndLayer(PointerAt(event, 96));
  });
}

TEST_F(NetEventBytes, OfVersion1) {
  RaiseFullDrop();
  CheckFirst<FWPM_NET_EVENT1>(FwpmNetEventEnum1, [](const void* event) {
    ExpectCommonBytes(event);
    EXPECT_THAT(Bytes(event, 8, 4), ElementsAre(0xFF, 0x03, 0, 0));
    EXPECT_THAT(Bytes(event, 88, 56), Each(0));
    EXPECT_THAT(Bytes(event, 144, 4), ElementsAre(3, 0, 0, 0));
    ExpectDrop1(PointerAt(event, 152), 1, 2);
  });
}

TEST_F(NetEventBytes, OfVersion2) {
  RaiseFullDrop();
  CheckFirst<FWPM_NET_EVENT2>(FwpmNetEventEnum2, [](const void* event) {
    ExpectCommonBytes(event);
    EXPECT_THAT(Bytes(event, 8, 4), ElementsAre(0xFF, 0x07, 0, 0));
    ExpectPackage(event);
    EXPECT_THAT(Bytes(event, 104, 4), ElementsAre(3, 0, 0, 0));
    ExpectDrop2(PointerAt(event, 112));
  });
}

TEST_F(NetEventBytes, OfVersion3) {
  RaiseFullDrop();
  CheckFirst<FWPM_NET_EVENT3>(FwpmNetEventEnum3, [](const void* event) {
    ExpectCommonBytes(event);
    EXPECT_THAT(Bytes(event, 8, 4), ElementsAre(0xFF, 0x3F, 0, 0));
    ExpectPackage(event);
    EXPECT_STREQ(static_cast<const wchar_t*>(PointerAt(event, 104)), L"e");
    EXPECT_THAT(Bytes(event, 112, 8), ElementsAre(0x48, 0x47, 0x46, 0x45, 0x44, 0x43, 0x42, 0x41));
    EXPECT_THAT(Bytes(event, 120, 4), ElementsAre(4, 0, 0, 0));
    EXPECT_THAT(Bytes(PointerAt(event, 128), 0, 4), ElementsAre('n', 0, 0, 0));
    EXPECT_THAT(Bytes(event, 136, 4), ElementsAre(3, 0, 0, 0));
    ExpectDrop2(PointerAt(event, 144));
  });
}

TEST_F(NetEventBytes, OfWhatIsLetThrough) {
  RecordEverything(TestSession());
  EngineEmulator::RaiseEvent(
      NetEventRecord::Allow(0x0102030405060708, 0x0930).Loopback().ReauthorizedFor(0x31).Native());
  CheckFirst<FWPM_NET_EVENT2>(FwpmNetEventEnum2, [](const void* event) {
    EXPECT_THAT(Bytes(event, 104, 4), ElementsAre(6, 0, 0, 0));
    ExpectDrop1(PointerAt(event, 112), 0, 0);
  });
}

TEST_F(NetEventBytes, OfCapabilities) {
  RecordEverything(TestSession());
  EngineEmulator::RaiseEvent(NetEventRecord::CapabilityDrop(
                                 0x0102030405060708, FWPM_APPC_NETWORK_CAPABILITY_INTERNET_PRIVATE_NETWORK)
                                 .Loopback()
                                 .Native());
  CheckFirst<FWPM_NET_EVENT3>(FwpmNetEventEnum3, [](const void* event) {
    EXPECT_THAT(Bytes(event, 136, 4), ElementsAre(7, 0, 0, 0));
    const void* data = PointerAt(event, 144);
    EXPECT_THAT(Bytes(data, 0, 4), ElementsAre(2, 0, 0, 0));
    EXPECT_THAT(Bytes(data, 8, 12), ElementsAre(8, 7, 6, 5, 4, 3, 2, 1, 1, 0, 0, 0));
  });
}

TEST_F(NetEventBytes, OfIpv6Addresses) {
  NetEventRecord drop = NetEventRecord::Drop(7, 50);
  drop.Local({{0xFE, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}}, 5).Scope(12);
  EngineEmulator::RaiseEvent(drop.Native());
  CheckFirst<FWPM_NET_EVENT2>(FwpmNetEventEnum2, [](const void* event) {
    EXPECT_THAT(Bytes(event, 8, 8), ElementsAre(0x8A, 0x01, 0, 0, 1, 0, 0, 0));
    EXPECT_THAT(Bytes(event, 20, 16), ElementsAre(0xFE, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1));
    EXPECT_THAT(Bytes(event, 88, 4), ElementsAre(1, 0, 0, 0));
  });
}

TEST_F(NetEventBytes, DoNotHoldWhatTheFlagsSayIsNotThere) {
  NetEventRecord drop = FullDrop();
  FWPM_NET_EVENT3 raised = drop.Native();
  raised.header.flags = 0;
  EngineEmulator::RaiseEvent(raised);
  CheckFirst<FWPM_NET_EVENT3>(FwpmNetEventEnum3, [](const void* event) {
    EXPECT_THAT(Bytes(event, 64, 4), Each(0));
    EXPECT_THAT(Bytes(event, 72, 16), Each(0));
    EXPECT_THAT(Bytes(event, 96, 8), Each(0));
  });
}

}  // namespace
