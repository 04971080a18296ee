#include "EngineReader.h"

#include <WfpPlatform.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "EngineClient.h"
#include "Identities.h"
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
    return List(*provider);
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

 private:
  EngineHandle session_ = OpenEngine();
};

bool IsOurs(const FWPM_FILTER0& filter) {
  return filter.providerKey != nullptr && *filter.providerKey == kProvider.key;
}

}  // namespace

Listing ReadEngine(Owners owners) {
  const EngineSession session;
  std::vector<ListedFilter> filters;
  session.ForEach<Filters>([&](const FWPM_FILTER0& filter) {
    if (owners == Owners::All || IsOurs(filter)) {
      filters.push_back(List(filter));
    }
  });
  // The library does not tie its sublayers to its provider, so they are known by their keys or by what
  // they hold.
  std::vector<ListedSublayer> sublayers;
  session.ForEach<Sublayers>([&](const FWPM_SUBLAYER0& sublayer) {
    const std::string key = Catalog::FormatGuid(sublayer.subLayerKey);
    if (owners == Owners::All || IsRuleSet(sublayer.subLayerKey) ||
        std::ranges::find(filters, key, &ListedFilter::sublayer) != filters.end()) {
      sublayers.push_back(List(sublayer));
    }
  });
  return {session.ReadProvider(kProvider.key), Arrange(std::move(sublayers), std::move(filters))};
}
