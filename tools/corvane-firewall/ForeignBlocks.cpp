#include "ForeignBlocks.h"

#include <WfpPlatform.h>

#include <algorithm>

#include "EngineClient.h"
#include "catalog/Fields.h"
#include "catalog/Layers.h"
#include "emulator/ControlExports.h"

namespace {

using Catalog::AllLayers;
using Catalog::Field;
using Catalog::kFields;
using Catalog::Layer;

auto IdentifierOf(const std::wstring& app) {
  FWP_BYTE_BLOB* identifier = nullptr;
  const auto get = FindInEngine<decltype(&::FwpmGetAppIdFromFileName0)>("FwpmGetAppIdFromFileName0");
  CheckEngine(get(app.c_str(), &identifier), "FwpmGetAppIdFromFileName0");
  return Own(identifier);
}

void AddBlock(HANDLE engine, const char* layer, FWP_BYTE_BLOB* identifier) {
  FWPM_FILTER_CONDITION0 condition{};
  condition.fieldKey = std::ranges::find(kFields, "ALE_APP_ID", &Field::name)->key;
  condition.conditionValue.type = FWP_BYTE_BLOB_TYPE;
  condition.conditionValue.byteBlob = identifier;
  std::wstring name = L"Block of another owner";
  FWPM_FILTER0 filter{};
  filter.displayData.name = name.data();
  filter.layerKey = std::ranges::find(AllLayers(), layer, &Layer::name)->key;
  filter.action.type = FWP_ACTION_BLOCK;
  filter.numFilterConditions = 1;
  filter.filterCondition = &condition;
  const auto add = FindInEngine<decltype(&::FwpmFilterAdd0)>("FwpmFilterAdd0");
  CheckEngine(add(engine, &filter, nullptr, nullptr), "FwpmFilterAdd0");
}

}  // namespace

void AddForeignBlocks(const std::vector<std::wstring>& apps) {
  const auto pretendFileExists =
      FindInEngine<decltype(&EngineEmulatorPretendFileExists)>("EngineEmulatorPretendFileExists");
  const EngineHandle engine = OpenEngine();
  for (const std::wstring& app : apps) {
    pretendFileExists(app.c_str());
    const auto identifier = IdentifierOf(app);
    for (const char* layer : {"ALE_AUTH_CONNECT_V4", "ALE_AUTH_CONNECT_V6"}) {
      AddBlock(engine.get(), layer, identifier.get());
    }
  }
}
