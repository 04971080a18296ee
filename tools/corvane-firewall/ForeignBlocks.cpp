#include "ForeignBlocks.h"

#include <WfpPlatform.h>

#include "EngineClient.h"
#include "Failure.h"
#include "catalog/Keys.h"
#include "emulator/ControlExports.h"

namespace {

/// @throws Failure with the code if it is not ERROR_SUCCESS.
void Check(DWORD result, const char* function) {
  if (result != ERROR_SUCCESS) {
    throw Failure(result, std::string(function) + " failed");
  }
}

using EngineHandle = std::unique_ptr<void, decltype(&::FwpmEngineClose0)>;

/// Opens a session that is not dynamic, so that its filters stay when it closes.
EngineHandle OpenEngine() {
  EngineHandle session(nullptr, FindInEngine<decltype(&::FwpmEngineClose0)>("FwpmEngineClose0"));
  HANDLE opened = nullptr;
  const auto open = FindInEngine<decltype(&::FwpmEngineOpen0)>("FwpmEngineOpen0");
  Check(open(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &opened), "FwpmEngineOpen0");
  session.reset(opened);
  return session;
}

auto IdentifierOf(const std::wstring& app) {
  FWP_BYTE_BLOB* identifier = nullptr;
  const auto get = FindInEngine<decltype(&::FwpmGetAppIdFromFileName0)>("FwpmGetAppIdFromFileName0");
  Check(get(app.c_str(), &identifier), "FwpmGetAppIdFromFileName0");
  return Own(identifier);
}

void AddBlock(HANDLE engine, const GUID& layer, FWP_BYTE_BLOB* identifier) {
  FWPM_FILTER_CONDITION0 condition{};
  condition.fieldKey = Catalog::kAleAppIdFieldKey;
  condition.conditionValue.type = FWP_BYTE_BLOB_TYPE;
  condition.conditionValue.byteBlob = identifier;
  std::wstring name = L"Block of another owner";
  FWPM_FILTER0 filter{};
  filter.displayData.name = name.data();
  filter.layerKey = layer;
  filter.action.type = FWP_ACTION_BLOCK;
  filter.numFilterConditions = 1;
  filter.filterCondition = &condition;
  const auto add = FindInEngine<decltype(&::FwpmFilterAdd0)>("FwpmFilterAdd0");
  Check(add(engine, &filter, nullptr, nullptr), "FwpmFilterAdd0");
}

}  // namespace

void AddForeignBlocks(const std::vector<std::wstring>& apps) {
  const auto pretendFileExists =
      FindInEngine<decltype(&EngineEmulatorPretendFileExists)>("EngineEmulatorPretendFileExists");
  const EngineHandle engine = OpenEngine();
  for (const std::wstring& app : apps) {
    pretendFileExists(app.c_str());
    const auto identifier = IdentifierOf(app);
    for (const GUID& layer : {Catalog::kAleAuthConnectV4LayerKey, Catalog::kAleAuthConnectV6LayerKey}) {
      AddBlock(engine.get(), layer, identifier.get());
    }
  }
}
