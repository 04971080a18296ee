// Measures each command with an engine that does nothing, and its floor: a loop that makes the same engine
// calls from tables. The difference is the cost of the library. An iteration switches a feature on and off,
// or replaces it once. Items per second are the filters that the engine gets.
#include <corvane/native_firewall.h>

#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <string>
#include <vector>

#include "WfpFirewall.h"
#include "benchmarks/Counters.h"
#include "benchmarks/Floor.h"

namespace {

using WfpFirewall::IpV4Address;
namespace Sublayers = WfpFirewall::Sublayers;

constexpr GUID Key(unsigned number) { return {number, 0, 0, {}}; }
constexpr GUID kKillSwitch = Key(2);
constexpr GUID kLocalNetwork = Key(3);
constexpr GUID kDhcp = Key(4);
constexpr GUID kDnsLeak = Key(5);
constexpr GUID kInterfaceLeak = Key(6);
constexpr GUID kFirewallCopy = Key(7);
constexpr GUID kSkein = Key(8);

const wchar_t* const kText = L"Rule set";
const wchar_t* const kApp = L"C:\\Windows\\explorer.exe";
const char* const kServer = "203.0.113.9";
constexpr std::uint64_t kLuid = 0x6000008000000;

std::uint64_t CORVANE_CALL IgnoreLine(const char*) { return 0; }

void Check(std::uint64_t code) {
  if (code != 0) {
    std::fprintf(stderr, "A command failed: %s\n", GetErrorText());
    std::abort();
  }
}

/// Initialises the library and opens the session, so that iterations do not include it.
void StartLibrary() {
  const GUID provider = Key(1);
  Initialize(&provider, kText, kText, &kKillSwitch, kText, kText, &kLocalNetwork, kText, kText, &kDhcp, kText,
             kText, &kDnsLeak, kText, kText, &kInterfaceLeak, kText, kText, &kFirewallCopy, kText, kText,
             &kSkein, kText, kText, kApp);
  Check(EnableDhcp(IgnoreLine));
  Check(DisableDhcp(IgnoreLine));
}

/// 100.64.0.0 and the addresses after it.
std::vector<std::uint32_t> Addresses(std::int64_t count) {
  std::vector<std::uint32_t> addresses(static_cast<std::size_t>(count));
  std::iota(addresses.begin(), addresses.end(), 0x64400000U);
  return addresses;
}

Floor KillSwitchFloor() { return {kKillSwitch, Sublayers::KillSwitch(kKillSwitch, kText, kText)}; }

Floor InterfaceLeakFloor(const std::vector<std::uint32_t>& addresses) {
  return {kInterfaceLeak,
          Sublayers::InterfaceLeakProtection(kInterfaceLeak, kText, kText, {kLuid}, IpV4Address(kServer),
                                             addresses.data(), addresses.size())};
}

Floor DnsLeakFloor() {
  return {kDnsLeak, Sublayers::DnsLeakProtection(kDnsLeak, kText, kText, {kLuid}, kApp), 4};
}

Floor SkeinFloor(const std::vector<std::uint32_t>& peers) {
  return {kSkein, Sublayers::SkeinFirewallRules(kSkein, kText, kText, {kLuid}, peers.data(), peers.size())};
}

template <class Work>
void Measure(benchmark::State& state, std::size_t filters, const Work& work) {
  const Counters counters(state, static_cast<std::int64_t>(filters));
  for (auto _ : state) {
    work();
  }
}

void MeasureFloor(benchmark::State& state, Floor floor) {
  Measure(state, floor.FilterCount(), [&] {
    floor.Install(nullptr);
    floor.Remove(nullptr);
  });
}

/// @param confirmOthers looks up the rule sets that stay, as the library does when it installs.
template <class ConfirmOthers>
void MeasureReplacingFloor(benchmark::State& state, Floor floor, const ConfirmOthers& confirmOthers) {
  floor.Install(nullptr);
  Measure(state, floor.FilterCount(), [&] {
    FwpmTransactionBegin0(nullptr, 0);
    floor.Remove(nullptr);
    confirmOthers();
    floor.Install(nullptr);
    FwpmTransactionCommit0(nullptr);
  });
  floor.Remove(nullptr);
}

void KillSwitch(benchmark::State& state) {
  StartLibrary();
  Measure(state, 51, [] {
    Check(DisableInternet(nullptr, 0, nullptr, 0, IgnoreLine));
    Check(EnableInternet());
  });
}
BENCHMARK(KillSwitch);

void KillSwitchAtTheFloor(benchmark::State& state) { MeasureFloor(state, KillSwitchFloor()); }
BENCHMARK(KillSwitchAtTheFloor);

void KillSwitchReplaced(benchmark::State& state) {
  StartLibrary();
  Check(DisableInternet(nullptr, 0, nullptr, 0, IgnoreLine));
  Measure(state, 51, [] { Check(DisableInternet(nullptr, 0, nullptr, 0, IgnoreLine)); });
  Check(EnableInternet());
}
BENCHMARK(KillSwitchReplaced);

void KillSwitchReplacedAtTheFloor(benchmark::State& state) {
  MeasureReplacingFloor(state, KillSwitchFloor(), [] {});
}
BENCHMARK(KillSwitchReplacedAtTheFloor);

void Dhcp(benchmark::State& state) {
  StartLibrary();
  Measure(state, 6, [] {
    Check(EnableDhcp(IgnoreLine));
    Check(DisableDhcp(IgnoreLine));
  });
}
BENCHMARK(Dhcp);

void DhcpAtTheFloor(benchmark::State& state) {
  MeasureFloor(state, {kDhcp, Sublayers::EnableDhcp(kDhcp, kText, kText)});
}
BENCHMARK(DhcpAtTheFloor);

void ProtectFromLeaks(const std::vector<std::uint32_t>& addresses) {
  Check(EnableLeakProtection(kServer, IgnoreLine, nullptr, 0, kLuid, addresses.data(), addresses.size()));
}

void LeakProtection(benchmark::State& state) {
  StartLibrary();
  const std::vector<std::uint32_t> addresses = Addresses(state.range(0));
  Measure(state, 33, [&] {
    ProtectFromLeaks(addresses);
    Check(DisableLeakProtection());
  });
}
BENCHMARK(LeakProtection)->Arg(1)->Arg(1'000)->Arg(100'000);

void LeakProtectionAtTheFloor(benchmark::State& state) {
  Floor dns = DnsLeakFloor();
  Floor copy(kFirewallCopy, Sublayers::BlockAppsBlockedInWinFirewall());
  Floor interfaces = InterfaceLeakFloor(Addresses(state.range(0)));
  Measure(state, 33, [&] {
    EnumerateFilters();
    for (Floor* floor : {&dns, &copy, &interfaces}) {
      floor->Install(nullptr);
    }
    for (Floor* floor : {&interfaces, &dns, &copy}) {
      floor->Remove(nullptr);
    }
  });
}
BENCHMARK(LeakProtectionAtTheFloor)->Arg(1)->Arg(1'000)->Arg(100'000);

void LeakProtectionReplaced(benchmark::State& state) {
  StartLibrary();
  const std::vector<std::uint32_t> addresses = Addresses(1);
  ProtectFromLeaks(addresses);
  Measure(state, 21, [&] { ProtectFromLeaks(addresses); });
  Check(DisableLeakProtection());
}
BENCHMARK(LeakProtectionReplaced);

void LeakProtectionReplacedAtTheFloor(benchmark::State& state) {
  Floor dns = DnsLeakFloor();
  Floor copy(kFirewallCopy, Sublayers::BlockAppsBlockedInWinFirewall());
  dns.Install(nullptr);
  copy.Install(nullptr);
  MeasureReplacingFloor(state, InterfaceLeakFloor(Addresses(1)), [&] {
    dns.Confirm(nullptr);
    copy.Confirm(nullptr);
  });
  copy.Remove(nullptr);
  dns.Remove(nullptr);
}
BENCHMARK(LeakProtectionReplacedAtTheFloor);

void LocalNetwork(benchmark::State& state) {
  StartLibrary();
  Measure(state, 15, [] {
    Check(DisableLocalNetwork(IgnoreLine));
    Check(EnableLocalNetwork());
  });
}
BENCHMARK(LocalNetwork);

void LocalNetworkAtTheFloor(benchmark::State& state) {
  MeasureFloor(state, {kLocalNetwork, Sublayers::LocalNetworkBlock(kLocalNetwork, kText, kText)});
}
BENCHMARK(LocalNetworkAtTheFloor);

void Skein(benchmark::State& state) {
  StartLibrary();
  const std::vector<std::uint32_t> peers = Addresses(state.range(0));
  Measure(state, 2, [&] {
    Check(EnableSkeinFirewallRules(IgnoreLine, nullptr, 0, kLuid, peers.data(), peers.size()));
    Check(DisableSkeinFirewallRules());
  });
  state.SetComplexityN(state.range(0));
}
BENCHMARK(Skein)->RangeMultiplier(10)->Range(1, 100'000)->Complexity(benchmark::oN);

void SkeinAtTheFloor(benchmark::State& state) { MeasureFloor(state, SkeinFloor(Addresses(state.range(0)))); }
BENCHMARK(SkeinAtTheFloor)->Arg(1)->Arg(100'000);

}  // namespace
