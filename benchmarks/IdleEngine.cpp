#include "benchmarks/IdleEngine.h"

#include <WfpPlatform.h>

#include <algorithm>
#include <array>
#include <utility>

namespace {

std::uint64_t calls = 0;
UINT64 lastFilterId = 0;
bool isFirstFilter = false;
std::function<void()> atFirstFilter = [] {};
std::array<GUID, 16> sublayers{};
std::size_t sublayerCount = 0;
std::array<UINT8, 64> appId{};
FWP_BYTE_BLOB appBlob{appId.size(), appId.data()};

HANDLE AnyHandle() { return &calls; }

GUID* Find(const GUID& key) {
  GUID* end = sublayers.data() + sublayerCount;
  GUID* found = std::find(sublayers.data(), end, key);
  return found == end ? nullptr : found;
}

DWORD Succeed() {
  ++calls;
  return ERROR_SUCCESS;
}

DWORD SucceedIf(bool condition, HRESULT otherwise) {
  ++calls;
  return condition ? ERROR_SUCCESS : static_cast<DWORD>(otherwise);
}

}  // namespace

std::uint64_t IdleEngine::CountCalls() { return calls; }

void IdleEngine::AtFirstFilter(std::function<void()> call) { atFirstFilter = std::move(call); }

DWORD FwpmEngineOpen0(const wchar_t*, UINT32, SEC_WINNT_AUTH_IDENTITY_W*, const FWPM_SESSION0*,
                      HANDLE* engine) {
  *engine = AnyHandle();
  return Succeed();
}

DWORD FwpmEngineClose0(HANDLE) { return Succeed(); }
DWORD FwpmTransactionBegin0(HANDLE, UINT32) { return Succeed(); }
DWORD FwpmTransactionCommit0(HANDLE) { return Succeed(); }
DWORD FwpmProviderAdd0(HANDLE, const FWPM_PROVIDER0*, PSECURITY_DESCRIPTOR) { return Succeed(); }
DWORD FwpmProviderDeleteByKey0(HANDLE, const GUID*) { return Succeed(); }

DWORD FwpmProviderGetByKey0(HANDLE, const GUID*, FWPM_PROVIDER0**) {
  return SucceedIf(false, FWP_E_PROVIDER_NOT_FOUND);
}

DWORD FwpmSubLayerAdd0(HANDLE, const FWPM_SUBLAYER0* subLayer, PSECURITY_DESCRIPTOR) {
  sublayers.at(sublayerCount++) = subLayer->subLayerKey;
  isFirstFilter = true;
  return Succeed();
}

DWORD FwpmSubLayerGetByKey0(HANDLE, const GUID* key, FWPM_SUBLAYER0**) {
  return SucceedIf(Find(*key) != nullptr, FWP_E_SUBLAYER_NOT_FOUND);
}

DWORD FwpmSubLayerDeleteByKey0(HANDLE, const GUID* key) {
  GUID* found = Find(*key);
  if (found != nullptr) {
    *found = sublayers.at(--sublayerCount);
  }
  return SucceedIf(found != nullptr, FWP_E_SUBLAYER_NOT_FOUND);
}

DWORD FwpmFilterAdd0(HANDLE, const FWPM_FILTER0*, PSECURITY_DESCRIPTOR, UINT64* id) {
  if (isFirstFilter) {
    isFirstFilter = false;
    atFirstFilter();
  }
  *id = ++lastFilterId;
  return Succeed();
}

DWORD FwpmFilterDeleteById0(HANDLE, UINT64) { return Succeed(); }

DWORD FwpmFilterCreateEnumHandle0(HANDLE, const FWPM_FILTER_ENUM_TEMPLATE0*, HANDLE* enumHandle) {
  *enumHandle = AnyHandle();
  return Succeed();
}

DWORD FwpmFilterDestroyEnumHandle0(HANDLE, HANDLE) { return Succeed(); }

DWORD FwpmFilterEnum0(HANDLE, HANDLE, UINT32, FWPM_FILTER0*** entries, UINT32* returned) {
  *entries = nullptr;
  *returned = 0;
  return Succeed();
}

DWORD FwpmGetAppIdFromFileName0(const wchar_t*, FWP_BYTE_BLOB** blob) {
  *blob = &appBlob;
  return Succeed();
}

void FwpmFreeMemory0(void** memory) {
  *memory = nullptr;
  Succeed();
}
