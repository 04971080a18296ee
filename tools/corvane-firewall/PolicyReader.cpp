#include "PolicyReader.h"

#include <WfpPlatform.h>

#include <algorithm>

#include "EngineClient.h"
#include "Failure.h"
#include "OptionValues.h"
#include "Text.h"
#include "helpers/NetworkInfo.h"
#include "helpers/NetworkInfoException.h"

namespace {

using WfpFirewall::Helpers::NetworkInfo;
using WfpFirewall::Helpers::NetworkInfoException;

template <class Function>
void Find(Function& found, const char* function) {
  found = FindInEngine<Function>(function);
}

Policy::EngineCalls FindEngineCalls() {
  Policy::EngineCalls calls{};
  Find(calls.FwpmEngineOpen0, "FwpmEngineOpen0");
  Find(calls.FwpmEngineClose0, "FwpmEngineClose0");
  Find(calls.FwpmTransactionBegin0, "FwpmTransactionBegin0");
  Find(calls.FwpmTransactionAbort0, "FwpmTransactionAbort0");
  Find(calls.FwpmProviderCreateEnumHandle0, "FwpmProviderCreateEnumHandle0");
  Find(calls.FwpmProviderEnum0, "FwpmProviderEnum0");
  Find(calls.FwpmProviderDestroyEnumHandle0, "FwpmProviderDestroyEnumHandle0");
  Find(calls.FwpmSubLayerCreateEnumHandle0, "FwpmSubLayerCreateEnumHandle0");
  Find(calls.FwpmSubLayerEnum0, "FwpmSubLayerEnum0");
  Find(calls.FwpmSubLayerDestroyEnumHandle0, "FwpmSubLayerDestroyEnumHandle0");
  Find(calls.FwpmFilterCreateEnumHandle0, "FwpmFilterCreateEnumHandle0");
  Find(calls.FwpmFilterEnum0, "FwpmFilterEnum0");
  Find(calls.FwpmFilterDestroyEnumHandle0, "FwpmFilterDestroyEnumHandle0");
  Find(calls.FwpmFreeMemory0, "FwpmFreeMemory0");
  return calls;
}

}  // namespace

Policy::Snapshot ReadPolicy() {
  try {
    return Policy::ReadEngine(FindEngineCalls());
  } catch (const Policy::SnapshotError& error) {
    throw Failure(error.Code(), "The filtering engine cannot be read: " + std::string(error.what()));
  }
}

Policy::Labels ReadLabels() {
  Policy::Labels labels;
  try {
    for (const auto& adapter : NetworkInfo::GetInterfaces()) {
      labels.interfaces.emplace(adapter.GetLuid(), ToUtf8(adapter.GetName()));
    }
  } catch (const NetworkInfoException&) {
    return {};
  }
  return labels;
}

UINT64 FindInterface(const std::string& nameOrLuid) {
  if (const auto luid = ParseLuid(nameOrLuid)) {
    return *luid;
  }
  for (const auto& [luid, name] : ReadLabels().interfaces) {
    if (name == nameOrLuid) {
      return luid;
    }
  }
  throw Failure("There is no adapter named \"" + nameOrLuid + "\"", "The step adapters lists them.");
}

std::vector<UINT64> FindInterfaces(const std::vector<std::string>& texts) {
  std::vector<UINT64> luids;
  for (const auto& adapter : NetworkInfo::GetInterfaces()) {
    const std::string description = ToUtf8(adapter.GetDescription());
    const auto isIn = [&](const std::string& text) { return description.find(text) != std::string::npos; };
    if (std::ranges::any_of(texts, isIn)) {
      luids.push_back(adapter.GetLuid());
    }
  }
  return luids;
}

bool IsApplicationId(const std::string& text) { return text.starts_with("\\device\\"); }

std::string ReadApplicationId(const std::string& path) {
  if (IsApplicationId(path)) {
    return Policy::ApplicationBytes(path);
  }
  const auto getAppId = FindInEngine<decltype(&::FwpmGetAppIdFromFileName0)>("FwpmGetAppIdFromFileName0");
  FWP_BYTE_BLOB* found = nullptr;
  const DWORD result = getAppId(ToWide(path).c_str(), &found);
  if (result != ERROR_SUCCESS) {
    throw Failure(result, "The engine does not know the application " + path);
  }
  const auto blob = Own(found);
  return {blob->data, blob->data + blob->size};
}
