#include "ForeignBlocks.h"

#include "EngineClient.h"
#include "Failure.h"
#include "PolicyReader.h"
#include "Text.h"
#include "catalog/Keys.h"
#include "replay/Session.h"

namespace {

void AddBlock(const Replay::EngineCalls& engine, HANDLE session, const GUID& layer, std::string& identifier) {
  FWP_BYTE_BLOB blob{static_cast<UINT32>(identifier.size()), reinterpret_cast<UINT8*>(identifier.data())};
  FWPM_FILTER_CONDITION0 condition{};
  condition.fieldKey = Catalog::kAleAppIdFieldKey;
  condition.conditionValue.type = FWP_BYTE_BLOB_TYPE;
  condition.conditionValue.byteBlob = &blob;
  std::wstring name = L"Block of another owner";
  FWPM_FILTER0 filter{};
  filter.displayData.name = name.data();
  filter.layerKey = layer;
  filter.action.type = FWP_ACTION_BLOCK;
  filter.numFilterConditions = 1;
  filter.filterCondition = &condition;
  Replay::Check(engine.FwpmFilterAdd0(session, &filter, nullptr, nullptr), "FwpmFilterAdd0");
}

}  // namespace

void AddForeignBlocks(const std::vector<std::string>& apps) {
  const Replay::EngineCalls engine = FindObjectCalls();
  const EmulatorControl emulator = FindEmulatorControl();
  try {
    Replay::Session session(engine, 0);
    for (const std::string& app : apps) {
      emulator.pretendFileExists(ToWide(app).c_str());
      std::string identifier = ReadApplicationId(app);
      for (const GUID& layer : {Catalog::kAleAuthConnectV4LayerKey, Catalog::kAleAuthConnectV6LayerKey}) {
        AddBlock(engine, session.Handle(), layer, identifier);
      }
    }
    session.Commit();
  } catch (const Replay::EngineError& error) {
    throw Failure(error.Code(), "The blocks of another owner cannot be added: " + std::string(error.what()));
  }
}
