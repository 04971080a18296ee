#include "replay/ReadEngine.h"

#include <algorithm>

#include "replay/Session.h"

namespace Replay {
namespace {

constexpr UINT32 kPageSize = 1024;

class Reader {
 public:
  explicit Reader(const EngineCalls& engine) : engine_(engine), session_(engine, FWPM_TXN_READ_ONLY) {}

  /// Adds all objects of a kind, page by page.
  /// @param name what the functions' names begin with: "FwpmFilter".
  template <class Create, class Enum, class Destroy, class Record>
  void Read(const std::string& name, Create createEnumHandle, Enum enumerate, Destroy destroyEnumHandle,
            std::vector<Record>& records) {
    HANDLE opened = nullptr;
    Check(createEnumHandle(session_.Handle(), nullptr, &opened), name + "CreateEnumHandle0");
    const auto close = [&](HANDLE handle) { destroyEnumHandle(session_.Handle(), handle); };
    const std::unique_ptr<void, decltype(close)> enumeration(opened, close);
    for (UINT32 count = kPageSize; count == kPageSize;) {
      Record** page = nullptr;
      Check(enumerate(session_.Handle(), enumeration.get(), kPageSize, &page, &count), name + "Enum0");
      contents_.memory.emplace_back(page, [free = engine_.FwpmFreeMemory0](void* memory) { free(&memory); });
      std::for_each_n(page, count, [&](const Record* record) { records.push_back(*record); });
    }
  }

  EngineContents ReadAll() && {
    Dump::EngineState& state = contents_.state;
    Read("FwpmLayer", engine_.FwpmLayerCreateEnumHandle0, engine_.FwpmLayerEnum0,
         engine_.FwpmLayerDestroyEnumHandle0, state.layers);
    Read("FwpmProvider", engine_.FwpmProviderCreateEnumHandle0, engine_.FwpmProviderEnum0,
         engine_.FwpmProviderDestroyEnumHandle0, state.providers);
    Read("FwpmProviderContext", engine_.FwpmProviderContextCreateEnumHandle0,
         engine_.FwpmProviderContextEnum0, engine_.FwpmProviderContextDestroyEnumHandle0,
         state.providerContexts);
    Read("FwpmSubLayer", engine_.FwpmSubLayerCreateEnumHandle0, engine_.FwpmSubLayerEnum0,
         engine_.FwpmSubLayerDestroyEnumHandle0, state.subLayers);
    Read("FwpmCallout", engine_.FwpmCalloutCreateEnumHandle0, engine_.FwpmCalloutEnum0,
         engine_.FwpmCalloutDestroyEnumHandle0, state.callouts);
    Read("FwpmFilter", engine_.FwpmFilterCreateEnumHandle0, engine_.FwpmFilterEnum0,
         engine_.FwpmFilterDestroyEnumHandle0, state.filters);
    return std::move(contents_);
  }

 private:
  const EngineCalls& engine_;
  Session session_;
  EngineContents contents_;
};

}  // namespace

EngineContents ReadEngine(const EngineCalls& engine) { return Reader(engine).ReadAll(); }

}  // namespace Replay
