// A client in C++ that checks how long objects live: dynamic ones as long as their session, static and
// persistent ones until they are deleted, and none longer than an object that it refers to.
#include <winsock2.h>

#include <fwpmu.h>

#include <cstdio>
#include <cstdlib>

#include "support/EngineKeys.h"

// Not in the headers of MinGW-w64.
#ifndef FWPM_SESSION_FLAG_DYNAMIC
#define FWPM_SESSION_FLAG_DYNAMIC 0x00000001
#endif
#ifndef FWPM_FILTER_FLAG_PERSISTENT
#define FWPM_FILTER_FLAG_PERSISTENT 0x00000001
#endif
#ifndef FWPM_SUBLAYER_FLAG_PERSISTENT
#define FWPM_SUBLAYER_FLAG_PERSISTENT 0x00000001
#endif

namespace {

constexpr GUID kSublayer{0x7c200001, 0x2b1f, 0x4d63, {0x9a, 0x04, 0x5e, 0x0d, 0xc2, 0x7b, 0x12, 0x01}};
constexpr GUID kFilter{0x7c200002, 0x2b1f, 0x4d63, {0x9a, 0x04, 0x5e, 0x0d, 0xc2, 0x7b, 0x12, 0x02}};

#define EXPECT(call, code) Expect((call), static_cast<DWORD>(code), #call, __LINE__)

void Expect(DWORD result, DWORD expected, const char* call, int line) {
  if (result != expected) {
    std::fprintf(stderr, "Lifetimes.cpp:%d: %s gave 0x%08lx instead of 0x%08lx\n", line, call, result,
                 expected);
    std::exit(1);
  }
}

/// A session that the destructor closes.
class Session {
 public:
  explicit Session(UINT32 flags) {
    FWPM_SESSION0 session{};
    session.flags = flags;
    EXPECT(FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, &session, &handle_), ERROR_SUCCESS);
  }
  ~Session() { EXPECT(FwpmEngineClose0(handle_), ERROR_SUCCESS); }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  [[nodiscard]] DWORD AddSublayer(UINT32 flags) {
    wchar_t name[] = L"Lifetimes client";
    FWPM_SUBLAYER0 sublayer{};
    sublayer.subLayerKey = kSublayer;
    sublayer.displayData.name = name;
    sublayer.flags = static_cast<decltype(sublayer.flags)>(flags);
    return FwpmSubLayerAdd0(handle_, &sublayer, nullptr);
  }

  /// Adds a block to the sublayer of the test.
  [[nodiscard]] DWORD AddFilter(UINT32 flags) {
    wchar_t name[] = L"Lifetimes client";
    FWPM_FILTER0 filter{};
    filter.filterKey = kFilter;
    filter.displayData.name = name;
    filter.flags = flags;
    filter.layerKey = kConnectV4;
    filter.subLayerKey = kSublayer;
    filter.action.type = FWP_ACTION_BLOCK;
    return FwpmFilterAdd0(handle_, &filter, nullptr, nullptr);
  }

  [[nodiscard]] DWORD DeleteSublayer(const GUID& key) { return FwpmSubLayerDeleteByKey0(handle_, &key); }
  [[nodiscard]] DWORD DeleteFilter() { return FwpmFilterDeleteByKey0(handle_, &kFilter); }

  [[nodiscard]] DWORD FindSublayer() {
    FWPM_SUBLAYER0* sublayer = nullptr;
    const DWORD result = FwpmSubLayerGetByKey0(handle_, &kSublayer, &sublayer);
    FwpmFreeMemory0(reinterpret_cast<void**>(&sublayer));
    return result;
  }

  [[nodiscard]] DWORD FindFilter() {
    FWPM_FILTER0* filter = nullptr;
    const DWORD result = FwpmFilterGetByKey0(handle_, &kFilter, &filter);
    FwpmFreeMemory0(reinterpret_cast<void**>(&filter));
    return result;
  }

 private:
  HANDLE handle_ = nullptr;
};

void DynamicObjectsEndWithTheirSession() {
  Session observer(0);
  {
    Session owner(FWPM_SESSION_FLAG_DYNAMIC);
    EXPECT(owner.AddSublayer(0), ERROR_SUCCESS);
    EXPECT(owner.AddFilter(0), ERROR_SUCCESS);
    EXPECT(observer.FindFilter(), ERROR_SUCCESS);
    Session stranger(FWPM_SESSION_FLAG_DYNAMIC);
    EXPECT(stranger.DeleteFilter(), FWP_E_WRONG_SESSION);
  }
  EXPECT(observer.FindFilter(), FWP_E_FILTER_NOT_FOUND);
  EXPECT(observer.FindSublayer(), FWP_E_SUBLAYER_NOT_FOUND);
}

void StaticObjectsOutlastTheirSession() {
  { EXPECT(Session(0).AddSublayer(0), ERROR_SUCCESS); }
  EXPECT(Session(FWPM_SESSION_FLAG_DYNAMIC).DeleteSublayer(kSublayer), FWP_E_DYNAMIC_SESSION_IN_PROGRESS);
  Session another(0);
  EXPECT(another.FindSublayer(), ERROR_SUCCESS);
  EXPECT(another.DeleteSublayer(kSublayer), ERROR_SUCCESS);
}

void DynamicFiltersMayHangInStaticSublayers() {
  Session lasting(0);
  EXPECT(lasting.AddSublayer(0), ERROR_SUCCESS);
  { EXPECT(Session(FWPM_SESSION_FLAG_DYNAMIC).AddFilter(0), ERROR_SUCCESS); }
  EXPECT(lasting.FindFilter(), FWP_E_FILTER_NOT_FOUND);
  EXPECT(lasting.DeleteSublayer(kSublayer), ERROR_SUCCESS);
}

void NothingOutlastsWhatItRefersTo() {
  {
    Session passing(FWPM_SESSION_FLAG_DYNAMIC);
    EXPECT(passing.AddSublayer(0), ERROR_SUCCESS);
    EXPECT(Session(0).AddFilter(0), FWP_E_LIFETIME_MISMATCH);
    EXPECT(Session(FWPM_SESSION_FLAG_DYNAMIC).AddFilter(0), FWP_E_LIFETIME_MISMATCH);
  }
  Session lasting(0);
  EXPECT(lasting.AddSublayer(0), ERROR_SUCCESS);
  EXPECT(lasting.AddFilter(FWPM_FILTER_FLAG_PERSISTENT), FWP_E_LIFETIME_MISMATCH);
  EXPECT(lasting.DeleteSublayer(kSublayer), ERROR_SUCCESS);
}

void PersistentObjectsGoInTheirOrder() {
  Session session(0);
  EXPECT(session.AddSublayer(FWPM_SUBLAYER_FLAG_PERSISTENT), ERROR_SUCCESS);
  EXPECT(session.AddFilter(FWPM_FILTER_FLAG_PERSISTENT), ERROR_SUCCESS);
  EXPECT(session.DeleteSublayer(kSublayer), FWP_E_IN_USE);
  EXPECT(session.DeleteFilter(), ERROR_SUCCESS);
  EXPECT(session.DeleteSublayer(kSublayer), ERROR_SUCCESS);
}

void BuiltInObjectsStay() { EXPECT(Session(0).DeleteSublayer(kUniversalSublayer), FWP_E_BUILTIN_OBJECT); }

}  // namespace

int main() {
  DynamicObjectsEndWithTheirSession();
  StaticObjectsOutlastTheirSession();
  DynamicFiltersMayHangInStaticSublayers();
  NothingOutlastsWhatItRefersTo();
  PersistentObjectsGoInTheirOrder();
  BuiltInObjectsStay();
  return 0;
}
