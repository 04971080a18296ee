// Measures maps and lint of whole machines: of filters made up in the shape of a live machine's, and, if the
// environment variable CORVANE_DUMPS names dumps with colons between, of what these hold together. "peak" is
// the most heap in use at one time.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>

#include "HeapPeak.h"
#include "LiveFilters.h"
#include "policy/Decide.h"
#include "policy/Lint.h"
#include "policy/Map.h"

namespace {

template <class Work>
void Measure(benchmark::State& state, const Policy::Snapshot& snapshot, Work work) {
  std::size_t peak = 0;
  for (auto _ : state) {
    HeapPeak::Restart();
    benchmark::DoNotOptimize(work(snapshot));
    peak = std::max(peak, HeapPeak::Get());
  }
  state.counters["filters"] = static_cast<double>(snapshot.filters.size());
  state.counters["peak"] = static_cast<double>(peak);
}

Policy::Map Map(const Policy::Snapshot& snapshot) { return Policy::MakeMap(snapshot); }
std::vector<Policy::Finding> Lint(const Policy::Snapshot& snapshot) { return Policy::Lint(snapshot); }
Policy::Explanation Explain(const Policy::Snapshot& snapshot) {
  return Policy::Decider(snapshot).Explain(
      Policy::OrdinaryConnection(Policy::Direction::Inbound, Policy::IpVersion::V4));
}

template <class Work>
void Register(const char* name, Work work) {
  auto* generated = benchmark::RegisterBenchmark(name, [work](benchmark::State& state) {
    Measure(state, LiveFilters(static_cast<std::size_t>(state.range(0))), work);
  });
  for (const int filters : {250, 500, 1'000, 2'000, 4'000}) {
    generated->Arg(filters);
  }
  generated->Unit(benchmark::kMillisecond);
  if (const char* dumps = std::getenv("CORVANE_DUMPS")) {
    benchmark::RegisterBenchmark((std::string(name) + "Dumps").c_str(), [work,
                                                                         dumps](benchmark::State& state) {
      Measure(state, MergedDumps(dumps), work);
    })->Unit(benchmark::kMillisecond);
  }
}

}  // namespace

int main(int count, char** arguments) {
  Register("Map", Map);
  Register("Lint", Lint);
  Register("Explain", Explain);
  benchmark::Initialize(&count, arguments);
  if (benchmark::ReportUnrecognizedArguments(count, arguments)) {
    return 1;
  }
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
