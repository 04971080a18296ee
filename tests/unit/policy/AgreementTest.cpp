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
    Maybe(connection.localAddress, [&] { return Policy::Number(network, host + Below(3)); });
    Maybe(connection.remotePort, [&] { return static_cast<UINT16>(51 + Below(5)); });
    Maybe(connection.localPort, [&] { return static_cast<UINT16>(Below(3)); });
    Maybe(connection.protocol, [&] { return static_cast<UINT8>(OneIn(2) ? 6 : 17); });
    Maybe(connection.localInterface, [&] { return UINT64{6 + Below(4)}; });
    Maybe(connection.application, [&] {
      return Policy::ApplicationBytes(OneOf(std::array{"a.exe", "b.exe", "\\x\\b.exe", "\\y\\a.exe", "c"}));
    });
    Maybe(connection.flags, [&] { return kWords[Below(kWords.size())]; });
    return connection;
  }

 private:
  static constexpr std::array<UINT32, 8> kWords{0, 0, 1, 1, 5, 4, 0x800001, 0x400001};

  template <class T, class Make>
  void Maybe(std::optional<T>& value, Make make) {
    if (!OneIn(7)) {
      value = make();
    }
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
           OneOf(std::array{"EQUAL", "EQUAL", "NOT_EQUAL", "GREATER", "LESS", "GREATER_OR_EQUAL",
                            "LESS_OR_EQUAL"}) +
           ' ' + number();
  }

  std::string Address(IpVersion version, const std::string& field) {
    const std::string match = OneIn(4) ? " NOT_EQUAL " : " EQUAL ";
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
        return OneIn(6) ? "INTERFACE_TYPE EQUAL UINT32 6" : Application();
      default:
        return Number("DIRECTION", "UINT32", 0, 2);
    }
  }

  std::mt19937 engine_;
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
    const Policy::Decider decider(snapshot);
    const Policy::Map map = Policy::MakeMap(snapshot);
    for (int j = 0; j < kConnectionsEach; ++j) {
      const Connection connection = dice.MakeConnection(version);
      const World world = World::OfIndex(dice.Below(World::kCount));
      const Policy::Verdict verdict = decider.Decide(connection);
      ++met[static_cast<std::size_t>(verdict.GetKind())];
      ASSERT_EQ(InWords(verdict.In(world)), InWords(DecideNaively(naive_, connection, world)))
          << "policy " << i << ", world " << world.Index() << "\n"
          << Policy::Describe(decider.Explain(connection, world));
      ASSERT_EQ(map.At(connection), verdict) << "policy " << i << "\n" << Policy::Describe(connection);
    }
  }
  EXPECT_THAT(met, testing::Each(testing::Gt(100'000)));
}

}  // namespace
