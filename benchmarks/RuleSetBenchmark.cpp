// Measures building each rule set, and converting its filters to native records. Items per second are
// filters.
#include <numeric>
#include <string>
#include <vector>

#include "WfpFirewall.h"
#include "benchmarks/Counters.h"

namespace {

using WfpFirewall::Filter;
using WfpFirewall::IpV4Address;
using WfpFirewall::Sublayer;
namespace Sublayers = WfpFirewall::Sublayers;

constexpr GUID kKey{2, 0, 0, {}};
const std::wstring kText = L"Rule set";
const std::vector<UINT64> kOneInterface{0x6000008000000};
const std::vector<std::wstring> kApps{L"C:\\Windows\\explorer.exe", L"C:\\Windows\\notepad.exe"};

/// 100.64.0.0 and the addresses after it.
std::vector<UINT32> Peers(std::int64_t count) {
  std::vector<UINT32> peers(static_cast<std::size_t>(count));
  std::iota(peers.begin(), peers.end(), 0x64400000U);
  return peers;
}

Sublayers::KillSwitch MakeKillSwitch() { return {kKey, kText, kText}; }

template <class Make>
void Build(benchmark::State& state, const Make& make) {
  const auto filters = static_cast<std::int64_t>(make().GetFilters().size());
  const Counters counters(state, filters);
  for (auto _ : state) {
    benchmark::DoNotOptimize(make());
  }
}

void BuildKillSwitch(benchmark::State& state) { Build(state, MakeKillSwitch); }
BENCHMARK(BuildKillSwitch);

void BuildKillSwitchWithTwoApps(benchmark::State& state) {
  Build(state, [] {
    Sublayers::KillSwitch killSwitch = MakeKillSwitch();
    return Sublayers::KillSwitchWithWhitelistedApps(killSwitch, kApps);
  });
}
BENCHMARK(BuildKillSwitchWithTwoApps);

void BuildKillSwitchForOneInterface(benchmark::State& state) {
  Build(state, [] {
    Sublayers::KillSwitch killSwitch = MakeKillSwitch();
    return Sublayers::KillSwitchFilteredByInterface(killSwitch, kOneInterface);
  });
}
BENCHMARK(BuildKillSwitchForOneInterface);

void BuildDhcp(benchmark::State& state) {
  Build(state, [] { return Sublayers::EnableDhcp(kKey, kText, kText); });
}
BENCHMARK(BuildDhcp);

void BuildDnsLeakProtection(benchmark::State& state) {
  Build(state, [] { return Sublayers::DnsLeakProtection(kKey, kText, kText, kOneInterface, kApps[0]); });
}
BENCHMARK(BuildDnsLeakProtection);

void BuildInterfaceLeakProtection(benchmark::State& state) {
  const std::vector<UINT32> addresses = Peers(state.range(0));
  Build(state, [&] {
    return Sublayers::InterfaceLeakProtection(kKey, kText, kText, kOneInterface, IpV4Address("203.0.113.9"),
                                              addresses.data(), addresses.size());
  });
}
BENCHMARK(BuildInterfaceLeakProtection)->Arg(1)->Arg(1'000)->Arg(100'000);

void BuildFirewallCopyOfNone(benchmark::State& state) {
  Build(state, [] { return Sublayers::BlockAppsBlockedInWinFirewall(); });
}
BENCHMARK(BuildFirewallCopyOfNone);

void BuildLocalNetworkBlock(benchmark::State& state) {
  Build(state, [] { return Sublayers::LocalNetworkBlock(kKey, kText, kText); });
}
BENCHMARK(BuildLocalNetworkBlock);

void BuildSkeinRules(benchmark::State& state) {
  const std::vector<UINT32> peers = Peers(state.range(0));
  Build(state, [&] {
    return Sublayers::SkeinFirewallRules(kKey, kText, kText, kOneInterface, peers.data(), peers.size());
  });
  state.SetComplexityN(state.range(0));
}
BENCHMARK(BuildSkeinRules)->RangeMultiplier(10)->Range(1, 100'000)->Complexity(benchmark::oN);

void MakeKillSwitchNative(benchmark::State& state) {
  std::vector<Filter> filters = MakeKillSwitch().GetFilters();
  const Counters counters(state, static_cast<std::int64_t>(filters.size()));
  for (auto _ : state) {
    for (Filter& filter : filters) {
      benchmark::DoNotOptimize(filter.ToNativeFilter());
    }
  }
}
BENCHMARK(MakeKillSwitchNative);

}  // namespace
