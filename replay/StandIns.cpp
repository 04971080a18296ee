#include "replay/StandIns.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "catalog/Callouts.h"
#include "catalog/Guid.h"
#include "catalog/Providers.h"
#include "catalog/Sublayers.h"

namespace Replay {
namespace {

using Keys = std::set<GUID, Catalog::KeyOrder>;

/// Above the sublayers of Windows Firewall and below UNIVERSAL.
constexpr UINT16 kWeight = 0x4000;

// The flag PERSISTENT, for which some headers have no names.
constexpr UINT32 kPersistentContext = 0x1;
constexpr UINT32 kPersistentCallout = 0x10000;

FWPM_DISPLAY_DATA0 NoName() {
  static wchar_t none[] = L"";
  return {none, none};
}

template <class Record>
Keys KeysOf(const std::vector<Record>& records, GUID Record::*key) {
  Keys keys;
  std::ranges::transform(records, std::inserter(keys, keys.end()), key);
  return keys;
}

/// Adds what filters name. Persistent filters name persistent objects only, so that all stand-ins are.
class StandIns {
 public:
  explicit StandIns(Dump::EngineState& state)
      : state_(state),
        providers_(KeysOf(state.providers, &FWPM_PROVIDER0::providerKey)),
        contexts_(KeysOf(state.providerContexts, &FWPM_PROVIDER_CONTEXT0::providerContextKey)),
        subLayers_(KeysOf(state.subLayers, &FWPM_SUBLAYER0::subLayerKey)),
        callouts_(KeysOf(state.callouts, &FWPM_CALLOUT0::calloutKey)) {}

  void AddFor(const FWPM_FILTER0& filter) {
    AddProvider(filter);
    AddContext(filter);
    AddSubLayer(filter);
    AddCallout(filter);
  }

 private:
  void AddProvider(const FWPM_FILTER0& filter) {
    if (filter.providerKey == nullptr || Catalog::FindBuiltInProvider(*filter.providerKey) != nullptr ||
        !providers_.insert(*filter.providerKey).second) {
      return;
    }
    FWPM_PROVIDER0 provider{};
    provider.providerKey = *filter.providerKey;
    provider.displayData = NoName();
    provider.flags = FWPM_PROVIDER_FLAG_PERSISTENT;
    state_.providers.push_back(provider);
  }

  void AddContext(const FWPM_FILTER0& filter) {
    if ((filter.flags & FWPM_FILTER_FLAG_HAS_PROVIDER_CONTEXT) == 0 ||
        !contexts_.insert(filter.providerContextKey).second) {
      return;
    }
    FWPM_PROVIDER_CONTEXT0 context{};
    context.providerContextKey = filter.providerContextKey;
    context.displayData = NoName();
    context.flags = kPersistentContext;
    context.type = FWPM_GENERAL_CONTEXT;
    state_.providerContexts.push_back(context);
  }

  /// Of the filter's provider: a persistent sublayer holds persistent filters of its own provider only.
  void AddSubLayer(const FWPM_FILTER0& filter) {
    if (Catalog::FindBuiltInSublayer(filter.subLayerKey) != nullptr ||
        !subLayers_.insert(filter.subLayerKey).second) {
      return;
    }
    FWPM_SUBLAYER0 subLayer{};
    subLayer.subLayerKey = filter.subLayerKey;
    subLayer.displayData = NoName();
    subLayer.flags = FWPM_SUBLAYER_FLAG_PERSISTENT;
    subLayer.providerKey = filter.providerKey;
    subLayer.weight = kWeight;
    state_.subLayers.push_back(subLayer);
  }

  void AddCallout(const FWPM_FILTER0& filter) {
    if ((filter.action.type & FWP_ACTION_FLAG_CALLOUT) == 0 ||
        Catalog::FindBuiltInCallout(filter.action.calloutKey) != nullptr ||
        !callouts_.insert(filter.action.calloutKey).second) {
      return;
    }
    FWPM_CALLOUT0 callout{};
    callout.calloutKey = filter.action.calloutKey;
    callout.displayData = NoName();
    callout.flags = kPersistentCallout;
    callout.applicableLayer = filter.layerKey;
    state_.callouts.push_back(callout);
  }

  Dump::EngineState& state_;
  Keys providers_;
  Keys contexts_;
  Keys subLayers_;
  Keys callouts_;
};

}  // namespace

Dump::EngineState WithStandIns(const Dump::EngineState& state) {
  Dump::EngineState complete;
  complete.kind = state.kind;
  complete.providers = state.providers;
  complete.providerContexts = state.providerContexts;
  complete.subLayers = state.subLayers;
  complete.callouts = state.callouts;
  complete.filters = state.filters;
  if (state.kind == Dump::DumpKind::State) {
    return complete;
  }
  StandIns standIns(complete);
  // Lasting filters first: a sublayer gets the provider that they have.
  constexpr UINT32 kLasting = FWPM_FILTER_FLAG_PERSISTENT | FWPM_FILTER_FLAG_BOOTTIME;
  for (const bool isLasting : {true, false}) {
    for (const FWPM_FILTER0& filter : state.filters) {
      if (((filter.flags & kLasting) != 0) == isLasting) {
        standIns.AddFor(filter);
      }
    }
  }
  return complete;
}

}  // namespace Replay
