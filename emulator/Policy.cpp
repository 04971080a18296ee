#include "emulator/Policy.h"

namespace EngineEmulator {

bool Policy::IsReferred(const FWPM_PROVIDER0& provider) const {
  return toProviders_.contains(provider.providerKey);
}

bool Policy::IsReferred(const FWPM_SUBLAYER0& sublayer) const {
  return toSublayers_.contains(sublayer.subLayerKey);
}

bool Policy::IsReferred(const FWPM_FILTER0&) const { return false; }

void Policy::Count(References& references, const GUID* key, int change) {
  if (key == nullptr) {
    return;
  }
  const auto entry = references.try_emplace(*key, 0).first;
  entry->second += change;
  if (entry->second == 0) {
    references.erase(entry);
  }
}

void Policy::CountReferences(const FWPM_PROVIDER0&, int) {}

void Policy::CountReferences(const FWPM_SUBLAYER0& sublayer, int change) {
  Count(toProviders_, sublayer.providerKey, change);
}

void Policy::CountReferences(const FWPM_FILTER0& filter, int change) {
  Count(toProviders_, filter.providerKey, change);
  Count(toSublayers_, &filter.subLayerKey, change);
}

template <class Native>
void Policy::RemoveObjectsOfKind(HANDLE session) {
  for (const ObjectPtr<Native>& object : Objects<Native>().All()) {
    if (object->origin.session == session) {
      Remove<Native>(object);
    }
  }
}

void Policy::RemoveObjectsOf(HANDLE session) {
  RemoveObjectsOfKind<FWPM_FILTER0>(session);
  RemoveObjectsOfKind<FWPM_SUBLAYER0>(session);
  RemoveObjectsOfKind<FWPM_PROVIDER0>(session);
}

}  // namespace EngineEmulator
