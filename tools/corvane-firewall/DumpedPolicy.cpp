#include "DumpedPolicy.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <span>
#include <utility>

#include "Text.h"
#include "catalog/Names.h"
#include "catalog/Sublayers.h"
#include "dump/ReadDump.h"

namespace {

using Catalog::BuiltInSublayer;
using Catalog::FindBuiltInSublayer;

/// What the order of a dump's filters tells of a sublayer.
struct Neighbours {
  std::size_t heavier = 0;  ///< how many that are not placed yet must be heavier
  std::vector<GUID> lighter;
};

/// Weights for the sublayers that filters are in. In a layer, the filters of heavier sublayers come first.
class SublayerOrder {
 public:
  SublayerOrder(std::span<const FWPM_FILTER0> filters, std::string fileName)
      : fileName_(std::move(fileName)) {
    for (std::size_t i = 0; i < filters.size(); ++i) {
      neighbours_[filters[i].subLayerKey];
      if (i > 0 && filters[i - 1].layerKey == filters[i].layerKey &&
          filters[i - 1].subLayerKey != filters[i].subLayerKey) {
        neighbours_[filters[i - 1].subLayerKey].lighter.push_back(filters[i].subLayerKey);
        ++neighbours_[filters[i].subLayerKey].heavier;
      }
    }
    for (const auto& [key, neighbours] : neighbours_) {
      AddIfReady(key);
    }
  }

  /// The heaviest first. A sublayer of the system has the weight that it has everywhere, another one the
  /// highest that is left.
  std::vector<Policy::Sublayer> Place() && {
    for (const BuiltInSublayer& builtIn : Catalog::kBuiltInSublayers) {
      if (neighbours_.contains(builtIn.key)) {
        builtIns_.push_back(&builtIn);
      }
    }
    while (sublayers_.size() < neighbours_.size()) {
      const int limit = builtIns_.empty() ? -1 : builtIns_.back()->weight;
      if (!ready_.empty() && lowest_ - 1 > limit) {
        PlaceOther(*ready_.begin());
      } else if (!builtIns_.empty() && neighbours_[builtIns_.back()->key].heavier == 0) {
        PlaceBuiltIn(*builtIns_.back());
      } else {
        throw Dump::DumpError(fileName_ +
                              ": expected filters sorted by layer, and in it by the weights of their "
                              "sublayers, as netsh wfp show filters writes them");
      }
    }
    return std::move(sublayers_);
  }

 private:
  void AddIfReady(const GUID& key) {
    if (neighbours_[key].heavier == 0 && FindBuiltInSublayer(key) == nullptr) {
      ready_.insert(key);
    }
  }

  void PlaceBuiltIn(const BuiltInSublayer& builtIn) {
    builtIns_.pop_back();
    Add({.key = builtIn.key,
         .name = Catalog::SublayerName(builtIn.key),
         .weight = builtIn.weight,
         .providerKey = builtIn.providerKey});
  }

  void PlaceOther(GUID key) {
    ready_.erase(key);
    Add({.key = key,
         .name = Catalog::SublayerName(key),
         .weight = static_cast<UINT16>(lowest_ - 1),
         .listed = false});
  }

  void Add(Policy::Sublayer sublayer) {
    lowest_ = sublayer.weight;
    for (const GUID& lighter : neighbours_[sublayer.key].lighter) {
      --neighbours_[lighter].heavier;
      AddIfReady(lighter);
    }
    sublayers_.push_back(std::move(sublayer));
  }

  std::string fileName_;
  std::map<GUID, Neighbours, Catalog::KeyOrder> neighbours_;
  std::set<GUID, Catalog::KeyOrder> ready_;         ///< to place; none of the system
  std::vector<const BuiltInSublayer*> builtIns_{};  ///< to place, by rising weight
  int lowest_ = 0x10000;                            ///< weight given
  std::vector<Policy::Sublayer> sublayers_{};
};

template <class Decoded, class Native>
std::vector<Decoded> DecodeAll(const std::vector<Native>& objects) {
  std::vector<Decoded> decoded;
  std::ranges::transform(objects, std::back_inserter(decoded),
                         [](const Native& object) { return Policy::Decode(object); });
  return decoded;
}

}  // namespace

DumpedPolicy ReadDumpedPolicy(const std::filesystem::path& path) {
  Dump::EngineState state = Dump::ReadDumpFile(path);
  const bool isOrderInferred = state.kind == Dump::DumpKind::Filters;
  std::vector<Policy::Sublayer> sublayers = isOrderInferred
                                                ? SublayerOrder(state.filters, PathToUtf8(path)).Place()
                                                : DecodeAll<Policy::Sublayer>(state.subLayers);
  Policy::Snapshot snapshot =
      Policy::MakeSnapshot(std::move(sublayers), DecodeAll<Policy::Filter>(state.filters));
  snapshot.providers = DecodeAll<Policy::Provider>(state.providers);
  return {std::move(state), std::move(snapshot), isOrderInferred};
}
