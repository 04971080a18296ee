/**
 * @file
 * Everything that the engine holds at one moment.
 */
#pragma once

#include <tuple>
#include <unordered_map>

#include "emulator/GuidHash.h"
#include "emulator/KindStore.h"
#include "emulator/SublayerWeights.h"

namespace EngineEmulator {

/// The objects of all kinds, with a count of the references to each. Checks nothing: that is done before a
/// change. Like the stores of its kinds, it can lie over another one and hold the changes that a transaction
/// makes to that.
class ObjectStore {
 public:
  ObjectStore() = default;
  /// @param base must outlive this store.
  explicit ObjectStore(const ObjectStore* base)
      : base_(base), stores_(Over(base->stores_)), sublayerWeights_(base->sublayerWeights_) {}

  template <class Native>
  [[nodiscard]] const KindStore<Native>& OfKind() const {
    return std::get<KindStore<Native>>(stores_);
  }

  template <class Native>
  void Add(const ObjectPtr<Native>& object) {
    std::get<KindStore<Native>>(stores_).Insert(object);
    CountReferences(object->Record(), 1);
    if constexpr (std::is_same_v<Native, FWPM_SUBLAYER0>) {
      sublayerWeights_.Take(object->Record().weight);
    }
  }

  /// Puts an object in the place of one that differs in nothing but its security.
  template <class Native>
  void Replace(const ObjectPtr<Native>& object) {
    std::get<KindStore<Native>>(stores_).Insert(object);
  }

  template <class Native>
  void Remove(const ObjectPtr<Native>& object) {
    CountReferences(object->Record(), -1);
    if constexpr (std::is_same_v<Native, FWPM_SUBLAYER0>) {
      sublayerWeights_.Free(object->Record().weight);
    }
    std::get<KindStore<Native>>(stores_).Erase(*object);
  }

  /// Makes the changes that another store holds which lies over this one.
  void Apply(const ObjectStore& changes);

  [[nodiscard]] const SublayerWeights& WeightsOfSublayers() const { return sublayerWeights_; }

  /// How many objects refer to the one of this kind with this key.
  template <class Native>
  [[nodiscard]] int CountReferrers(const GUID& key) const {
    const auto& counts = std::get<ReferencesTo<Native>>(references_).counts;
    const auto found = counts.find(key);
    return (found == counts.end() ? 0 : found->second) +
           (base_ == nullptr ? 0 : base_->CountReferrers<Native>(key));
  }

 private:
  template <class... Natives>
  using Stores = std::tuple<KindStore<Natives>...>;

  template <class Native>
  struct ReferencesTo {
    std::unordered_map<GUID, int, GuidHash> counts;
  };
  template <class... Natives>
  using References = std::tuple<ReferencesTo<Natives>...>;

  template <class... Natives>
  static Stores<Natives...> Over(const Stores<Natives...>& base) {
    return {KindStore<Natives>(&std::get<KindStore<Natives>>(base))...};
  }

  template <class Native>
  void Count(const GUID* key, int change);

  void CountReferences(const FWPM_PROVIDER0&, int) {}
  void CountReferences(const FWPM_LAYER0&, int) {}
  void CountReferences(const FWPM_SUBLAYER0& sublayer, int change);
  void CountReferences(const FWPM_CALLOUT0& callout, int change);
  void CountReferences(const FWPM_PROVIDER_CONTEXT0& context, int change);
  void CountReferences(const FWPM_FILTER0& filter, int change);

  const ObjectStore* base_ = nullptr;
  template <template <class...> class Container>
  using OfEachKind = Container<FWPM_PROVIDER0, FWPM_SUBLAYER0, FWPM_CALLOUT0, FWPM_PROVIDER_CONTEXT0,
                               FWPM_FILTER0, FWPM_LAYER0>;
  OfEachKind<Stores> stores_;
  OfEachKind<References> references_;
  SublayerWeights sublayerWeights_;
};

}  // namespace EngineEmulator
