// What the engine's interface offers without a session.
#include "emulator/ApplicationId.h"
#include "emulator/EntryPoint.h"
#include "emulator/Utf8.h"

using namespace EngineEmulator;

extern "C" {

void WINAPI FwpmFreeMemory0(void** p) {
  if (p == nullptr) {
    return;
  }
  const LockedEngine locked = LockEngine();
  const bool known = *p == nullptr || locked.engine.memory.Free(*p);
  locked.engine.Record({"FwpmFreeMemory0", known ? "" : "not a block of the engine", ERROR_SUCCESS});
  *p = nullptr;
}

DWORD WINAPI FwpmGetAppIdFromFileName0(const wchar_t* fileName, FWP_BYTE_BLOB** appId) {
  return Answer(
      "FwpmGetAppIdFromFileName0", fileName == nullptr ? "null" : Utf8(fileName),
      [&](Engine& engine) -> DWORD {
        if (fileName == nullptr || appId == nullptr) {
          return kNullPointer;
        }
        if (const DWORD fault = CheckFile(fileName, engine.pretendedFiles); fault != ERROR_SUCCESS) {
          return fault;
        }
        std::vector<UINT8> bytes = ApplicationIdOf(fileName);
        const FWP_BYTE_BLOB blob{static_cast<UINT32>(bytes.size()), bytes.data()};
        *appId = engine.memory.HandOut("FwpmGetAppIdFromFileName0",
                                       MakeBlock([&](Packer& packer) { return PackRecord(packer, blob); }));
        return ERROR_SUCCESS;
      });
}

}  // extern "C"
