#include "Contents.h"

#include <algorithm>
#include <tuple>

#include "Identities.h"

namespace {

std::vector<const Policy::Filter*> FiltersIn(const Policy::Sublayer& sublayer,
                                             const Policy::Snapshot& snapshot, Owners owners) {
  std::vector<const Policy::Filter*> filters;
  for (const Policy::Filter& filter : snapshot.filters) {
    if (filter.sublayerKey == sublayer.key &&
        (owners == Owners::All || filter.providerKey == kProvider.key)) {
      filters.push_back(&filter);
    }
  }
  return filters;
}

}  // namespace

Contents ContentsOf(const Policy::Snapshot& snapshot, Owners owners) {
  const auto provider = std::ranges::find(snapshot.providers, kProvider.key, &Policy::Provider::key);
  Contents contents{provider == snapshot.providers.end() ? nullptr : &*provider, {}};
  for (const Policy::Sublayer& sublayer : snapshot.sublayers) {
    std::vector<const Policy::Filter*> filters = FiltersIn(sublayer, snapshot, owners);
    // The library's sublayers do not name its provider, so they are recognised by their keys. Other sublayers
    // are shown if they hold filters to show.
    if (owners == Owners::All || IsRuleSet(sublayer.key) || !filters.empty()) {
      contents.sublayers.push_back({&sublayer, std::move(filters)});
    }
  }
  std::ranges::sort(contents.sublayers, {}, [](const SublayerContents& entry) {
    const Policy::Sublayer& sublayer = *entry.sublayer;
    return std::tuple(!sublayer.listed, -int{sublayer.weight}, sublayer.place);
  });
  return contents;
}
