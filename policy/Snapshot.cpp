#include "policy/Snapshot.h"

#include <algorithm>
#include <memory>
#include <set>

#include "catalog/Format.h"
#include "catalog/Names.h"

namespace Policy {
namespace {

constexpr UINT32 kPageSize = 1024;

void Check(DWORD result, const char* function) {
  if (result != ERROR_SUCCESS) {
    throw SnapshotError(result, function);
  }
}

/// A function of the engine, with its name for errors.
template <class Function>
struct Named {
  Function function;
  const char* name;
};
template <class Function>
Named(Function, const char*) -> Named<Function>;

/// A session that reads one state of the engine, however long it takes.
class ReadingSession {
 public:
  explicit ReadingSession(const EngineCalls& engine)
      : engine_(engine), session_(Open(engine), engine.FwpmEngineClose0) {
    Check(engine.FwpmTransactionBegin0(session_.get(), FWPM_TXN_READ_ONLY), "FwpmTransactionBegin0");
    transaction_ = {session_.get(), engine.FwpmTransactionAbort0};
  }

  [[nodiscard]] std::vector<Provider> Providers() const {
    return ReadAll<FWPM_PROVIDER0, Provider>(
        Named{engine_.FwpmProviderCreateEnumHandle0, "FwpmProviderCreateEnumHandle0"},
        Named{engine_.FwpmProviderEnum0, "FwpmProviderEnum0"}, engine_.FwpmProviderDestroyEnumHandle0);
  }

  [[nodiscard]] std::vector<Sublayer> Sublayers() const {
    return ReadAll<FWPM_SUBLAYER0, Sublayer>(
        Named{engine_.FwpmSubLayerCreateEnumHandle0, "FwpmSubLayerCreateEnumHandle0"},
        Named{engine_.FwpmSubLayerEnum0, "FwpmSubLayerEnum0"}, engine_.FwpmSubLayerDestroyEnumHandle0);
  }

  [[nodiscard]] std::vector<Filter> Filters() const {
    return ReadAll<FWPM_FILTER0, Filter>(
        Named{engine_.FwpmFilterCreateEnumHandle0, "FwpmFilterCreateEnumHandle0"},
        Named{engine_.FwpmFilterEnum0, "FwpmFilterEnum0"}, engine_.FwpmFilterDestroyEnumHandle0);
  }

 private:
  static HANDLE Open(const EngineCalls& engine) {
    HANDLE session = nullptr;
    Check(engine.FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &session), "FwpmEngineOpen0");
    return session;
  }

  /// All objects of a kind, page by page.
  template <class Native, class Decoded, class Create, class Enumerate, class Destroy>
  [[nodiscard]] std::vector<Decoded> ReadAll(Named<Create> create, Named<Enumerate> enumerate,
                                             Destroy destroy) const {
    const auto close = [this, destroy](HANDLE enumeration) { destroy(session_.get(), enumeration); };
    const auto free = [this](void* memory) { engine_.FwpmFreeMemory0(&memory); };
    HANDLE opened = nullptr;
    Check(create.function(session_.get(), nullptr, &opened), create.name);
    const std::unique_ptr<void, decltype(close)> enumeration(opened, close);
    std::vector<Decoded> objects;
    for (UINT32 count = kPageSize; count == kPageSize;) {
      Native** found = nullptr;
      Check(enumerate.function(session_.get(), enumeration.get(), kPageSize, &found, &count), enumerate.name);
      const std::unique_ptr<Native*, decltype(free)> page(found, free);
      std::for_each_n(page.get(), count, [&](const Native* object) { objects.push_back(Decode(*object)); });
    }
    return objects;
  }

  const EngineCalls& engine_;
  std::unique_ptr<void, decltype(EngineCalls::FwpmEngineClose0)> session_;
  std::unique_ptr<void, decltype(EngineCalls::FwpmTransactionAbort0)> transaction_{nullptr, nullptr};
};

/// Adds the sublayers that filters name, but that the engine does not show.
void AddUnlisted(Snapshot& snapshot) {
  std::set<GUID, Catalog::KeyOrder> known;
  for (const Sublayer& sublayer : snapshot.sublayers) {
    known.insert(sublayer.key);
  }
  for (const Filter& filter : snapshot.filters) {
    if (known.insert(filter.sublayerKey).second) {
      snapshot.sublayers.push_back({filter.sublayerKey, Catalog::SublayerName(filter.sublayerKey), 0, false});
    }
  }
}

/// Live engines keep no two sublayers of equal weight. Elsewhere the one that is listed first comes first; of
/// weight 0 it is the last, because live engines give each one that asks for it a greater weight.
bool ComesFirst(const Sublayer& left, const Sublayer& right) {
  if (left.weight != right.weight) {
    return left.weight > right.weight;
  }
  return left.weight == 0 ? left.place > right.place : left.place < right.place;
}

}  // namespace

bool Filter::IsHard() const {
  return action == FWP_ACTION_BLOCK || (flags & FWPM_FILTER_FLAG_CLEAR_ACTION_RIGHT) != 0;
}

std::string Describe(const Filter& filter) {
  return "filter " + Catalog::FormatNumber(filter.id) + " \"" + filter.name + '"';
}

SnapshotError::SnapshotError(DWORD code, const std::string& function)
    : std::runtime_error(function + " failed: " + Catalog::ErrorName(code)), code_(code) {}

Snapshot ReadEngine(const EngineCalls& engine) {
  const ReadingSession session(engine);
  std::vector<Provider> providers = session.Providers();
  std::vector<Sublayer> sublayers = session.Sublayers();
  Snapshot snapshot = MakeSnapshot(std::move(sublayers), session.Filters());
  snapshot.providers = std::move(providers);
  return snapshot;
}

Snapshot MakeSnapshot(std::vector<Sublayer> sublayers, std::vector<Filter> filters) {
  Snapshot snapshot{std::move(sublayers), std::move(filters), {}};
  AddUnlisted(snapshot);
  for (std::size_t i = 0; i < snapshot.sublayers.size(); ++i) {
    snapshot.sublayers[i].place = i;
  }
  std::ranges::sort(snapshot.filters, {}, &Filter::id);
  std::ranges::sort(snapshot.sublayers, ComesFirst);
  return snapshot;
}

}  // namespace Policy
