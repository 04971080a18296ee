#include "policy/Circumstances.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "catalog/Layers.h"
#include "policy/Certainty.h"
#include "policy/Decide.h"
#include "policy/Map.h"
#include "policy/ModelledField.h"
#include "policy/NamedInSnapshot.h"
#include "support/FilterText.h"

namespace {

using Policy::Circumstances;
using Policy::Connection;
using Policy::Direction;
using Policy::IpVersion;
using testing::ElementsAre;

const Policy::Sid kAlice = Policy::ParseSid("S-1-5-21-1-2-3-1001").value();

/// A blocking filter, alone in its sublayer.
class Block {
 public:
  Block(const std::string& layer, const std::string& conditions) {
    FilterText text(layer + " | BLOCK | UINT8 1 | - | " + conditions);
    snapshot_ = Policy::MakeSnapshot({}, {Policy::Decode(text.Record())});
  }

  [[nodiscard]] const Policy::Snapshot& Snapshot() const { return snapshot_; }

  /// "holds", "fails", "in doubt"; what a map says if it says something else.
  [[nodiscard]] std::string Of(const Connection& connection, const Circumstances& circumstances) const {
    const Policy::Verdict verdict = Policy::Decider(snapshot_, circumstances).Decide(connection);
    const Policy::Map map = Policy::MakeMap(snapshot_, {}, circumstances);
    if (map.At(connection) != verdict) {
      return "the map says: " + Describe(map.At(connection));
    }
    switch (verdict.GetKind()) {
      case Policy::Verdict::Kind::Block:
        return "holds";
      case Policy::Verdict::Kind::Permit:
        return "fails";
      default:
        return verdict.IsUnsure() ? "in doubt" : Describe(verdict);
    }
  }

 private:
  Policy::Snapshot snapshot_;
};

Connection Outbound() { return Policy::OrdinaryConnection(Direction::Outbound, IpVersion::V4); }
Connection Inbound() { return Policy::OrdinaryConnection(Direction::Inbound, IpVersion::V4); }

Circumstances Usual() { return Policy::UsualCircumstances(Policy::UserProgram(kAlice)); }
Circumstances As(Policy::Token token) { return Policy::UsualCircumstances(std::move(token)); }

/// What becomes of a condition of an outbound filter.
std::string Out(const std::string& condition, const Circumstances& circumstances) {
  return Block("ALE_AUTH_CONNECT_V4", condition).Of(Outbound(), circumstances);
}
std::string In(const std::string& condition, const Circumstances& circumstances) {
  return Block("ALE_AUTH_RECV_ACCEPT_V4", condition).Of(Inbound(), circumstances);
}

const std::string kUser = "ALE_USER_ID EQUAL SECURITY_DESCRIPTOR ";
const std::string kFamily = "ALE_PACKAGE_FAMILY_NAME EQUAL SECURITY_DESCRIPTOR ";
const std::string kPackage = "ALE_PACKAGE_ID EQUAL SID ";
const std::string kOtherPackage = "ALE_PACKAGE_ID NOT_EQUAL SID ";

TEST(Circumstances, OfWhichNothingIsKnownLeaveConditionsInDoubt) {
  const Circumstances unknown;
  EXPECT_EQ(Out(kUser + "D:(A;;CC;;;WD)", unknown), "in doubt");
  EXPECT_EQ(Out(kPackage + "S-1-0-0", unknown), "in doubt");
  EXPECT_EQ(Out("ORIGINAL_PROFILE_ID EQUAL UINT32 1", unknown), "in doubt");
  EXPECT_EQ(Out("TUNNEL_TYPE EQUAL UINT32 0", unknown), "in doubt");
  EXPECT_EQ(Out("COMPARTMENT_ID EQUAL UINT32 1", unknown), "in doubt");
  EXPECT_EQ(Out("INTERFACE_QUARANTINE_EPOCH EQUAL UINT64 1", unknown), "in doubt");
  EXPECT_EQ(Out("REAUTHORIZE_REASON FLAGS_ALL_SET UINT32 1", unknown), "in doubt");
  EXPECT_EQ(In("ALE_SIO_FIREWALL_SYSTEM_PORT EQUAL UINT32 1", unknown), "in doubt");
  EXPECT_EQ(Out("ALE_REMOTE_USER_ID EQUAL SECURITY_DESCRIPTOR D:(A;;CC;;;WD)", unknown), "in doubt");
}

TEST(Circumstances, TheUserIsAskedByAnAccessCheck) {
  EXPECT_EQ(Out(kUser + "D:(A;;CC;;;S-1-5-21-1-2-3-1001)", Usual()), "holds");
  EXPECT_EQ(Out(kUser + "D:(A;;CC;;;S-1-5-21-1-2-3-1002)", Usual()), "in doubt");
  EXPECT_EQ(Out(kUser + "D:(A;;CC;;;SY)", Usual()), "fails");
  EXPECT_EQ(Out(kUser + "D:(D;;CC;;;WD)(A;;CC;;;S-1-5-21-1-2-3-1001)", Usual()), "fails");
  EXPECT_EQ(Out(kUser + "D:(A;;CC;;;SY)", As(Policy::SystemProgram())), "holds");
  EXPECT_EQ(Out("ALE_USER_ID NOT_EQUAL SECURITY_DESCRIPTOR D:(A;;CC;;;WD)", Usual()), "in doubt");
  EXPECT_EQ(Out("ALE_USER_ID EQUAL EMPTY", Usual()), "fails");
}

TEST(Circumstances, AServiceIsItsName) {
  const auto sid = Policy::ServiceSid("Dnscache").value();
  const Circumstances service = As(Policy::ServiceProgram(sid, Policy::ServiceAccount::NetworkService));
  const std::string dnscache = "D:(A;;CCRC;;;S-1-5-80-859482183-879914841-863379149-1145462774-2388618682)";
  EXPECT_EQ(Out(kUser + dnscache, service), "holds");
  EXPECT_EQ(Out(kUser + dnscache, Usual()), "fails");
}

TEST(Circumstances, APackageIsItsSidAndEveryOtherProgramTheNullSid) {
  const Policy::Sid sid = Policy::ParseSid("S-1-15-2-1-2-3-4-5-6-7").value();
  const Circumstances app = As(Policy::AppContainerProgram({sid, {}}, kAlice));
  EXPECT_EQ(Out(kPackage + "S-1-15-2-1-2-3-4-5-6-7", app), "holds");
  EXPECT_EQ(Out(kPackage + "S-1-0-0", app), "fails");
  EXPECT_EQ(Out(kOtherPackage + "S-1-0-0", app), "holds");
  EXPECT_EQ(Out(kPackage + "S-1-0-0", Usual()), "holds");
  EXPECT_EQ(Out(kOtherPackage + "S-1-0-0", Usual()), "fails");
}

TEST(Circumstances, AFamilyIsAskedOfTheTokensAttribute) {
  const std::string family = R"(D:(XA;;CC;;;WD;(WIN://SYSAPPID Contains "Example.App_0123456789abc")))";
  const Circumstances packaged =
      As(Policy::WithPackageFamily(Policy::UserProgram(kAlice), "Example.App_0123456789abc"));
  EXPECT_EQ(Out(kFamily + family, packaged), "holds");
  EXPECT_EQ(Out(kFamily + family, Usual()), "fails");
}

TEST(Circumstances, OfSeveralNegationsAllOrNoneIsCertain) {
  EXPECT_EQ(Out(kOtherPackage + "S-1-1-0 & " + kOtherPackage + "S-1-2-0", Usual()), "holds");
  EXPECT_EQ(Out(kOtherPackage + "S-1-1-0 & " + kOtherPackage + "S-1-0-0", Usual()), "in doubt");
  EXPECT_EQ(Out(kOtherPackage + "S-1-0-0 & " + kOtherPackage + "S-1-0-0", Usual()), "fails");
}

TEST(Circumstances, WithoutIpsecPeersAreNobody) {
  EXPECT_EQ(In("ALE_REMOTE_USER_ID EQUAL SECURITY_DESCRIPTOR D:(A;;CC;;;WD)", Usual()), "fails");
  EXPECT_EQ(In("ALE_REMOTE_MACHINE_ID EQUAL EMPTY", Usual()), "holds");
}

TEST(Circumstances, TheProfileIsOpenUnlessGiven) {
  Circumstances atHome = Usual();
  atHome.profile = 2;
  for (const std::string field : {"ORIGINAL_PROFILE_ID", "CURRENT_PROFILE_ID"}) {
    EXPECT_EQ(Out(field + " EQUAL UINT32 2", Usual()), "in doubt");
    EXPECT_EQ(Out(field + " EQUAL UINT32 2", atHome), "holds");
    EXPECT_EQ(Out(field + " EQUAL UINT32 1", atHome), "fails");
    EXPECT_EQ(Out(field + " NOT_EQUAL UINT32 1", atHome), "holds");
  }
}

TEST(Circumstances, AFieldOfTheOtherDirectionHasNoValue) {
  EXPECT_EQ(Out("ARRIVAL_TUNNEL_TYPE EQUAL UINT32 0", Usual()), "fails");
  EXPECT_EQ(Out("NEXTHOP_TUNNEL_TYPE EQUAL UINT32 0", Usual()), "holds");
  EXPECT_EQ(In("ARRIVAL_TUNNEL_TYPE EQUAL UINT32 0", Usual()), "holds");
  EXPECT_EQ(In("NEXTHOP_TUNNEL_TYPE EQUAL UINT32 0", Usual()), "fails");
  EXPECT_EQ(In("NEXTHOP_TUNNEL_TYPE NOT_EQUAL UINT32 14", Usual()), "in doubt");
}

TEST(Circumstances, WhatIsUsualOfAPlace) {
  EXPECT_EQ(Out("TUNNEL_TYPE EQUAL UINT32 14", Usual()), "fails");
  EXPECT_EQ(Out("COMPARTMENT_ID EQUAL UINT32 1", Usual()), "holds");
  EXPECT_EQ(Out("COMPARTMENT_ID EQUAL UINT32 2", Usual()), "fails");
  EXPECT_EQ(In("ALE_SIO_FIREWALL_SYSTEM_PORT FLAGS_NONE_SET UINT32 1", Usual()), "holds");
  EXPECT_EQ(In("ALE_SIO_FIREWALL_SYSTEM_PORT FLAGS_ALL_SET UINT32 2", Usual()), "fails");
  EXPECT_EQ(Out("REAUTHORIZE_REASON FLAGS_ANY_SET UINT32 1", Usual()), "in doubt");
  EXPECT_EQ(Out("REAUTHORIZE_REASON EQUAL UINT32 1", Usual()), "fails");
  Circumstances anew = Usual();
  anew.reauthorizeReason = 1;
  EXPECT_EQ(Out("REAUTHORIZE_REASON FLAGS_ANY_SET UINT32 1", anew), "holds");
  EXPECT_EQ(Out("REAUTHORIZE_REASON FLAGS_ANY_SET UINT32 8", anew), "fails");
}

TEST(Circumstances, QuarantineIsOverForWhateverInterface) {
  const std::string release =
      "INTERFACE_QUARANTINE_EPOCH EQUAL UINT64 10000001 & IP_ARRIVAL_INTERFACE EQUAL UINT64 7";
  EXPECT_EQ(In(release, Usual()), "holds");
  EXPECT_EQ(In("IP_ARRIVAL_INTERFACE EQUAL UINT64 7", Usual()), "fails");
  EXPECT_EQ(In(release + " & FLAGS FLAGS_ALL_SET UINT32 0x00000004", Usual()), "fails");
  Circumstances inQuarantine = Usual();
  inQuarantine.quarantine = Circumstances::Quarantine::Epoch;
  inQuarantine.epoch = 10000001;
  EXPECT_EQ(In(release, inQuarantine), "fails");
  Connection connection = Inbound();
  connection.arrivalInterface = 7;
  EXPECT_EQ(Block("ALE_AUTH_RECV_ACCEPT_V4", release).Of(connection, inQuarantine), "holds");
  inQuarantine.epoch = 10000002;
  EXPECT_EQ(Block("ALE_AUTH_RECV_ACCEPT_V4", release).Of(connection, inQuarantine), "fails");
}

TEST(Circumstances, AnInterfacesTypeIsInItsLuid) {
  Connection wireless = Outbound();
  wireless.localInterface = 0x0047'0000'0000'0000;  // 71
  wireless.nextHopInterface = wireless.localInterface;
  const auto of = [&](const std::string& condition) {
    return Block("ALE_AUTH_CONNECT_V4", condition).Of(wireless, Usual());
  };
  EXPECT_EQ(of("INTERFACE_TYPE EQUAL UINT32 71"), "holds");
  EXPECT_EQ(of("INTERFACE_TYPE EQUAL UINT32 6"), "fails");
  EXPECT_EQ(of("INTERFACE_TYPE NOT_EQUAL UINT32 6"), "holds");
  EXPECT_EQ(of("INTERFACE_TYPE EQUAL UINT32 65607"), "fails");  // 71 and one bit too many
  EXPECT_EQ(of("NEXTHOP_INTERFACE_TYPE RANGE RANGE UINT32 70 to UINT32 80"), "holds");
  EXPECT_EQ(of("ARRIVAL_INTERFACE_TYPE EQUAL UINT32 71"), "fails");
  EXPECT_EQ(of("INTERFACE_TYPE EQUAL UINT32 71 & IP_LOCAL_INTERFACE EQUAL UINT64 7"), "fails");
  EXPECT_EQ(of("INTERFACE_TYPE EQUAL UINT32 71 & IP_LOCAL_INTERFACE RANGE RANGE UINT64 1 to UINT64 "
               "20266198323167232"),
            "holds");
  EXPECT_EQ(of("INTERFACE_TYPE EQUAL UINT32 71 & IP_LOCAL_INTERFACE NOT_EQUAL UINT64 7"), "holds");
  EXPECT_EQ(of("INTERFACE_TYPE EQUAL UINT32 71 & IP_LOCAL_INTERFACE NOT_EQUAL UINT64 19984723346456576"),
            "fails");
  EXPECT_EQ(of("INTERFACE_TYPE EQUAL UINT32 71 & IP_LOCAL_INTERFACE EQUAL EMPTY"), "fails");
  EXPECT_EQ(of("ARRIVAL_INTERFACE_TYPE EQUAL EMPTY & IP_ARRIVAL_INTERFACE EQUAL EMPTY"), "holds");
  EXPECT_EQ(of("INTERFACE_TYPE NOT_EQUAL UINT32 6 & IP_LOCAL_INTERFACE NOT_EQUAL UINT64 7"), "in doubt");
}

TEST(Circumstances, AKindOfAddressIsInTheAddress) {
  const auto to = [](const char* address, const char* condition) {
    Connection connection = Outbound();
    connection.remoteAddress = Policy::ParseAddress(address).value().number;
    return Block("ALE_AUTH_CONNECT_V4", condition).Of(connection, Usual());
  };
  EXPECT_EQ(to("224.0.0.251", "IP_DESTINATION_ADDRESS_TYPE EQUAL UINT8 3"), "holds");
  EXPECT_EQ(to("255.255.255.255", "IP_DESTINATION_ADDRESS_TYPE EQUAL UINT8 4"), "holds");
  EXPECT_EQ(to("0.0.0.0", "IP_DESTINATION_ADDRESS_TYPE EQUAL UINT8 0"), "holds");
  EXPECT_EQ(to("240.0.0.1", "IP_DESTINATION_ADDRESS_TYPE EQUAL UINT8 1"), "holds");
  EXPECT_EQ(to("192.0.2.255", "IP_DESTINATION_ADDRESS_TYPE EQUAL UINT8 4"), "fails");
  EXPECT_EQ(to("192.0.2.255", "IP_DESTINATION_ADDRESS_TYPE EQUAL UINT8 2"), "fails");
  EXPECT_EQ(to("192.0.2.1", "IP_DESTINATION_ADDRESS_TYPE NOT_EQUAL UINT8 3"), "holds");
  EXPECT_EQ(to("224.0.0.1", "IP_DESTINATION_ADDRESS_TYPE NOT_EQUAL UINT8 3"), "fails");
  EXPECT_EQ(to("224.0.0.1", "IP_LOCAL_ADDRESS_TYPE EQUAL UINT8 3"), "fails");

  Connection multicast = Policy::OrdinaryConnection(Direction::Inbound, IpVersion::V6);
  multicast.localAddress = Policy::ParseAddress("ff02::fb").value().number;
  const Block block("ALE_AUTH_RECV_ACCEPT_V6", "IP_LOCAL_ADDRESS_TYPE EQUAL UINT8 3");
  EXPECT_EQ(block.Of(multicast, Usual()), "holds");
  EXPECT_EQ(block.Of(Policy::OrdinaryConnection(Direction::Inbound, IpVersion::V6), Usual()), "fails");
}

TEST(Circumstances, TheOriginalIcmpTypeIsTheTypeWhereAFilterIsAboutIcmp) {
  const Connection ping = Policy::OrdinaryConnection(Direction::Inbound, IpVersion::V4, 1);
  const auto of = [&](const std::string& condition) {
    return Block("ALE_AUTH_RECV_ACCEPT_V4", condition).Of(ping, Usual());
  };
  EXPECT_EQ(of("IP_PROTOCOL EQUAL UINT8 1 & ORIGINAL_ICMP_TYPE EQUAL UINT16 8"), "holds");
  EXPECT_EQ(of("IP_PROTOCOL EQUAL UINT8 1 & ORIGINAL_ICMP_TYPE EQUAL UINT16 0"), "fails");
  EXPECT_EQ(of("ORIGINAL_ICMP_TYPE EQUAL UINT16 8"), "in doubt");
}

TEST(Circumstances, EveryFieldOfTheSixLayersIsModelledOrNamedAsNot) {
  for (const char* name : {"ALE_AUTH_CONNECT_V4", "ALE_AUTH_CONNECT_V6", "ALE_AUTH_RECV_ACCEPT_V4",
                           "ALE_AUTH_RECV_ACCEPT_V6", "ALE_FLOW_ESTABLISHED_V4", "ALE_FLOW_ESTABLISHED_V6"}) {
    const Catalog::Layer* layer = Catalog::FindLayer(name);
    ASSERT_NE(layer, nullptr);
    for (const Catalog::LayerField& field : layer->fields) {
      const std::string fieldName(field.field->name);
      const bool isNamed =
          std::ranges::find(Policy::FieldsNotModelled(), fieldName) != Policy::FieldsNotModelled().end();
      EXPECT_NE(Policy::HasPlace(*field.field), isNamed) << name << ' ' << fieldName;
    }
  }
}

TEST(NamedInSnapshot, TheOneAccountOfAPerson) {
  const auto account = [](const std::string& sddl) {
    const auto found = Policy::OnlyAccount(Block("ALE_AUTH_CONNECT_V4", kUser + sddl).Snapshot());
    return found ? Policy::FormatSid(*found) : "none";
  };
  EXPECT_EQ(account("D:(A;;CC;;;S-1-5-21-1-2-3-1001)(A;;CC;;;AC)"), "S-1-5-21-1-2-3-1001");
  EXPECT_EQ(account("D:(A;;CC;;;S-1-5-21-1-2-3-500)(A;;CC;;;SY)"), "none");
  EXPECT_EQ(account("D:(A;;CC;;;S-1-5-21-1-2-3-1001)(A;;CC;;;S-1-5-21-1-2-3-1002)"), "none");
}

}  // namespace
