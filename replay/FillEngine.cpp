#include "replay/FillEngine.h"

#include <algorithm>
#include <numeric>

#include "catalog/Names.h"
#include "dump/Encoding.h"
#include "dump/Symbols.h"
#include "replay/Session.h"

namespace Replay {
namespace {

std::string Describe(const char* kind, const GUID& key, const FWPM_DISPLAY_DATA0& displayData) {
  const std::wstring_view name = displayData.name == nullptr ? L"" : displayData.name;
  return std::string(kind) + ' ' + Dump::FormatBracedGuid(key) + " \"" + Dump::FromWide(name) + '"';
}

/// Adds objects, and keeps account of those that are refused.
class Filler {
 public:
  Filler(const EngineCalls& engine, FlagsToAdd flags, const std::function<std::string()>& whyRefused)
      : engine_(engine), flags_(flags), whyRefused_(whyRefused), session_(engine, 0) {}

  Filling Fill(const Dump::EngineState& state) && {
    for (FWPM_PROVIDER0 provider : state.providers) {
      provider.flags = ToAdd(provider.flags, FWPM_PROVIDER_FLAG_DISABLED);
      const DWORD result = engine_.FwpmProviderAdd0(session_.Handle(), &provider, nullptr);
      Account(result, "provider", provider.providerKey, provider.displayData);
    }
    for (const FWPM_PROVIDER_CONTEXT0& context : state.providerContexts) {
      const DWORD result = engine_.FwpmProviderContextAdd0(session_.Handle(), &context, nullptr, nullptr);
      Account(result, "provider context", context.providerContextKey, context.displayData);
    }
    for (const FWPM_SUBLAYER0& subLayer : state.subLayers) {
      const DWORD result = engine_.FwpmSubLayerAdd0(session_.Handle(), &subLayer, nullptr);
      Account(result, "sublayer", subLayer.subLayerKey, subLayer.displayData);
    }
    for (const FWPM_CALLOUT0& callout : state.callouts) {
      const DWORD result = engine_.FwpmCalloutAdd0(session_.Handle(), &callout, nullptr, nullptr);
      Account(result, "callout", callout.calloutKey, callout.displayData);
    }
    AddFilters(state.filters);
    session_.Commit();
    return std::move(filling_);
  }

 private:
  /// @param disabled the flag of the object's kind.
  [[nodiscard]] UINT32 ToAdd(UINT32 flags, UINT32 disabled) const {
    return flags_ == FlagsToAdd::All ? flags : flags & ~disabled;
  }

  /// By rising ids, so that of filters with the same weight the newest is the same as in the dump.
  void AddFilters(const std::vector<FWPM_FILTER0>& filters) {
    std::vector<std::size_t> places(filters.size());
    std::iota(places.begin(), places.end(), std::size_t{0});
    std::ranges::stable_sort(places, {}, [&](std::size_t place) { return filters[place].filterId; });
    filling_.filterIds.resize(filters.size());
    for (const std::size_t place : places) {
      FWPM_FILTER0 filter = filters[place];
      filter.flags = ToAdd(filter.flags, FWPM_FILTER_FLAG_DISABLED);
      const DWORD result =
          engine_.FwpmFilterAdd0(session_.Handle(), &filter, nullptr, &filling_.filterIds[place]);
      if (result != ERROR_SUCCESS) {
        AddRefusal(result, "filter", filter.filterKey, filter.displayData);
      }
    }
  }

  /// For kinds of which the engine has some of its own.
  void Account(DWORD result, const char* kind, const GUID& key, const FWPM_DISPLAY_DATA0& displayData) {
    if (result != ERROR_SUCCESS && result != static_cast<DWORD>(FWP_E_ALREADY_EXISTS)) {
      AddRefusal(result, kind, key, displayData);
    }
  }

  void AddRefusal(DWORD code, const char* kind, const GUID& key, const FWPM_DISPLAY_DATA0& displayData) {
    const std::string reason = Catalog::ErrorName(code);
    const auto known = std::ranges::find(filling_.refusals, reason, &Refusal::reason);
    if (known != filling_.refusals.end()) {
      ++known->count;
      return;
    }
    filling_.refusals.push_back({reason, 1, Describe(kind, key, displayData) + ": " + whyRefused_()});
  }

  const EngineCalls& engine_;
  FlagsToAdd flags_;
  const std::function<std::string()>& whyRefused_;
  Session session_;
  Filling filling_;
};

}  // namespace

Filling FillEngine(const EngineCalls& engine, const Dump::EngineState& state, FlagsToAdd flags,
                   const std::function<std::string()>& whyRefused) {
  return Filler(engine, flags, whyRefused).Fill(state);
}

}  // namespace Replay
