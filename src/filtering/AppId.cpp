#include "filtering/AppId.h"

#include <memory>

#include "engine/FirewallException.h"

namespace WfpFirewall::Filtering::Values {
namespace {

struct EngineMemoryDeleter {
  void operator()(FWP_BYTE_BLOB* blob) const {
    void* memory = blob;
    FwpmFreeMemory0(&memory);
  }
};

std::shared_ptr<FWP_BYTE_BLOB> RetrieveBlob(const std::wstring& path) {
  FWP_BYTE_BLOB* blob = nullptr;
  const DWORD result = FwpmGetAppIdFromFileName0(path.c_str(), &blob);
  if (result != ERROR_SUCCESS) {
    throw FirewallException("Failed to retrieve app blob", result);
  }
  return {blob, EngineMemoryDeleter{}};
}

}  // namespace

AppId::AppId(FWP_BYTE_BLOB blob) : Value(blob) {}

// NOLINTNEXTLINE(performance-unnecessary-value-param): like every value, it takes its text over.
AppId::AppId(std::wstring path) : Value(RetrieveBlob(path)) {}

}  // namespace WfpFirewall::Filtering::Values
