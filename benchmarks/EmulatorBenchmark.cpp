// Measures whether the emulated engine slows down when it has many filters. Items per second are filters
// added.
#include <benchmark/benchmark.h>

#include "emulator/Control.h"

namespace {

constexpr GUID kConnectV4{0xc38d57d1, 0x05a7, 0x4c33, {0x90, 0x4f, 0x7f, 0xbc, 0xee, 0xe6, 0x0e, 0x82}};
constexpr GUID kRemotePort{0xc35a604d, 0xd22b, 0x4e1a, {0x91, 0xb4, 0x68, 0xf6, 0x74, 0xee, 0x67, 0x4b}};

/// A fresh engine with `count` filters.
class FilledEngine {
 public:
  explicit FilledEngine(std::int64_t filters) {
    EngineEmulator::Reset();
    FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &session_);
    for (std::int64_t count = 0; count < filters; ++count) {
      AddFilter();
    }
    EngineEmulator::ClearJournal();
  }
  ~FilledEngine() { EngineEmulator::Reset(); }
  FilledEngine(const FilledEngine&) = delete;
  FilledEngine& operator=(const FilledEngine&) = delete;

  /// Adds a block of a remote port. The engine chooses the key.
  UINT64 AddFilter() {
    wchar_t name[] = L"Filter";
    FWPM_FILTER_CONDITION0 condition{};
    condition.fieldKey = kRemotePort;
    condition.conditionValue.type = FWP_UINT16;
    condition.conditionValue.uint16 = 53;
    FWPM_FILTER0 filter{};
    filter.displayData.name = name;
    filter.layerKey = kConnectV4;
    filter.action.type = FWP_ACTION_BLOCK;
    filter.numFilterConditions = 1;
    filter.filterCondition = &condition;
    UINT64 id = 0;
    FwpmFilterAdd0(session_, &filter, nullptr, &id);
    return id;
  }

  [[nodiscard]] HANDLE Session() const { return session_; }

 private:
  HANDLE session_ = nullptr;
};

void FillEngine(benchmark::State& state) {
  for (auto _ : state) {
    const FilledEngine engine(state.range(0));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(FillEngine)->Arg(1'000)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

/// Adds one more filter and deletes it.
void AddOneMore(benchmark::State& state) {
  FilledEngine engine(state.range(0));
  for (auto _ : state) {
    FwpmFilterDeleteById0(engine.Session(), engine.AddFilter());
  }
  EngineEmulator::ClearJournal();
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(AddOneMore)->Arg(0)->Arg(1'000)->Arg(10'000)->Arg(100'000);

void AddOneMoreInATransaction(benchmark::State& state) {
  FilledEngine engine(state.range(0));
  for (auto _ : state) {
    FwpmTransactionBegin0(engine.Session(), 0);
    engine.AddFilter();
    FwpmTransactionAbort0(engine.Session());
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(AddOneMoreInATransaction)->Arg(0)->Arg(1'000)->Arg(10'000)->Arg(100'000);

}  // namespace
