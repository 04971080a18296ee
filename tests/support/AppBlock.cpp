#include "support/AppBlock.h"

#include <gtest/gtest.h>

#include "emulator/Control.h"

namespace {

constexpr GUID kConnectV4{0xc38d57d1, 0x05a7, 0x4c33, {0x90, 0x4f, 0x7f, 0xbc, 0xee, 0xe6, 0x0e, 0x82}};
constexpr GUID kAppId{0xd78e1e87, 0x8644, 0x4ea5, {0x94, 0x37, 0xd8, 0x09, 0xec, 0xef, 0xc9, 0x71}};
constexpr GUID kRemotePort{0xc35a604d, 0xd22b, 0x4e1a, {0x91, 0xb4, 0x68, 0xf6, 0x74, 0xee, 0x67, 0x4b}};

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
