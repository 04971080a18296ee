// Measures how fast policy/ decides about connections and makes maps. Items per second are connections or,
// for maps, addresses. "peak" is the most heap in use at one time.
#include <benchmark/benchmark.h>

#include <algorithm>

#include "HeapPeak.h"
#include "emulator/Control.h"
#include "policy/Decide.h"
#include "policy/Lint.h"
#include "policy/Map.h"
#include "promises/Proof.h"
#include "support/InstalledFeatures.h"

namespace {

using Policy::Connection;
using Policy::Direction;
using Promises::Features;

Policy::Snapshot SnapshotOf(const Features& features) {
  EngineEmulator::Reset();
  const InstalledFeatures installed(features);
  return Policy::ReadEngine(Policy::LinkedEngine());
}

/// All five features, with four interfaces of the tunnel, three applications, and this number of permitted
/// addresses, no two of which are neighbours.
Features AllFeatures(std::int64_t addresses) {
  const auto application = [](const std::string& name) {
    return Policy::ApplicationBytes("\\device\\harddiskvolume1\\" + name);
  };
  Features features;
  features.killSwitch.emplace();
  features.killSwitch->applications = {application("a.exe"), application("b.exe")};
  features.dhcp = true;
  features.localNetworkBlock = true;
  features.leakProtection.emplace();
  features.leakProtection->interfaces = {1, 2, 3, 4};
  features.leakProtection->serverAddress = 0xCB007101;
  features.leakProtection->nameApplication = application("dns.exe");
  for (std::int64_t i = 0; i < addresses; ++i) {
    features.leakProtection->permittedAddresses.push_back(0x08000000 + static_cast<UINT32>(i) * 1001);
  }
  features.skein = Features::Skein{{5}, {0x64400001, 0x64400002, 0x64400003}};
  return features;
}

/// Connections with many combinations of direction, address and port.
std::vector<Connection> Connections() {
  std::vector<Connection> connections;
  for (const char* address : {"10.0.0.1", "192.168.1.7", "198.51.100.1", "127.0.0.1", "255.255.255.255",
                              "fe80::1", "2001:db8::1", "ff02::c"}) {
    for (const UINT16 port : {UINT16{53}, UINT16{443}}) {
      for (const Direction direction : {Direction::Outbound, Direction::Inbound}) {
        const Policy::Address remote = Policy::ParseAddress(address).value();
        Connection connection = Policy::OrdinaryConnection(direction, remote.ipVersion);
        connection.remoteAddress = remote.number;
        connection.remotePort = port;
        connections.push_back(connection);
      }
    }
  }
  return connections;
}

void DecideByTheKillSwitch(benchmark::State& state) {
  Features features;
  features.killSwitch.emplace();
  const Policy::Snapshot snapshot = SnapshotOf(features);
  const Policy::Decider decider(snapshot);
  const std::vector<Connection> connections = Connections();
  for (auto _ : state) {
    for (const Connection& connection : connections) {
      benchmark::DoNotOptimize(decider.Decide(connection));
    }
  }
  state.SetItemsProcessed(state.iterations() * std::ssize(connections));
}
BENCHMARK(DecideByTheKillSwitch);

void DecideByAllFeatures(benchmark::State& state) {
  const Policy::Snapshot snapshot = SnapshotOf(AllFeatures(state.range(0)));
  const Policy::Decider decider(snapshot);
  const std::vector<Connection> connections = Connections();
  for (auto _ : state) {
    for (const Connection& connection : connections) {
      benchmark::DoNotOptimize(decider.Decide(connection));
    }
  }
  state.SetItemsProcessed(state.iterations() * std::ssize(connections));
}
BENCHMARK(DecideByAllFeatures)->Arg(1'000);

void ReadSnapshot(benchmark::State& state) {
  EngineEmulator::Reset();
  const InstalledFeatures installed(AllFeatures(state.range(0)));
  for (auto _ : state) {
    benchmark::DoNotOptimize(Policy::ReadEngine(Policy::LinkedEngine()));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(ReadSnapshot)->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMillisecond);

void MapAllFeatures(benchmark::State& state) {
  const Policy::Snapshot snapshot = SnapshotOf(AllFeatures(state.range(0)));
  std::size_t peak = 0;
  for (auto _ : state) {
    HeapPeak::Restart();
    benchmark::DoNotOptimize(Policy::MakeMap(snapshot));
    peak = std::max(peak, HeapPeak::Get());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.counters["peak"] = benchmark::Counter(static_cast<double>(peak), benchmark::Counter::kDefaults,
                                              benchmark::Counter::OneK::kIs1024);
}
BENCHMARK(MapAllFeatures)->Arg(0)->Arg(100)->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMillisecond);

void ProveAllFeatures(benchmark::State& state) {
  const Features features = AllFeatures(state.range(0));
  const Policy::Snapshot snapshot = SnapshotOf(features);
  for (auto _ : state) {
    benchmark::DoNotOptimize(Promises::Prove(snapshot, features));
  }
}
BENCHMARK(ProveAllFeatures)->Arg(1'000)->Unit(benchmark::kMillisecond);

void LintAllFeatures(benchmark::State& state) {
  const Policy::Snapshot snapshot = SnapshotOf(AllFeatures(state.range(0)));
  for (auto _ : state) {
    benchmark::DoNotOptimize(Policy::Lint(snapshot));
  }
}
BENCHMARK(LintAllFeatures)->Arg(1'000)->Unit(benchmark::kMillisecond);

}  // namespace
