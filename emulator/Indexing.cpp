#include "emulator/Indexing.h"

#include <algorithm>
#include <span>

#include "catalog/Keys.h"

namespace EngineEmulator {
namespace {

constexpr GUID kIndexedLayers[]{Catalog::kAleAuthConnectV4LayerKey, Catalog::kAleAuthConnectV6LayerKey,
                                Catalog::kAleAuthRecvAcceptV4LayerKey, Catalog::kAleAuthRecvAcceptV6LayerKey};

bool CanBeLookedUp(const FWPM_FILTER_CONDITION0& condition) {
  const bool isOneValue =
      condition.matchType == FWP_MATCH_EQUAL &&
      (condition.conditionValue.type == FWP_BYTE_BLOB_TYPE || condition.conditionValue.type == FWP_UINT16);
  return isOneValue && (condition.fieldKey == Catalog::kAleAppIdFieldKey ||
                        condition.fieldKey == Catalog::kIpLocalPortFieldKey);
}

}  // namespace

bool IsIndexed(const FWPM_FILTER0& filter) {
  const std::span conditions(filter.filterCondition, filter.numFilterConditions);
  return std::ranges::find(kIndexedLayers, filter.layerKey) != std::end(kIndexedLayers) &&
         std::ranges::any_of(conditions, CanBeLookedUp);
}

}  // namespace EngineEmulator
