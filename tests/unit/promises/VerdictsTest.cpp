// Compares the verdicts of every combination of the features with the files in tests/verdicts. If the
// environment variable CORVANE_WRITE_VERDICTS is set, writes the files instead.
#include <array>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "promises/Proof.h"
#include "unit/policy/NaiveEngine.h"
#include "unit/policy/PolicyTest.h"

namespace {

using Policy::Connection;
using Promises::Features;

constexpr unsigned kCombinations = 32;
constexpr const char* kFeatureNames[]{"kill-switch", "dhcp", "local-network-block", "leak-protection",
                                      "skein"};

constexpr UINT64 kTunnel = 7;
constexpr UINT64 kSkein = 11;
const std::string kResolver = Policy::ApplicationBytes("\\device\\harddiskvolume1\\resolver.exe");
const std::string kBlocked = Policy::ApplicationBytes("\\device\\harddiskvolume1\\blocked.exe");
const Policy::Labels kLabels{{{kTunnel, "Tunnel"}, {kSkein, "Skein"}},
                             {{kResolver, "resolver.exe"}, {kBlocked, "blocked.exe"}}};

/// The features of a combination, which has a bit for each in the order of their names. The arguments are
/// always the same.
Features FeaturesOf(unsigned combination) {
  Features features;
  if ((combination & 1) != 0) {
    features.killSwitch.emplace();
  }
  features.dhcp = (combination & 2) != 0;
  features.localNetworkBlock = (combination & 4) != 0;
  if ((combination & 8) != 0) {
    // The server is 203.0.113.1, the permitted addresses are 203.0.113.2 and 203.0.113.3.
    features.leakProtection = Features::LeakProtection{{kTunnel}, 0xCB007101, {0xCB007102, 0xCB007103},
                                                       kResolver, {kBlocked}, {kBlocked}};
  }
  if ((combination & 16) != 0) {
    features.skein = Features::Skein{{kSkein}, {0x64400001, 0x64400002}};
  }
  return features;
}

std::string NameOf(unsigned combination) {
  std::string name;
  for (std::size_t i = 0; i < std::size(kFeatureNames); ++i) {
    if ((combination >> i & 1) != 0) {
      name.append(name.empty() ? "" : "+").append(kFeatureNames[i]);
    }
  }
  return name.empty() ? "nothing" : name;
}

bool IsWriting() { return std::getenv("CORVANE_WRITE_VERDICTS") != nullptr; }

std::filesystem::path PathOf(const std::string& name) {
  return std::filesystem::path(CORVANE_VERDICTS) / (name + ".txt");
}

/// Compares a text with the file of this name, or writes the file.
void Keep(const std::string& name, const std::string& text) {
  if (IsWriting()) {
    std::ofstream(PathOf(name), std::ios::binary) << text;
    return;
  }
  std::ifstream file(PathOf(name), std::ios::binary);
  const std::string kept{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  EXPECT_EQ(text, kept) << "If the change is meant, run this test with CORVANE_WRITE_VERDICTS=1.";
}

class VerdictsTest : public PolicyTest, public testing::WithParamInterface<unsigned> {};

TEST_P(VerdictsTest, AreThoseInTheFile) {
  Install(FeaturesOf(GetParam()));
  const Policy::Snapshot snapshot = Read();
  Keep(NameOf(GetParam()),
       NameOf(GetParam()) + "\n\n" + Policy::Describe(Policy::MakeMap(snapshot, kLabels), kLabels));
}

/// Random connections, with values that the features treat in a special way.
class Traffic {
 public:
  explicit Traffic(unsigned seed) : engine_(seed) {}

  template <class Table>
  typename Table::value_type OneOf(const Table& table) {
    return table[engine_() % table.size()];
  }

  Connection Next() {
    const Policy::Address remote = Policy::ParseAddress(OneOf(kAddresses)).value();
    Connection connection = Policy::OrdinaryConnection(
        OneIn(2) ? Policy::Direction::Outbound : Policy::Direction::Inbound, remote.ipVersion);
    Set(connection.remoteAddress, remote.number);
    Set(connection.remotePort, OneOf(kPorts));
    Set(connection.localPort, OneOf(kPorts));
    Set(connection.protocol, OneIn(2) ? UINT8{6} : UINT8{17});
    Set(connection.localInterface, OneOf(kInterfaces));
    Set(connection.flags, OneOf(kWords));
    if (OneIn(3)) {
      Set(connection.application, kResolver);
    } else {
      Set(connection.application, OneIn(3) ? kBlocked : connection.application);
    }
    return connection;
  }

  Policy::World NextWorld() { return Policy::World::OfIndex(engine_() % Policy::World::kCount); }

 private:
  static constexpr std::array kAddresses{
      "10.0.0.1",    "172.16.0.1",  "172.32.0.1",      "192.168.1.1", "127.0.0.1",  "239.255.255.250",
      "203.0.113.1", "203.0.113.2", "255.255.255.255", "100.64.0.1",  "100.64.0.3", "198.51.100.1",
      "::1",         "fe80::1",     "fd00::1",         "ff02::c",     "ff02::1",    "2001:db8::1"};
  static constexpr std::array<UINT16, 9> kPorts{53, 67, 68, 443, 546, 547, 1, 50000, 0};
  static constexpr std::array<UINT64, 4> kInterfaces{kTunnel, kSkein, 999, 1};
  static constexpr std::array<UINT32, 5> kWords{0, 0, 1, 5, 0x800001};

  bool OneIn(unsigned count) { return engine_() % count == 0; }

  template <class T, class Value>
  void Set(std::optional<T>& field, const Value& value) {
    if (OneIn(12)) {
      field.reset();
    } else {
      field = value;
    }
  }

  std::mt19937 engine_;
};

/// The emulator's filters for the naive engine, which are made from their texts.
std::vector<NaiveSublayer> MakeNaive(const Policy::Snapshot& snapshot, std::deque<FilterText>& records) {
  const EngineEmulator::Snapshot engine = EngineEmulator::TakeSnapshot();
  std::vector<NaiveSublayer> sublayers;
  for (const EngineEmulator::SublayerObject& sublayer : engine.sublayers) {
    sublayers.push_back({sublayer.weight, {}});
    for (const EngineEmulator::FilterObject& filter : engine.filters) {
      if (IsEqualGUID(filter.subLayerKey, sublayer.key)) {
        NaiveFilter& naive =
            sublayers.back().filters.emplace_back(records.emplace_back(filter.text).Record());
        naive.effectiveWeight =
            std::ranges::find(snapshot.filters, filter.id, &Policy::Filter::id)->effectiveWeight;
      }
    }
  }
  return sublayers;
}

TEST_P(VerdictsTest, AgreeWithTheNaiveEngine) {
  Install(FeaturesOf(GetParam()));
  const Policy::Snapshot snapshot = Read();
  std::deque<FilterText> records;
  const std::vector<NaiveSublayer> naive = MakeNaive(snapshot, records);
  const Policy::Decider decider(snapshot);
  const Policy::Map map = Policy::MakeMap(snapshot);
  // The library's filters ask nobody who he is.
  const NaiveCircumstances anybody;
  Traffic traffic(GetParam());
  for (int i = 0; i < 2'000; ++i) {
    const Connection connection = traffic.Next();
    const Policy::World world = traffic.NextWorld();
    const Policy::Verdict verdict = decider.Decide(connection);
    ASSERT_EQ(verdict.In(world), DecideNaively(naive, connection, anybody, world))
        << Policy::Describe(decider.Explain(connection, world));
    ASSERT_EQ(map.At(connection), verdict) << Policy::Describe(connection);
  }
}

std::string CombinationName(const testing::TestParamInfo<unsigned>& combination) {
  std::string name = NameOf(combination.param);
  std::ranges::replace_if(
      name, [](char character) { return character == '-' || character == '+'; }, '_');
  return name;
}

INSTANTIATE_TEST_SUITE_P(All, VerdictsTest, testing::Range(0U, kCombinations), CombinationName);

class PromiseStatesTest : public PolicyTest {};

/// The promises that do not simply hold, in all combinations.
TEST_F(PromiseStatesTest, AreThoseInTheFile) {
  std::string text;
  for (unsigned combination = 0; combination < kCombinations; ++combination) {
    SetUpAgain();
    Install(FeaturesOf(combination));
    const Policy::Snapshot snapshot = Read();
    text += NameOf(combination) + '\n';
    for (const Promises::PromiseResult& result : Promises::Prove(snapshot, FeaturesOf(combination))) {
      if (result.keeping == Promises::Keeping::Holds) {
        continue;
      }
      text += "  " + result.name + ": " + std::string(Promises::KeepingText(result.keeping)) + '\n';
      for (const auto& choices : Policy::Alternatives(result.worlds)) {
        text += "    holds with " + Policy::Describe(choices) + '\n';
      }
      text += "    promised " + std::string(Policy::ActionText(*result.promised)) + ": " +
              Policy::Describe(result.counterexample->connection, kLabels) + '\n';
    }
  }
  Keep("promises", text);
}

}  // namespace
