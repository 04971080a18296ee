#include "engine/Engine.h"

#include "engine/FirewallException.h"
#include "filtering/EngineKeys.h"

namespace WfpFirewall {
namespace {

/// Null when the engine refuses; the enumeration then finds nothing.
std::shared_ptr<void> CreateFilterEnumHandle(const std::shared_ptr<void>& engine) {
  HANDLE handle = nullptr;
  FwpmFilterCreateEnumHandle0(engine.get(), nullptr, &handle);
  return {handle, [engine](HANDLE enumHandle) { FwpmFilterDestroyEnumHandle0(engine.get(), enumHandle); }};
}

/// A record that is not there, or whose condition is not, blocks nothing.
bool BlocksOneApp(const FWPM_FILTER0* filter) {
  return filter != nullptr && filter->numFilterConditions == 1 && filter->filterCondition != nullptr &&
         filter->action.type == FWP_ACTION_BLOCK &&
         filter->filterCondition->fieldKey == Filtering::kConditionAleAppId;
}

}  // namespace

std::shared_ptr<void> Engine::OpenEngine() {
  FWPM_SESSION0 session{};
  session.flags = FWPM_SESSION_FLAG_DYNAMIC;
  HANDLE handle = nullptr;
  const DWORD result = FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, &session, &handle);
  if (result != ERROR_SUCCESS) {
    throw FirewallException("Error opening engine.", result);
  }
  return {handle, [](HANDLE engine) { FwpmEngineClose0(engine); }};
}

std::vector<Filter> Engine::GetAllBlockedAppsFilters() {
  const std::shared_ptr<void> engine = OpenEngine();
  const std::shared_ptr<void> enumHandle = CreateFilterEnumHandle(engine);

  FWPM_FILTER0** records = nullptr;
  UINT32 count = 0;
  // The records are never freed: the application identifiers of the copies point into them. Contract: an
  // enumeration that fails finds nothing, see
  // docs/rule-sets.md#copy-of-windows-firewalls-application-blocks.
  FwpmFilterEnum0(engine.get(), enumHandle.get(), INFINITE, &records, &count);

  std::vector<Filter> filters;
  for (UINT32 i = 0; records != nullptr && i < count; ++i) {
    if (BlocksOneApp(records[i])) {
      filters.push_back(Filter::BuildFromNative(records[i]));
    }
  }
  return filters;
}

}  // namespace WfpFirewall
