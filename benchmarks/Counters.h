#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>

#include "benchmarks/Allocations.h"
#include "benchmarks/IdleEngine.h"

/// Counts the allocations and engine calls of one iteration, from its construction to its destruction.
class Counters {
 public:
  /// @param filters of one iteration; items per second are filters.
  Counters(benchmark::State& state, std::int64_t filters) : state_(state), filters_(filters) {}
  ~Counters() {
    const auto perIteration = [this](std::uint64_t before, std::uint64_t now) {
      return benchmark::Counter(static_cast<double>(now - before), benchmark::Counter::kAvgIterations);
    };
    const std::uint64_t allocations = CountAllocations();
    state_.counters["allocations"] = perIteration(allocations_, allocations);
    state_.counters["calls"] = perIteration(calls_, IdleEngine::CountCalls());
    state_.counters["filters"] = static_cast<double>(filters_);
    state_.SetItemsProcessed(state_.iterations() * filters_);
  }
  Counters(const Counters&) = delete;
  Counters& operator=(const Counters&) = delete;

 private:
  benchmark::State& state_;
  std::int64_t filters_;
  std::uint64_t allocations_ = CountAllocations();
  std::uint64_t calls_ = IdleEngine::CountCalls();
};
