// Measures whether the emulated engine slows down when it has many filters. The filters are like the
// library's: with a provider, a weight, the name and description of their sublayer, and three conditions.
// Items per second are filters added.
#include <benchmark/benchmark.h>

#include <stdexcept>

#include "HeapPeak.h"
#include "catalog/Keys.h"
#include "emulator/Control.h"

namespace {

constexpr GUID kProviderKey{1, 0, 0, {}};
constexpr GUID kSublayerKey{2, 0, 0, {}};

/// A fresh engine with `count` filters.
class FilledEngine {
 public:
  explicit FilledEngine(std::int64_t filters) {
    EngineEmulator::Reset();
    FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &session_);
    AddProviderAndSublayer();
    HeapPeak::Restart();
    for (std::int64_t count = 0; count < filters; ++count) {
      AddFilter();
    }
    EngineEmulator::ClearJournal();
    filterBytes_ = HeapPeak::InUse();
  }
  ~FilledEngine() { EngineEmulator::Reset(); }
  FilledEngine(const FilledEngine&) = delete;
  FilledEngine& operator=(const FilledEngine&) = delete;

  /// Adds a block of a protocol to a network and a port. The engine chooses the key.
  UINT64 AddFilter() {
    FWP_V4_ADDR_AND_MASK network{0x0A000000, 0xFF000000};
    FWPM_FILTER_CONDITION0 conditions[3]{};
    conditions[0].fieldKey = Catalog::kIpProtocolFieldKey;
    conditions[0].conditionValue.type = FWP_UINT8;
    conditions[0].conditionValue.uint8 = 17;
    conditions[1].fieldKey = Catalog::kIpRemoteAddressFieldKey;
    conditions[1].conditionValue.type = FWP_V4_ADDR_MASK;
    conditions[1].conditionValue.v4AddrMask = &network;
    conditions[2].fieldKey = Catalog::kIpRemotePortFieldKey;
    conditions[2].conditionValue.type = FWP_UINT16;
    conditions[2].conditionValue.uint16 = 53;
    FWPM_FILTER0 filter{};
    filter.displayData = displayData_;
    filter.providerKey = &providerKey_;
    filter.layerKey = Catalog::kAleAuthConnectV4LayerKey;
    filter.subLayerKey = kSublayerKey;
    filter.weight.type = FWP_UINT8;
    filter.weight.uint8 = 10;
    filter.action.type = FWP_ACTION_BLOCK;
    filter.numFilterConditions = 3;
    filter.filterCondition = conditions;
    UINT64 id = 0;
    if (FwpmFilterAdd0(session_, &filter, nullptr, &id) != ERROR_SUCCESS) {
      throw std::runtime_error("a filter was refused: " + EngineEmulator::LastRefusal());
    }
    return id;
  }

  [[nodiscard]] HANDLE Session() const { return session_; }

  /// What the filters take up on the heap, in bytes.
  [[nodiscard]] std::size_t FilterBytes() const { return filterBytes_; }

 private:
  void AddProviderAndSublayer() {
    FWPM_PROVIDER0 provider{};
    provider.providerKey = kProviderKey;
    provider.displayData = displayData_;
    FwpmProviderAdd0(session_, &provider, nullptr);
    FWPM_SUBLAYER0 sublayer{};
    sublayer.subLayerKey = kSublayerKey;
    sublayer.displayData = displayData_;
    sublayer.providerKey = &providerKey_;
    FwpmSubLayerAdd0(session_, &sublayer, nullptr);
  }

  HANDLE session_ = nullptr;
  std::size_t filterBytes_ = 0;
  GUID providerKey_ = kProviderKey;
  wchar_t name_[12] = L"Kill Switch";
  wchar_t description_[38] = L"Blocks all traffic outside the tunnel";
  FWPM_DISPLAY_DATA0 displayData_{name_, description_};
};

void FillEngine(benchmark::State& state) {
  const auto filters = state.range(0);
  std::size_t bytes = 0;
  for (auto _ : state) {
    const FilledEngine engine(filters);
    bytes = engine.FilterBytes();
  }
  state.SetItemsProcessed(state.iterations() * filters);
  state.counters["bytes_per_filter"] = static_cast<double>(bytes) / static_cast<double>(filters);
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
