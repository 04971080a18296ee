#include "emulator/ObjectStore.h"

namespace EngineEmulator {

template <class Native>
void ObjectStore::Count(const GUID* key, int change) {
  if (key == nullptr) {
    return;
  }
  auto& counts = std::get<ReferencesTo<Native>>(references_).counts;
  const auto entry = counts.try_emplace(*key, 0).first;
  entry->second += change;
  if (entry->second == 0) {
    counts.erase(entry);
  }
}

void ObjectStore::CountReferences(const FWPM_SUBLAYER0& sublayer, int change) {
  Count<FWPM_PROVIDER0>(sublayer.providerKey, change);
}

void ObjectStore::CountReferences(const FWPM_CALLOUT0& callout, int change) {
  Count<FWPM_PROVIDER0>(callout.providerKey, change);
}

void ObjectStore::CountReferences(const FWPM_PROVIDER_CONTEXT0& context, int change) {
  Count<FWPM_PROVIDER0>(context.providerKey, change);
}

void ObjectStore::CountReferences(const FWPM_FILTER0& filter, int change) {
  Count<FWPM_PROVIDER0>(filter.providerKey, change);
  Count<FWPM_SUBLAYER0>(&filter.subLayerKey, change);
  if ((filter.action.type & FWP_ACTION_FLAG_CALLOUT) != 0) {
    Count<FWPM_CALLOUT0>(&filter.action.calloutKey, change);
  }
  if ((filter.flags & FWPM_FILTER_FLAG_HAS_PROVIDER_CONTEXT) != 0) {
    Count<FWPM_PROVIDER_CONTEXT0>(&filter.providerContextKey, change);
  }
}

void ObjectStore::Apply(const ObjectStore& changes) {
  const auto applyStores = [&](auto&... stores) {
    (stores.Apply(std::get<std::remove_reference_t<decltype(stores)>>(changes.stores_)), ...);
  };
  std::apply(applyStores, stores_);
  sublayerWeights_ = SublayerWeights(OfKind<FWPM_SUBLAYER0>());
  const auto applyCounts = [&]<class... Natives>(const ReferencesTo<Natives>&... references) {
    const auto apply = [&]<class Native>(const ReferencesTo<Native>& changed) {
      for (const auto& [key, change] : changed.counts) {
        Count<Native>(&key, change);
      }
    };
    (apply(references), ...);
  };
  std::apply(applyCounts, changes.references_);
}

}  // namespace EngineEmulator
