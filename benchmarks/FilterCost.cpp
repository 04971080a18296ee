// What a filter of some conditions costs: built, copied into the registry, converted, handed over to an
// engine that does nothing, removed and freed. Prints one line for each way to build it, number of
// conditions, size of the batch and place: time in nanoseconds, allocations and bytes, each per filter. Needs
// no library, so that it runs everywhere.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <vector>

#include "WfpFirewall.h"
#include "benchmarks/Allocations.h"
#include "benchmarks/IdleEngine.h"

namespace {

using namespace WfpFirewall;
using namespace WfpFirewall::Filtering;
using namespace WfpFirewall::Filtering::Values;
using Clock = std::chrono::steady_clock;

constexpr GUID kKey{2, 0, 0, {}};
constexpr LayerType kLayer = LayerType::AleAuthConnectV4;
constexpr std::int16_t kWeight = 14;
constexpr auto kLongEnough = std::chrono::milliseconds(50);

Condition MakeCondition(int number) {
  switch (number % 3) {
    case 0:
      return ConditionEqual(new RemoteIpAddressV4(0x0A000001U));
    case 1:
      return ConditionNotEqual(new RemotePort(53));
    default:
      return ConditionEqual(new LocalInterfaceLuid(42));
  }
}

Filter ByBuilder(int conditions) {
  FilterBuilder builder = FilterBuilder().CreateFilter(Action::Permit).InLayer(kLayer);
  for (int i = 0; i < conditions; ++i) {
    builder.WithCondition(MakeCondition(i));
  }
  return builder.SetWeight(kWeight).OverrideOtherSublayers().Get();
}

Filter ByFilter(int conditions) {
  Filter filter(Action::Permit);
  filter.SetLayer(kLayer);
  for (int i = 0; i < conditions; ++i) {
    filter.AddCondition(MakeCondition(i));
  }
  filter.SetWeight(kWeight);
  filter.OverrideOtherSublayers();
  return filter;
}

/// What passes between Begin and End, in each of many rounds.
class Meter {
 public:
  void Begin() {
    allocationsBefore_ = CountAllocations();
    bytesBefore_ = CountAllocatedBytes();
    begin_ = Clock::now();
  }
  void End() {
    const std::chrono::duration<double, std::nano> time = Clock::now() - begin_;
    allocations_ = CountAllocations() - allocationsBefore_;
    bytes_ = CountAllocatedBytes() - bytesBefore_;
    nanoseconds_.push_back(time.count());
  }

  /// The median of the rounds, since other programs disturb some.
  [[nodiscard]] double Nanoseconds() {
    const auto middle = nanoseconds_.begin() + static_cast<std::ptrdiff_t>(nanoseconds_.size() / 2);
    std::nth_element(nanoseconds_.begin(), middle, nanoseconds_.end());
    return *middle;
  }
  // All rounds allocate the same.
  [[nodiscard]] std::uint64_t Allocations() const { return allocations_; }
  [[nodiscard]] std::uint64_t Bytes() const { return bytes_; }

 private:
  std::vector<double> nanoseconds_;
  std::uint64_t allocations_ = 0;
  std::uint64_t bytes_ = 0;
  std::uint64_t allocationsBefore_ = 0;
  std::uint64_t bytesBefore_ = 0;
  Clock::time_point begin_;
};

enum Place : std::size_t { Build, Copy, Convert, HandOver, Remove, Free, kPlaces };
constexpr std::array<const char*, kPlaces> kPlaceNames{"build",     "copy",   "convert",
                                                       "hand-over", "remove", "free"};

void Measure(const char* way, Filter (*make)(int), int conditions, int batch) {
  std::array<Meter, kPlaces> meters;
  const Provider provider(kKey, L"n", L"n", L"n");
  // All filters are converted before the first one is handed over.
  IdleEngine::AtFirstFilter([&] {
    meters[Convert].End();
    meters[HandOver].Begin();
  });
  const Clock::time_point end = Clock::now() + kLongEnough;
  do {
    Firewall firewall(provider);
    meters[Build].Begin();
    std::optional<Sublayer> sublayer(std::in_place, kKey, L"n", L"n");
    for (int i = 0; i < batch; ++i) {
      sublayer->AddFilter(make(conditions));
    }
    meters[Build].End();
    meters[Copy].Begin();
    firewall.AddSublayer(*sublayer);
    meters[Copy].End();
    meters[Convert].Begin();
    firewall.Apply();
    meters[HandOver].End();
    meters[Remove].Begin();
    firewall.RemoveSublayer(kKey);
    meters[Remove].End();
    meters[Free].Begin();
    sublayer.reset();
    meters[Free].End();
  } while (Clock::now() < end);
  IdleEngine::AtFirstFilter([] {});
  for (std::size_t place = 0; place < kPlaces; ++place) {
    Meter& meter = meters[place];
    std::printf("%s %d %d %s %.1f %.2f %.0f\n", way, conditions, batch, kPlaceNames[place],
                meter.Nanoseconds() / batch, static_cast<double>(meter.Allocations()) / batch,
                static_cast<double>(meter.Bytes()) / batch);
  }
}

}  // namespace

int main() {
  for (const int conditions : {1, 3, 6}) {
    for (const int batch : {50, 500, 5000}) {
      Measure("builder", ByBuilder, conditions, batch);
      Measure("filter", ByFilter, conditions, batch);
    }
  }
}
