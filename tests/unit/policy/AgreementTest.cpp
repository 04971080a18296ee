// The naive engine, which is written independently, must agree with decisions and maps on random filters.
#include <array>
#include <deque>
#include <random>

#include "support/FilterText.h"
#include "unit/policy/NaiveEngine.h"
#include "unit/policy/PolicyTest.h"

namespace {

using Policy::Connection;
using Policy::Direction;
using Policy::IpVersion;
using Policy::World;

constexpr int kPolicies = 250;
constexpr int kConnectionsEach = 4'000;

/// Makes random filters and connections, with values from small sets, so that many connections match filters.
class Dice {
 public:
  explicit Dice(unsigned seed) : engine_(seed) {}

  std::size_t Below(std::size_t count) { return engine_() % count; }
  bool OneIn(std::size_t count) { return Below(count) == 0; }

  template <std::size_t kCount>
  std::string OneOf(const std::array<const char*, kCount>& texts) {
    return texts[Below(kCount)];
  }

  /// A filter at one of the layers of an IP version.
  std::string Filter(IpVersion version) {
    const std::string suffix = version == IpVersion::V4 ? "_V4" : "_V6";
    const std::string layer =
        OneOf(std::array{"ALE_AUTH_CONNECT", "ALE_AUTH_RECV_ACCEPT", "ALE_FLOW_ESTABLISHED"});
    std::string text = layer + suffix + " | ";
    if (OneIn(12)) {
      text += OneIn(2) ? "CALLOUT_TERMINATING" : "CALLOUT_UNKNOWN";
    } else {
      text += OneIn(2) ? "PERMIT" : "BLOCK";
    }
    text += OneOf(std::array{" | UINT8 3 | ", " | UINT8 3 | ", " | UINT8 4 | ", " | EMPTY | ",
                             " | UINT64 0x3000000000000005 | ", " | UINT64 0x4000000000000000 | "});
    text += OneIn(4) ? "CLEAR_ACTION_RIGHT | " : "- | ";
    std::string conditions;
    if (OneIn(3)) {
      conditions = WhoOrWhere(layer);
    }
    // Where several fields tell of one thing, negations of each are in doubt.
    mayNegate_ =
        conditions.find("INTERFACE") == std::string::npos && conditions.find("TYPE") == std::string::npos;
    for (std::size_t count = Below(4); count > 0; --count) {
      conditions += (conditions.empty() ? "" : " & ") + Condition(version, layer);
    }
    return text + (conditions.empty() ? "-" : conditions);
  }

  Connection MakeConnection(IpVersion version) {
    Connection connection;
    connection.direction = OneIn(2) ? Direction::Outbound : Direction::Inbound;
    connection.ipVersion = version;
    const UINT64 network = version == IpVersion::V4 ? 0 : 0xFE80000000000000;
    const UINT64 host = version == IpVersion::V4 ? 0x0A000000 : 0;
    Maybe(connection.remoteAddress, [&] { return Policy::Number(network, host + Below(9)); });
    Maybe(connection.localAddress, [&] {
      const Policy::Number multicast =
          version == IpVersion::V4 ? Policy::Number(0xE0000001) : Policy::Number(0xFF02000000000000, 1);
      return OneIn(5) ? multicast : Policy::Number(network, host + Below(3));
    });
    Maybe(connection.remotePort, [&] { return static_cast<UINT16>(51 + Below(5)); });
    Maybe(connection.localPort, [&] { return static_cast<UINT16>(Below(3)); });
    Maybe(connection.protocol, [&] { return static_cast<UINT8>(OneIn(2) ? 6 : 17); });
    Maybe(connection.localInterface, [&] { return Interface(); });
    auto& other = connection.direction == Direction::Outbound ? connection.nextHopInterface
                                                              : connection.arrivalInterface;
    Maybe(other, [&] { return Interface(); });
    Maybe(connection.application, [&] {
      return Policy::ApplicationBytes(OneOf(std::array{"a.exe", "b.exe", "\\x\\b.exe", "\\y\\a.exe", "c"}));
    });
    Maybe(connection.flags, [&] { return kWords[Below(kWords.size())]; });
    return connection;
  }

  NaiveCircumstances MakeCircumstances() {
    NaiveCircumstances circumstances;
    circumstances.person = &PersonOf(Below(kNaivePeople));
    if (!OneIn(3)) {
      circumstances.profile = static_cast<UINT32>(1 + Below(3));
    }
    circumstances.tunnelType = OneIn(3) ? 14 : 0;
    circumstances.compartment = OneIn(3) ? 2 : 1;
    if (OneIn(2)) {
      circumstances.epoch = 1 + Below(2);
    }
    circumstances.systemPort = static_cast<UINT32>(Below(4));
    circumstances.reauthorizeReason = static_cast<UINT32>(Below(3));
    return circumstances;
  }

 private:
  static constexpr std::array<UINT32, 8> kWords{0, 0, 1, 1, 5, 4, 0x800001, 0x400001};

  template <class T, class Make>
  void Maybe(std::optional<T>& value, Make make) {
    if (!OneIn(7)) {
      value = make();
    }
  }

  UINT64 Interface() { return OneIn(3) ? UINT64{71} << 48 | 6 : UINT64{6 + Below(4)}; }

  /// A condition on who connects or where.
  std::string WhoOrWhere(const std::string& layer) {
    if (OneIn(2)) {
      return Who();
    }
    const bool isEstablished = layer == "ALE_FLOW_ESTABLISHED";
    switch (Below(isEstablished ? 4 : 8)) {
      case 0:
        return "TUNNEL_TYPE EQUAL UINT32 " + OneOf(std::array{"0", "14"});
      case 1:
        return "COMPARTMENT_ID EQUAL UINT32 " + OneOf(std::array{"1", "2"});
      case 2:
        return "INTERFACE_TYPE EQUAL UINT32 " + OneOf(std::array{"0", "71"});
      case 3:
        return "IP_LOCAL_ADDRESS_TYPE EQUAL UINT8 " + OneOf(std::array{"0", "1", "3", "4"});
      case 4:
        return OneOf(std::array{"ORIGINAL_PROFILE_ID", "CURRENT_PROFILE_ID"}) + " EQUAL UINT32 " +
               OneOf(std::array{"1", "2"});
      case 5:
        return "INTERFACE_QUARANTINE_EPOCH EQUAL UINT64 1 & IP_ARRIVAL_INTERFACE EQUAL UINT64 7";
      case 6:
        return "REAUTHORIZE_REASON " + OneOf(std::array{"EQUAL", "FLAGS_ALL_SET", "FLAGS_NONE_SET"}) +
               " UINT32 " + OneOf(std::array{"1", "2"});
      default:
        return OneIn(2) && layer == "ALE_AUTH_RECV_ACCEPT"
                   ? "ALE_SIO_FIREWALL_SYSTEM_PORT FLAGS_NONE_SET UINT32 1"
                   : OneOf(std::array{"ARRIVAL", "NEXTHOP"}) +
                         OneOf(std::array{"_TUNNEL_TYPE EQUAL UINT32 14", "_TUNNEL_TYPE NOT_EQUAL UINT32 14",
                                          "_INTERFACE_TYPE EQUAL UINT32 71"});
    }
  }

  std::string Who() {
    switch (Below(4)) {
      case 0:
        return "ALE_PACKAGE_ID " + OneOf(std::array{"EQUAL SID S-1-0-0", "NOT_EQUAL SID S-1-0-0",
                                                    "EQUAL SID S-1-15-2-1-2-3-4-5-6-7", "EQUAL EMPTY"});
      case 1:
        return "ALE_PACKAGE_FAMILY_NAME EQUAL SECURITY_DESCRIPTOR D:" + Entries();
      default:
        return OneIn(8) ? "ALE_REMOTE_USER_ID EQUAL SECURITY_DESCRIPTOR D:(A;;CC;;;WD)"
                        : "ALE_USER_ID EQUAL SECURITY_DESCRIPTOR D:" + Entries();
    }
  }

  std::string Entries() {
    std::string entries;
    for (std::size_t count = Below(4); count > 0; --count) {
      entries +=
          OneOf(std::array{"(A;;CC;;;", "(A;;CCRC;;;", "(A;;CC;;;", "(A;;RC;;;", "(D;;CC;;;"}) +
          OneOf(std::array{"WD", "SY", "NS", "BU", "BA", "AC", "S-1-5-21-1-2-3-1001", "S-1-5-80-0",
                           "S-1-5-80-1-2-3-4-5", "S-1-15-3-1", "S-1-15-3-2", "S-1-15-2-1-2-3-4-5-6-7"}) +
          ')';
    }
    if (OneIn(4)) {
      entries += R"((XA;;CC;;;WD;(WIN://SYSAPPID Contains "Example.App_0123456789abc")))";
    }
    return entries;
  }

  std::string Number(const std::string& field, const std::string& type, std::size_t first,
                     std::size_t count) {
    const auto number = [&] { return type + ' ' + std::to_string(first + Below(count)); };
    if (OneIn(12)) {
      return field + " EQUAL EMPTY";
    }
    if (OneIn(8)) {
      return field + OneOf(std::array{" RANGE", " EQUAL"}) + " RANGE " + type + ' ' + std::to_string(first) +
             " to " + type + ' ' + std::to_string(first + 1 + Below(count));
    }
    return field + ' ' +
           OneOf(std::array{"EQUAL", "EQUAL", mayNegate_ ? "NOT_EQUAL" : "EQUAL", "GREATER", "LESS",
                            "GREATER_OR_EQUAL", "LESS_OR_EQUAL"}) +
           ' ' + number();
  }

  std::string Address(IpVersion version, const std::string& field) {
    const std::string match = OneIn(4) && mayNegate_ ? " NOT_EQUAL " : " EQUAL ";
    if (version == IpVersion::V4) {
      return field + match +
             OneOf(std::array{"UINT32 10.0.0.1", "UINT32 10.0.0.2", "V4_ADDR_MASK 10.0.0.0/255.255.255.252",
                              "V4_ADDR_MASK 10.0.0.6/255.255.255.254",
                              "V4_ADDR_MASK 10.0.0.3/255.255.255.255"});
    }
    return field + match +
           OneOf(std::array{"BYTE_ARRAY16 fe80::1", "V6_ADDR_MASK fe80::/126", "V6_ADDR_MASK fe80::6/127",
                            "V6_ADDR_MASK fe80::2/128", "V6_ADDR_MASK ::/0"});
  }

  std::string Flags() {
    return "FLAGS " +
           OneOf(std::array{"EQUAL", "EQUAL", "NOT_EQUAL", "FLAGS_ALL_SET", "FLAGS_ANY_SET",
                            "FLAGS_NONE_SET"}) +
           " UINT32 " + OneOf(std::array{"1", "1", "4", "5", "0x800001", "0x800005", "0x800000", "0"});
  }

  std::string Application() {
    return "ALE_APP_ID " + OneOf(std::array{"EQUAL", "EQUAL", "NOT_EQUAL", "PREFIX", "NOT_PREFIX"}) +
           " BYTE_BLOB " + OneOf(std::array{"a.exe", "b.exe", "\\x\\b.exe", "exe"});
  }

  std::string Condition(IpVersion version, const std::string& layer) {
    switch (Below(layer == "ALE_FLOW_ESTABLISHED" ? 10 : 9)) {
      case 0:
      case 1:
        return Address(version, "IP_REMOTE_ADDRESS");
      case 2:
        return Address(version, "IP_LOCAL_ADDRESS");
      case 3:
        return Number("IP_REMOTE_PORT", "UINT16", 51, 5);
      case 4:
        return Number("IP_LOCAL_PORT", "UINT16", 0, 3);
      case 5:
        return Number("IP_PROTOCOL", "UINT8", 6, 12);
      case 6:
        return Number("IP_LOCAL_INTERFACE", "UINT64", 6, 4);
      case 7:
        return Flags();
      case 8:
        return OneIn(6) ? "ALE_SECURITY_ATTRIBUTE_FQBN_VALUE EQUAL BYTE_BLOB x" : Application();
      default:
        return Number("DIRECTION", "UINT32", 0, 2);
    }
  }

  std::mt19937 engine_;
  bool mayNegate_ = true;
};

/// The same random filters in the emulated engine and in the naive one.
class AgreementTest : public PolicyTest {
 protected:
  void InstallRandom(Dice& dice, IpVersion version) {
    records_.clear();
    naive_.clear();
    for (std::size_t sublayers = 1 + dice.Below(3); sublayers > 0; --sublayers) {
      const auto weight = static_cast<UINT16>(100 + dice.Below(3));
      std::string filters;
      naive_.push_back({weight, {}});
      for (std::size_t count = 1 + dice.Below(7); count > 0; --count) {
        const std::string filter = dice.Filter(version);
        filters += filter + '\n';
        naive_.back().filters.emplace_back(records_.emplace_back(filter).Record());
      }
      Install(weight, filters);
    }
  }

  /// Takes ids and effective weights, which only the emulated engine can give, into the naive engine.
  void TakeWeights(const Policy::Snapshot& snapshot) {
    auto filter = snapshot.filters.begin();
    for (NaiveSublayer& sublayer : naive_) {
      for (NaiveFilter& naive : sublayer.filters) {
        naive.id = filter->id;
        naive.effectiveWeight = filter->effectiveWeight;
        ++filter;
      }
    }
  }

  std::deque<FilterText> records_;
  std::vector<NaiveSublayer> naive_;
};

std::string InWords(std::optional<Policy::Action> action) {
  return action ? std::string(Policy::ActionText(*action)) : "unsure";
}

TEST_F(AgreementTest, DecisionsAndMapsAgreeWithTheNaiveEngineOnAMillionConnections) {
  Dice dice(20240501);
  std::array<int, 3> met{};
  for (int i = 0; i < kPolicies; ++i) {
    SetUpAgain();
    const IpVersion version = i % 2 == 0 ? IpVersion::V4 : IpVersion::V6;
    InstallRandom(dice, version);
    const Policy::Snapshot snapshot = Read();
    TakeWeights(snapshot);
    const NaiveCircumstances circumstances = dice.MakeCircumstances();
    const Policy::Decider decider(snapshot, circumstances.ToCircumstances());
    const Policy::Map map = Policy::MakeMap(snapshot, {}, circumstances.ToCircumstances());
    for (int j = 0; j < kConnectionsEach; ++j) {
      const Connection connection = dice.MakeConnection(version);
      const World world = World::OfIndex(dice.Below(World::kCount));
      const Policy::Verdict verdict = decider.Decide(connection);
      ++met[static_cast<std::size_t>(verdict.GetKind())];
      ASSERT_EQ(InWords(verdict.In(world)), InWords(DecideNaively(naive_, connection, circumstances, world)))
          << "policy " << i << ", world " << world.Index() << "\n"
          << Policy::Describe(decider.Explain(connection, world));
      ASSERT_EQ(map.At(connection), verdict) << "policy " << i << "\n" << Policy::Describe(connection);
    }
  }
  EXPECT_THAT(met, testing::Each(testing::Gt(100'000)));
}

}  // namespace
