// A client in C++ that reads filters from the engine: by templates, in pages, and as a snapshot that later
// changes do not affect. Its session is dynamic, so nothing stays in the engine, however the program ends.
#include <winsock2.h>

#include <fwpmu.h>

#include <cstdio>
#include <cstdlib>
#include <span>
#include <vector>

#include "support/EngineKeys.h"

// Not in the headers of MinGW-w64.
#ifndef FWPM_SESSION_FLAG_DYNAMIC
#define FWPM_SESSION_FLAG_DYNAMIC 0x00000001
#endif

namespace {

constexpr GUID kOurs{0x7c300001, 0x2b1f, 0x4d63, {0x9a, 0x04, 0x5e, 0x0d, 0xc2, 0x7b, 0x13, 0x01}};
constexpr GUID kTheirs{0x7c300002, 0x2b1f, 0x4d63, {0x9a, 0x04, 0x5e, 0x0d, 0xc2, 0x7b, 0x13, 0x02}};

constexpr UINT32 kAnyAction = 0xFFFFFFFF;
constexpr UINT32 kPageSize = 3;

void Expect(bool isSo, const char* what) {
  if (!isSo) {
    std::fprintf(stderr, "Enumeration.cpp: not so: %s\n", what);
    std::exit(1);
  }
}

void ExpectSuccess(DWORD result, const char* function) {
  if (result != ERROR_SUCCESS) {
    std::fprintf(stderr, "Enumeration.cpp: %s gave 0x%08lx\n", function, result);
    std::exit(1);
  }
}

HANDLE Open() {
  FWPM_SESSION0 session{};
  session.flags = FWPM_SESSION_FLAG_DYNAMIC;
  HANDLE engine = nullptr;
  ExpectSuccess(FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, &session, &engine), "FwpmEngineOpen0");
  return engine;
}

void AddProvider(HANDLE engine, const GUID& key) {
  wchar_t name[] = L"Enumeration client";
  FWPM_PROVIDER0 provider{};
  provider.providerKey = key;
  provider.displayData.name = name;
  ExpectSuccess(FwpmProviderAdd0(engine, &provider, nullptr), "FwpmProviderAdd0");
}

/// @returns the filter's id.
UINT64 AddFilter(HANDLE engine, GUID provider, const GUID& layer, FWP_ACTION_TYPE action, UINT64 weight) {
  wchar_t name[] = L"Enumeration client";
  FWPM_FILTER0 filter{};
  filter.displayData.name = name;
  filter.providerKey = &provider;
  filter.layerKey = layer;
  filter.weight.type = FWP_UINT64;
  filter.weight.uint64 = &weight;
  filter.action.type = action;
  UINT64 id = 0;
  ExpectSuccess(FwpmFilterAdd0(engine, &filter, nullptr, &id), "FwpmFilterAdd0");
  return id;
}

/// Reads the filters that a template selects, page by page. Each filter of the test has a different weight,
/// so the weights tell which filters were read.
class FilterReader {
 public:
  FilterReader(HANDLE engine, const FWPM_FILTER_ENUM_TEMPLATE0& criteria) : engine_(engine) {
    ExpectSuccess(FwpmFilterCreateEnumHandle0(engine_, &criteria, &handle_), "FwpmFilterCreateEnumHandle0");
  }
  ~FilterReader() {
    ExpectSuccess(FwpmFilterDestroyEnumHandle0(engine_, handle_), "FwpmFilterDestroyEnumHandle0");
  }
  FilterReader(const FilterReader&) = delete;
  FilterReader& operator=(const FilterReader&) = delete;

  /// The weights of the next page's filters.
  std::vector<UINT64> NextPage() {
    FWPM_FILTER0** filters = nullptr;
    UINT32 count = 0;
    ExpectSuccess(FwpmFilterEnum0(engine_, handle_, kPageSize, &filters, &count), "FwpmFilterEnum0");
    std::vector<UINT64> weights;
    for (const FWPM_FILTER0* filter : std::span(filters, count)) {
      weights.push_back(*filter->effectiveWeight.uint64);
    }
    // One block holds the array and everything that it points at.
    FwpmFreeMemory0(reinterpret_cast<void**>(&filters));
    Expect(filters == nullptr, "freeing clears the pointer");
    return weights;
  }

  std::vector<UINT64> AllPages() {
    std::vector<UINT64> weights;
    for (auto page = NextPage(); !page.empty(); page = NextPage()) {
      weights.insert(weights.end(), page.begin(), page.end());
    }
    return weights;
  }

 private:
  HANDLE engine_;
  HANDLE handle_ = nullptr;
};

using Weights = std::vector<UINT64>;

/// Selects the filters of a provider at a layer, the heaviest first. Without the flag SORTED the engine
/// promises no order.
FWPM_FILTER_ENUM_TEMPLATE0 Ours(const GUID& layer, GUID& provider) {
  FWPM_FILTER_ENUM_TEMPLATE0 criteria{};
  criteria.providerKey = &provider;
  criteria.layerKey = layer;
  criteria.enumType = FWP_FILTER_ENUM_OVERLAPPING;
  criteria.flags = FWP_FILTER_ENUM_FLAG_SORTED;
  criteria.actionMask = kAnyAction;
  return criteria;
}

void TemplatesSelect(HANDLE engine) {
  GUID ours = kOurs;
  GUID theirs = kTheirs;
  Expect(FilterReader(engine, Ours(kConnectV4, ours)).AllPages() == Weights{70, 60, 50, 40, 30, 20, 10},
         "ours at V4, the heaviest first");
  Expect(FilterReader(engine, Ours(kConnectV6, ours)).AllPages() == Weights{80}, "ours at V6");
  Expect(FilterReader(engine, Ours(kConnectV4, theirs)).AllPages() == Weights{90}, "theirs at V4");
  FWPM_FILTER_ENUM_TEMPLATE0 noAction = Ours(kConnectV4, ours);
  noAction.actionMask = 0;
  Expect(FilterReader(engine, noAction).AllPages().empty(), "a mask without actions selects nothing");
}

void PagesFollowOneAnother(HANDLE engine) {
  GUID ours = kOurs;
  FilterReader reader(engine, Ours(kConnectV4, ours));
  Expect(reader.NextPage() == Weights{70, 60, 50}, "the first page is full");
  Expect(reader.NextPage() == Weights{40, 30, 20}, "the second page is full");
  Expect(reader.NextPage() == Weights{10}, "the last page has the rest");
  Expect(reader.NextPage().empty(), "the end is an empty page");
}

void LaterFiltersAreNotInTheSnapshot(HANDLE engine) {
  GUID ours = kOurs;
  FilterReader before(engine, Ours(kConnectV6, ours));
  const UINT64 id = AddFilter(engine, kOurs, kConnectV6, FWP_ACTION_BLOCK, 85);
  FilterReader after(engine, Ours(kConnectV6, ours));
  Expect(before.AllPages() == Weights{80}, "a filter added later is not there");
  Expect(after.AllPages() == Weights{85, 80}, "a new snapshot has it");
  ExpectSuccess(FwpmFilterDeleteById0(engine, id), "FwpmFilterDeleteById0");
}

void TransactionsKeepASnapshotWhole(HANDLE engine) {
  GUID ours = kOurs;
  ExpectSuccess(FwpmTransactionBegin0(engine, 0), "FwpmTransactionBegin0");
  const UINT64 id = AddFilter(engine, kOurs, kConnectV6, FWP_ACTION_BLOCK, 85);
  {
    FilterReader reader(engine, Ours(kConnectV6, ours));
    ExpectSuccess(FwpmFilterDeleteById0(engine, id), "FwpmFilterDeleteById0");
    Expect(reader.AllPages() == Weights{85, 80}, "a filter deleted later is still there");
  }
  ExpectSuccess(FwpmTransactionAbort0(engine), "FwpmTransactionAbort0");
}

}  // namespace

int main() {
  const HANDLE engine = Open();
  AddProvider(engine, kOurs);
  AddProvider(engine, kTheirs);
  for (const UINT64 weight : {40U, 10U, 70U, 20U, 60U, 30U, 50U}) {
    AddFilter(engine, kOurs, kConnectV4, FWP_ACTION_PERMIT, weight);
  }
  AddFilter(engine, kOurs, kConnectV6, FWP_ACTION_BLOCK, 80);
  AddFilter(engine, kTheirs, kConnectV4, FWP_ACTION_BLOCK, 90);
  TemplatesSelect(engine);
  PagesFollowOneAnother(engine);
  LaterFiltersAreNotInTheSnapshot(engine);
  TransactionsKeepASnapshotWhole(engine);
  ExpectSuccess(FwpmEngineClose0(engine), "FwpmEngineClose0");
  return 0;
}
