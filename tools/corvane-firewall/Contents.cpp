#include "Contents.h"

#include <algorithm>
#include <map>

#include "Identities.h"
#include "catalog/Guid.h"

namespace {

using Filters = std::vector<const Policy::Filter*>;

std::map<GUID, Filters, Catalog::KeyOrder> FiltersBySublayer(const Policy::Snapshot& snapshot,
                                                             Owners owners) {
  std::map<GUID, Filters, Catalog::KeyOrder> filters;
  for (const Policy::Filter& filter : snapshot.filters) {
    if (owners == Owners::All || filter.providerKey == kProvider.key) {
      filters[filter.sublayerKey].push_back(&filter);
    }
  }
  return filters;
}

}  // namespace

Contents ContentsOf(const Policy::Snapshot& snapshot, Owners owners) {
  const auto provider = std::ranges::find(snapshot.providers, kProvider.key, &Policy::Provider::key);
  Contents contents{provider == snapshot.providers.end() ? nullptr : &*provider, {}};
  auto filtersOf = FiltersBySublayer(snapshot, owners);
  for (const Policy::Sublayer& sublayer : snapshot.sublayers) {
    Filters filters = std::move(filtersOf[sublayer.key]);
    // The library's sublayers do not name its provider, so they are recognised by their keys. Other sublayers
    // are shown if they hold filters to show.
    if (owners == Owners::All || IsRuleSet(sublayer.key) || !filters.empty()) {
      contents.sublayers.push_back({&sublayer, std::move(filters)});
    }
  }
  std::ranges::stable_sort(contents.sublayers, {},
                           [](const SublayerContents& entry) { return !entry.sublayer->listed; });
  return contents;
}
