#include "watch/NetEvent.h"

#include <gmock/gmock.h>

#include <array>
#include <cstring>

#include "policy/Connection.h"
#include "unit/watch/Drops.h"

namespace {

using Policy::IpVersion;
using Policy::Number;
using Policy::Sid;
using Watch::Decode;
using Watch::EventDirection;
using Watch::EventKind;
using Watch::NetEvent;

template <class Event>
class EveryVersion : public testing::Test {};
using Versions = testing::Types<FWPM_NET_EVENT1, FWPM_NET_EVENT2, FWPM_NET_EVENT3>;
TYPED_TEST_SUITE(EveryVersion, Versions);

TYPED_TEST(EveryVersion, TellsADropOfAConnection) {
  NativeDrop<TypeParam> native;
  native.drop.isLoopback = 1;
  native.drop.reauthReason = 8;
  native.drop.currentProfile = 1;
  const NetEvent event = Decode(native.event);
  EXPECT_EQ(event.kind, EventKind::Drop);
  EXPECT_EQ(event.type, 3u);
  EXPECT_EQ(event.time, 134398125791230000u);
  EXPECT_EQ(event.ipVersion, IpVersion::V4);
  EXPECT_EQ(event.protocol, 6);
  EXPECT_EQ(event.localAddress, Number(0xC0000201));
  EXPECT_EQ(event.remoteAddress, Number(0xC6336407));
  EXPECT_EQ(event.localPort, 50000);
  EXPECT_EQ(event.remotePort, 443);
  EXPECT_EQ(event.application, Policy::ApplicationBytes("\\device\\harddiskvolume1\\a.exe"));
  EXPECT_EQ(event.user, (Sid{5, {21, 7}}));
  EXPECT_EQ(event.package, std::nullopt);
  EXPECT_EQ(event.filterId, 12u);
  EXPECT_EQ(event.layerId, 48);
  EXPECT_EQ(event.direction, EventDirection::Outbound);
  EXPECT_EQ(event.isLoopback, true);
  EXPECT_EQ(event.reauthorizeReason, 8u);
  EXPECT_EQ(event.profile, 1u);
  EXPECT_EQ(event.capability, std::nullopt);
}

TYPED_TEST(EveryVersion, LeavesFieldsAloneThatAreNotSet) {
  NativeDrop<TypeParam> native;
  native.event.header.flags = 0;
  native.event.header.appId = {7, reinterpret_cast<UINT8*>(1)};
  native.event.header.userId = reinterpret_cast<SID*>(1);
  const NetEvent event = Decode(native.event);
  EXPECT_EQ(event.kind, EventKind::Drop);
  EXPECT_EQ(event.ipVersion, std::nullopt);
  EXPECT_EQ(event.protocol, std::nullopt);
  EXPECT_EQ(event.localAddress, std::nullopt);
  EXPECT_EQ(event.remoteAddress, std::nullopt);
  EXPECT_EQ(event.localPort, std::nullopt);
  EXPECT_EQ(event.remotePort, std::nullopt);
  EXPECT_EQ(event.application, std::nullopt);
  EXPECT_EQ(event.user, std::nullopt);
  EXPECT_EQ(event.reauthorizeReason, std::nullopt);
  EXPECT_EQ(event.filterId, 12u);
}

TYPED_TEST(EveryVersion, TellsIpV6AddressesByTheirBytes) {
  NativeDrop<TypeParam> native;
  native.event.header.ipVersion = FWP_IP_VERSION_V6;
  const std::array<UINT8, 16> local{0xFE, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
  std::memcpy(native.event.header.localAddrV6.byteArray16, local.data(), local.size());
  const NetEvent event = Decode(native.event);
  EXPECT_EQ(event.ipVersion, IpVersion::V6);
  EXPECT_EQ(event.localAddress, Number(0xFE80000000000000, 1));
}

TYPED_TEST(EveryVersion, HasNoAddressesOfAnUnknownIpVersion) {
  NativeDrop<TypeParam> native;
  const UINT32 version = 77;
  std::memcpy(&native.event.header.ipVersion, &version, sizeof version);
  const NetEvent event = Decode(native.event);
  EXPECT_EQ(event.ipVersion, std::nullopt);
  EXPECT_EQ(event.localAddress, std::nullopt);
  EXPECT_EQ(event.remoteAddress, std::nullopt);
}

TYPED_TEST(EveryVersion, SurvivesGarbage) {
  NativeDrop<TypeParam> native;
  native.event.header.appId.size = 0xFFFFFFFF;
  native.user.sid.SubAuthorityCount = 16;
  native.drop.msFwpDirection = 0;
  native.drop.currentProfile = 4;
  const NetEvent event = Decode(native.event);
  EXPECT_EQ(event.application, std::nullopt);
  EXPECT_EQ(event.user, std::nullopt);
  EXPECT_EQ(event.direction, std::nullopt);
  EXPECT_EQ(event.profile, std::nullopt);
}

TYPED_TEST(EveryVersion, SurvivesNullPointers) {
  NativeDrop<TypeParam> native;
  native.event.header.appId.data = nullptr;
  native.event.header.userId = nullptr;
  native.event.classifyDrop = nullptr;
  const NetEvent event = Decode(native.event);
  EXPECT_EQ(event.kind, EventKind::Drop);
  EXPECT_EQ(event.application, std::nullopt);
  EXPECT_EQ(event.user, std::nullopt);
  EXPECT_EQ(event.filterId, std::nullopt);
}

TYPED_TEST(EveryVersion, DoesNotReadTheDataOfOtherTypes) {
  for (const UINT32 type : {0u, 4u, 6u, 9u, 4711u}) {
    NativeDrop<TypeParam> native;
    std::memcpy(&native.event.type, &type, sizeof type);
    native.event.classifyDrop = reinterpret_cast<decltype(native.event.classifyDrop)>(1);
    const NetEvent event = Decode(native.event);
    EXPECT_EQ(event.kind, EventKind::Other);
    EXPECT_EQ(event.type, type);
    EXPECT_EQ(event.filterId, std::nullopt);
  }
}

TYPED_TEST(EveryVersion, KnowsThreeDirections) {
  NativeDrop<TypeParam> native;
  native.drop.msFwpDirection = 0x3900;
  EXPECT_EQ(Decode(native.event).direction, EventDirection::Inbound);
  native.drop.msFwpDirection = 0x3902;
  EXPECT_EQ(Decode(native.event).direction, EventDirection::Forwarded);
}

template <class Event>
class NewerVersion : public testing::Test {};
using NewerVersions = testing::Types<FWPM_NET_EVENT2, FWPM_NET_EVENT3>;
TYPED_TEST_SUITE(NewerVersion, NewerVersions);

TYPED_TEST(NewerVersion, TellsTheAppContainer) {
  NativeDrop<TypeParam> native;
  NativeSid package{{SID_REVISION, 2, {{0, 0, 0, 0, 0, 15}}, {2}}, 99};
  native.event.header.packageSid = &package.sid;
  EXPECT_EQ(Decode(native.event).package, (Sid{15, {2, 99}}));
  native.event.header.flags &= ~UINT32{0x400};
  EXPECT_EQ(Decode(native.event).package, std::nullopt);
}

TYPED_TEST(NewerVersion, TheNullSidIsNoAppContainer) {
  NativeDrop<TypeParam> native;
  SID nobody{SID_REVISION, 1, {{0, 0, 0, 0, 0, 0}}, {0}};
  native.event.header.packageSid = &nobody;
  EXPECT_EQ(Decode(native.event).package, std::nullopt);
}

TYPED_TEST(NewerVersion, TellsADropForWantOfACapability) {
  NativeDrop<TypeParam> native;
  FWPM_NET_EVENT_CAPABILITY_DROP0 data{};
  data.networkCapabilityId = FWPM_APPC_NETWORK_CAPABILITY_INTERNET_PRIVATE_NETWORK;
  data.filterId = 77;
  data.isLoopback = 1;
  native.event.type = FWPM_NET_EVENT_TYPE_CAPABILITY_DROP;
  native.event.capabilityDrop = &data;
  const NetEvent event = Decode(native.event);
  EXPECT_EQ(event.kind, EventKind::CapabilityDrop);
  EXPECT_EQ(event.capability, 2u);
  EXPECT_EQ(event.filterId, 77u);
  EXPECT_EQ(event.isLoopback, true);
  EXPECT_EQ(event.layerId, std::nullopt);
  EXPECT_EQ(event.remotePort, 443);
}

}  // namespace
