// Measures switching leak protection on with long lists of addresses, with many interfaces, and with many
// filters of other owners in the engine. "peak" is the most heap in use at one time, with that of the
// emulated engine.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "HeapPeak.h"
#include "api/ModuleState.h"
#include "corvane/native_firewall.h"
#include "emulator/Control.h"
#include "sublayers/BlockAppsBlockedInWinFirewall.h"
#include "sublayers/InterfaceLeakProtection.h"
#include "support/AppBlock.h"
#include "support/FakePlatform.h"

namespace {

using WfpFirewall::Filter;
using WfpFirewall::IpV4Address;
using WfpFirewall::Sublayers::BlockAppsBlockedInWinFirewall;
using WfpFirewall::Sublayers::InterfaceLeakProtection;

constexpr GUID Key(UINT32 number) { return {number, 0, 0, {}}; }
constexpr GUID kKeys[]{Key(1), Key(2), Key(3), Key(4), Key(5), Key(6), Key(7), Key(8)};
constexpr const wchar_t* kNames[]{L"Tunnel"};
constexpr std::int64_t kFiltersPerInterface = 21;
constexpr std::int64_t kDnsFiltersPerInterface = 4;
constexpr std::int64_t kDnsFilters = 8;
/// The conditions of an interface's filters without those of permitted addresses: four filters have one, 16
/// have two.
constexpr std::int64_t kOtherConditions = 36;

std::uint64_t CORVANE_CALL Ignore(const char*) { return 0; }

std::vector<std::uint32_t> Addresses(std::int64_t count) {
  std::vector<std::uint32_t> addresses(static_cast<std::size_t>(count));
  std::generate(addresses.begin(), addresses.end(), [next = 0x08000000U]() mutable { return next++; });
  return addresses;
}

/// Begins with a fresh engine and library on a machine with this number of tunnel adapters.
void Prepare(std::int64_t interfaces) {
  Module() = {};
  EngineEmulator::Reset();
  FakePlatform::Reset();
  for (std::int64_t i = 0; i < interfaces; ++i) {
    FakePlatform::AddAdapter({L"vpn", L"Tunnel", static_cast<std::uint64_t>(i + 1), 6, {}});
  }
  EngineEmulator::PretendFileExists(L"C:\\dns.exe");
  const wchar_t* const n = L"n";
  Initialize(&kKeys[0], n, n, &kKeys[1], n, n, &kKeys[2], n, n, &kKeys[3], n, n, &kKeys[4], n, n, &kKeys[5],
             n, n, &kKeys[6], n, n, &kKeys[7], n, n, L"C:\\dns.exe");
}

/// Measures `work`, without `setUp`, which runs before each iteration.
template <class SetUp, class Work>
void Measure(benchmark::State& state, std::int64_t filters, std::int64_t conditions, const SetUp& setUp,
             const Work& work) {
  std::size_t peak = 0;
  for (auto _ : state) {
    state.PauseTiming();
    setUp();
    HeapPeak::Restart();
    state.ResumeTiming();
    work();
    peak = std::max(peak, HeapPeak::Get());
  }
  using Counter = benchmark::Counter;
  const auto timeEach = Counter::kIsIterationInvariantRate | Counter::kInvert;
  state.counters["per_filter"] = Counter(static_cast<double>(filters), timeEach);
  state.counters["per_condition"] = Counter(static_cast<double>(conditions), timeEach);
  state.counters["peak"] = Counter(static_cast<double>(peak), Counter::kDefaults, Counter::OneK::kIs1024);
}

/// The library alone: builds the filters of interface leak protection and converts them to native records.
void BuildAndConvertInterfaceRules(benchmark::State& state) {
  const std::vector<std::uint32_t> addresses = Addresses(state.range(0));
  const std::int64_t interfaces = state.range(1);
  std::vector<UINT64> luids(static_cast<std::size_t>(interfaces));
  std::generate(luids.begin(), luids.end(), [next = UINT64{0}]() mutable { return ++next; });
  Measure(
      state, interfaces * kFiltersPerInterface, interfaces * (state.range(0) + kOtherConditions), [] {},
      [&] {
        InterfaceLeakProtection rules(kKeys[5], L"n", L"d", luids, IpV4Address("198.51.100.7"),
                                      addresses.data(), addresses.size());
        std::vector<Filter> filters = rules.GetFilters();
        for (Filter& filter : filters) {
          benchmark::DoNotOptimize(filter.ToNativeFilter());
        }
      });
}
BENCHMARK(BuildAndConvertInterfaceRules)
    ->ArgNames({"addresses", "interfaces"})
    ->ArgsProduct({{10, 1'000, 100'000}, {1, 4, 16}})
    ->Unit(benchmark::kMillisecond);

void EnableLeakProtectionFirst(benchmark::State& state) {
  const std::vector<std::uint32_t> addresses = Addresses(state.range(0));
  const std::int64_t interfaces = state.range(1);
  const std::int64_t dnsFilters = kDnsFilters + kDnsFiltersPerInterface * interfaces;
  Measure(
      state, interfaces * kFiltersPerInterface + dnsFilters,
      interfaces * (state.range(0) + kOtherConditions) + 2 * dnsFilters - 4, [&] { Prepare(interfaces); },
      [&] {
        EnableLeakProtection("198.51.100.7", Ignore, kNames, 1, 0, addresses.data(), addresses.size());
      });
  Prepare(0);
}
BENCHMARK(EnableLeakProtectionFirst)
    ->ArgNames({"addresses", "interfaces"})
    ->ArgsProduct({{10, 1'000, 100'000}, {1, 4, 16}})
    ->Unit(benchmark::kMillisecond);

/// Of the filters of other owners, each hundredth blocks an application.
constexpr std::int64_t kBlocksEvery = 100;

/// "per_filter" counts all filters in the engine, "per_condition" only those that are copied.
void CopyApplicationBlocks(benchmark::State& state) {
  Prepare(0);
  AppBlock block(L"C:\\blocked.exe");
  HANDLE engine = nullptr;
  FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &engine);
  for (std::int64_t i = 0; i < state.range(0); ++i) {
    block.filter.filterCondition = &block.conditions[i % kBlocksEvery == 0 ? 0 : 1];
    FwpmFilterAdd0(engine, &block.filter, nullptr, nullptr);
  }
  FwpmEngineClose0(engine);
  Measure(
      state, state.range(0), state.range(0) / kBlocksEvery, [] { EngineEmulator::ClearJournal(); },
      [&] { benchmark::DoNotOptimize(BlockAppsBlockedInWinFirewall()); });
}
// Few iterations, because the list of filters that each one reads is never freed.
BENCHMARK(CopyApplicationBlocks)
    ->ArgName("filters")
    ->Arg(1'000)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);

}  // namespace
