#include "benchmarks/Floor.h"

namespace {

wchar_t anyText[] = L"Rule set";
GUID anyProvider{1, 0, 0, {}};

}  // namespace

Floor::Floor(GUID key, WfpFirewall::Sublayer ruleSet, int apps)
    : filters_(ruleSet.GetFilters()), ids_(filters_.size()), apps_(apps) {
  sublayer_.subLayerKey = key;
  sublayer_.displayData = {anyText, anyText};
  for (WfpFirewall::Filter& filter : filters_) {
    FWPM_FILTER0& record = records_.emplace_back(filter.ToNativeFilter());
    record.subLayerKey = key;
    record.displayData = {anyText, anyText};
    record.providerKey = &anyProvider;
  }
}

void Floor::Install(HANDLE engine) {
  for (int i = 0; i < apps_; ++i) {
    FWP_BYTE_BLOB* blob = nullptr;
    FwpmGetAppIdFromFileName0(anyText, &blob);
  }
  FWPM_SUBLAYER0* existing = nullptr;
  FwpmSubLayerGetByKey0(engine, &sublayer_.subLayerKey, &existing);
  FwpmSubLayerAdd0(engine, &sublayer_, nullptr);
  for (std::size_t i = 0; i < records_.size(); ++i) {
    FwpmFilterAdd0(engine, &records_[i], nullptr, &ids_[i]);
  }
}

void Floor::Confirm(HANDLE engine) {
  FWPM_SUBLAYER0* existing = nullptr;
  FwpmSubLayerGetByKey0(engine, &sublayer_.subLayerKey, &existing);
  void* memory = existing;
  FwpmFreeMemory0(&memory);
}

void Floor::Remove(HANDLE engine) {
  Confirm(engine);
  for (const UINT64 id : ids_) {
    FwpmFilterDeleteById0(engine, id);
  }
  FwpmSubLayerDeleteByKey0(engine, &sublayer_.subLayerKey);
  for (int i = 0; i < apps_; ++i) {
    void* blob = nullptr;
    FwpmFreeMemory0(&blob);
  }
}

void EnumerateFilters() {
  HANDLE engine = nullptr;
  FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &engine);
  HANDLE enumeration = nullptr;
  FwpmFilterCreateEnumHandle0(engine, nullptr, &enumeration);
  FWPM_FILTER0** records = nullptr;
  UINT32 count = 0;
  FwpmFilterEnum0(engine, enumeration, INFINITE, &records, &count);
  FwpmFilterDestroyEnumHandle0(engine, enumeration);
  FwpmEngineClose0(engine);
}
