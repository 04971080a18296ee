#include "EngineReader.h"

#include <WfpPlatform.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>

#include "EngineClient.h"
#include "Identities.h"
#include "Text.h"
#include "catalog/Describe.h"
#include "catalog/Names.h"

namespace {

constexpr UINT32 kPageSize = 256;

struct Sublayers {
  using Record = FWPM_SUBLAYER0;
  using CreateHandle = decltype(&::FwpmSubLayerCreateEnumHandle0);
  using Enumerate = decltype(&::FwpmSubLayerEnum0);
  using DestroyHandle = decltype(&::FwpmSubLayerDestroyEnumHandle0);
  static constexpr const char* kCreateHandle = "FwpmSubLayerCreateEnumHandle0";
  static constexpr const char* kEnumerate = "FwpmSubLayerEnum0";
  static constexpr const char* kDestroyHandle = "FwpmSubLayerDestroyEnumHandle0";
};

struct Filters {
  using Record = FWPM_FILTER0;
  using CreateHandle = decltype(&::FwpmFilterCreateEnumHandle0);
  using Enumerate = decltype(&::FwpmFilterEnum0);
  using DestroyHandle = decltype(&::FwpmFilterDestroyEnumHandle0);
  static constexpr const char* kCreateHandle = "FwpmFilterCreateEnumHandle0";
  static constexpr const char* kEnumerate = "FwpmFilterEnum0";
  static constexpr const char* kDestroyHandle = "FwpmFilterDestroyEnumHandle0";
};

/// A session of its own.
class EngineSession {
 public:
  [[nodiscard]] std::optional<ListedProvider> ReadProvider(const GUID& key) const {
    FWPM_PROVIDER0* found = nullptr;
    const auto getByKey = FindInEngine<decltype(&::FwpmProviderGetByKey0)>("FwpmProviderGetByKey0");
    const DWORD result = getByKey(session_.get(), &key, &found);
    if (result == static_cast<DWORD>(FWP_E_PROVIDER_NOT_FOUND)) {
      return std::nullopt;
    }
    CheckEngine(result, "FwpmProviderGetByKey0");
    const auto provider = Own(found);
    return ListedProvider{Catalog::FormatGuid(key), Text(provider->displayData.name),
                          Text(provider->displayData.description)};
  }

  /// Visits every object of a kind, page by page.
  template <typename Kind>
  void ForEach(const std::function<void(const typename Kind::Record&)>& visit) const {
    const auto create = FindInEngine<typename Kind::CreateHandle>(Kind::kCreateHandle);
    const auto enumerate = FindInEngine<typename Kind::Enumerate>(Kind::kEnumerate);
    const auto destroy = FindInEngine<typename Kind::DestroyHandle>(Kind::kDestroyHandle);
    const auto close = [this, destroy](HANDLE enumeration) { destroy(session_.get(), enumeration); };

    HANDLE opened = nullptr;
    CheckEngine(create(session_.get(), nullptr, &opened), Kind::kCreateHandle);
    const std::unique_ptr<void, decltype(close)> enumeration(opened, close);
    for (UINT32 count = kPageSize; count == kPageSize;) {
      typename Kind::Record** found = nullptr;
      CheckEngine(enumerate(session_.get(), enumeration.get(), kPageSize, &found, &count), Kind::kEnumerate);
      const auto page = Own(found);
      std::for_each_n(page.get(), count, [&](const auto* record) { visit(*record); });
    }
  }

  /// A text of the engine's, which may be null.
  static std::string Text(const wchar_t* text) { return text == nullptr ? std::string() : ToUtf8(text); }

 private:
  EngineHandle session_ = OpenEngine();
};

std::string DescribeWeight(const FWP_VALUE0& weight) {
  switch (weight.type) {
    case FWP_UINT8:
      return "UINT8 " + std::to_string(weight.uint8);
    case FWP_UINT64:
      return "UINT64 " + std::to_string(*weight.uint64);
    default:
      return "EMPTY";
  }
}

ListedFilter List(const FWPM_FILTER0& filter) {
  ListedFilter listed{filter.filterId,
                      EngineSession::Text(filter.displayData.name),
                      Catalog::LayerName(filter.layerKey),
                      Catalog::ActionName(filter.action.type),
                      {},
                      DescribeWeight(filter.weight),
                      (filter.flags & FWPM_FILTER_FLAG_CLEAR_ACTION_RIGHT) != 0};
  std::for_each_n(filter.filterCondition, filter.numFilterConditions, [&](const auto& condition) {
    listed.conditions.push_back(Catalog::DescribeCondition(condition));
  });
  return listed;
}

struct OurFilter {
  GUID sublayer;
  ListedFilter filter;
};

std::vector<OurFilter> ReadOurFilters(const EngineSession& session) {
  std::vector<OurFilter> filters;
  session.ForEach<Filters>([&](const FWPM_FILTER0& filter) {
    if (filter.providerKey != nullptr && *filter.providerKey == kProvider.key) {
      filters.push_back({filter.subLayerKey, List(filter)});
    }
  });
  // The engine promises no order; ids count up as filters are added.
  std::ranges::sort(filters, {}, [](const OurFilter& ours) { return ours.filter.id; });
  return filters;
}

}  // namespace

Listing ReadEngine() {
  const EngineSession session;
  Listing listing{session.ReadProvider(kProvider.key), {}};
  const std::vector<OurFilter> filters = ReadOurFilters(session);

  // The library does not tie its sublayers to its provider, so they are known by their keys or by what
  // they hold.
  session.ForEach<Sublayers>([&](const FWPM_SUBLAYER0& sublayer) {
    ListedSublayer listed{Catalog::FormatGuid(sublayer.subLayerKey),
                          EngineSession::Text(sublayer.displayData.name),
                          EngineSession::Text(sublayer.displayData.description),
                          sublayer.weight,
                          {}};
    for (const OurFilter& ours : filters) {
      if (ours.sublayer == sublayer.subLayerKey) {
        listed.filters.push_back(ours.filter);
      }
    }
    if (IsRuleSet(sublayer.subLayerKey) || !listed.filters.empty()) {
      listing.sublayers.push_back(std::move(listed));
    }
  });
  std::ranges::stable_sort(listing.sublayers, std::greater{}, &ListedSublayer::weight);
  return listing;
}
