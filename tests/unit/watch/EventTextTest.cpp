#include "watch/EventText.h"

#include <gmock/gmock.h>

#include "unit/watch/Drops.h"

namespace {

using Watch::NetEvent;

TEST(EventText, TimesAreInUtcToTheMillisecond) {
  EXPECT_EQ(Watch::TimeText(kNineSixteen), "2026-11-22T09:16:19.123Z");
  EXPECT_EQ(Watch::TimeText(0), "1601-01-01T00:00:00.000Z");
  EXPECT_EQ(Watch::TimeText(2650467743999999999), "9999-12-31T23:59:59.999Z");
  EXPECT_EQ(Watch::TimeText(2650467744000000000), "unknown time");
  EXPECT_EQ(Watch::TimeText(UINT64_MAX), "unknown time");
}

TEST(EventText, AConnectionIsToldWithItsUser) {
  EXPECT_EQ(
      Watch::ConnectionText(Drop()),
      "outbound IPv4, protocol 6 (TCP), local 192.0.2.1:50000, remote 198.51.100.7:443, user S-1-5-21-7");
}

TEST(EventText, WhatTheEventDoesNotTellIsLeftOut) {
  EXPECT_EQ(Watch::ConnectionText({}), "traffic");
  EXPECT_EQ(Watch::ProgramText({}), "unknown program");
  EXPECT_EQ(Watch::TargetText({}), "");
  NetEvent event = Drop();
  event.direction.reset();
  event.localAddress.reset();
  event.remotePort.reset();
  event.user.reset();
  EXPECT_EQ(Watch::ConnectionText(event), "IPv4, protocol 6 (TCP), local port 50000, remote 198.51.100.7");
}

TEST(EventText, AppContainersAndLoopbackAreTold) {
  NetEvent event = Drop();
  event.user = Policy::ParseSid("S-1-5-18");
  event.package = Policy::ParseSid("S-1-15-2-7");
  event.isLoopback = true;
  EXPECT_EQ(
      Watch::ConnectionText(event),
      "outbound IPv4, protocol 6 (TCP), local 192.0.2.1:50000, remote 198.51.100.7:443, user SYSTEM, app "
      "container S-1-15-2-7, loopback");
}

TEST(EventText, APortOfAnIpV6AddressStandsBehindBrackets) {
  NetEvent event = Drop();
  event.ipVersion = Policy::IpVersion::V6;
  event.remoteAddress = Policy::Number(0xFE80000000000000, 1);
  EXPECT_EQ(Watch::TargetText(event), "to [fe80::1]:443");
}

TEST(EventText, OfAnInboundConnectionTheLocalPortIsItsTarget) {
  NetEvent event = Drop();
  event.direction = Watch::EventDirection::Inbound;
  EXPECT_EQ(Watch::TargetText(event), "from 198.51.100.7 to port 50000");
}

TEST(EventText, ProgramsAreToldByTheirIds) {
  EXPECT_EQ(Watch::ProgramText(Drop()), "\\device\\harddiskvolume1\\a.exe");
}

TEST(EventText, TypesAndCapabilitiesHaveNames) {
  EXPECT_EQ(Watch::TypeName(6), "CLASSIFY_ALLOW");
  EXPECT_EQ(Watch::TypeName(10), "LPM_PACKET_ARRIVAL");
  EXPECT_EQ(Watch::TypeName(11), "type 11");
  EXPECT_EQ(Watch::CapabilityName(0), "internetClient");
  EXPECT_EQ(Watch::CapabilityName(2), "privateNetworkClientServer");
  EXPECT_EQ(Watch::CapabilityName(3), "capability 3");
}

}  // namespace
