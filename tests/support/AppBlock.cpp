#include "support/AppBlock.h"

#include <gtest/gtest.h>

#include "emulator/Control.h"
#include "support/EngineKeys.h"

namespace {

wchar_t blockName[] = L"Block of another owner";

}  // namespace

AppBlock::AppBlock(const std::wstring& path) {
  EngineEmulator::PretendFileExists(path);
  conditions[0].fieldKey = kAppId;
  conditions[0].conditionValue.type = FWP_BYTE_BLOB_TYPE;
  EXPECT_EQ(FwpmGetAppIdFromFileName0(path.c_str(), &conditions[0].conditionValue.byteBlob), ERROR_SUCCESS);
  conditions[1].fieldKey = kRemotePort;
  conditions[1].conditionValue.type = FWP_UINT16;
  conditions[1].conditionValue.uint16 = 53;
  filter.displayData.name = blockName;
  filter.layerKey = kConnectV4;
  filter.action.type = FWP_ACTION_BLOCK;
  filter.numFilterConditions = 1;
  filter.filterCondition = conditions.data();
}

AppBlock::~AppBlock() {
  void* blob = conditions[0].conditionValue.byteBlob;
  FwpmFreeMemory0(&blob);
}

UINT64 AppBlock::Add() {
  HANDLE engine = nullptr;
  UINT64 id = 0;
  EXPECT_EQ(FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &engine), ERROR_SUCCESS);
  EXPECT_EQ(FwpmFilterAdd0(engine, &filter, nullptr, &id), ERROR_SUCCESS) << EngineEmulator::LastRefusal();
  FwpmEngineClose0(engine);
  return id;
}
