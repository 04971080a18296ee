#include "PolicyReader.h"

#include <WfpPlatform.h>

#include <algorithm>
#include <memory>

#include "Adapters.h"
#include "EngineClient.h"
#include "Failure.h"
#include "OptionValues.h"
#include "Text.h"

Policy::Snapshot ReadPolicy() {
  try {
    return Policy::ReadEngine(FindPolicyCalls());
  } catch (const Policy::SnapshotError& error) {
    throw Failure(error.Code(), "The filtering engine cannot be read: " + std::string(error.what()));
  }
}

Policy::Labels ReadLabels() {
  Policy::Labels labels;
  try {
    for (const ListedAdapter& adapter : ListAdapters()) {
      labels.interfaces.emplace(adapter.luid, adapter.name);
    }
  } catch (const Failure&) {
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
  for (const ListedAdapter& adapter : ListAdapters()) {
    const auto isIn = [&](const std::string& text) {
      return adapter.description.find(text) != std::string::npos;
    };
    if (std::ranges::any_of(texts, isIn)) {
      luids.push_back(adapter.luid);
    }
  }
  return luids;
}

bool IsApplicationId(const std::string& text) { return text.starts_with("\\device\\"); }

std::string ReadApplicationId(const std::string& path) {
  if (IsApplicationId(path)) {
    return Policy::ApplicationBytes(path);
  }
  const ApplicationCalls engine = FindApplicationCalls();
  const auto release = [&engine](FWP_BYTE_BLOB* blob) {
    void* memory = blob;
    engine.FwpmFreeMemory0(&memory);
  };
  FWP_BYTE_BLOB* found = nullptr;
  const DWORD result = engine.FwpmGetAppIdFromFileName0(ToWide(path).c_str(), &found);
  if (result != ERROR_SUCCESS) {
    throw Failure(result, "The engine does not know the application " + path);
  }
  const std::unique_ptr<FWP_BYTE_BLOB, decltype(release)> blob(found, release);
  return {blob->data, blob->data + blob->size};
}
