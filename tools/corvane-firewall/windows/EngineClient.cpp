#include "EngineClient.h"

#include "windows/LoadedModule.h"

namespace {

template <class Function>
void Find(Function& found, const char* function) {
  found = FindFunction<Function>(GetModuleHandleW(L"fwpuclnt.dll"), function);
}

/// Leaves it null if there is none.
template <class Function>
void FindIfThere(Function& found, const char* function) {
  const FARPROC address = GetProcAddress(GetModuleHandleW(L"fwpuclnt.dll"), function);
  found = reinterpret_cast<Function>(reinterpret_cast<void*>(address));
}

}  // namespace

Policy::EngineCalls FindPolicyCalls() {
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

Replay::EngineCalls FindObjectCalls() {
  return Replay::FindEngineCalls([](auto& function, const char* name) { Find(function, name); });
}

Watch::EventCalls FindEventCalls() {
  return Watch::FindEventCalls([](auto& function, const char* name) { Find(function, name); },
                               [](auto& function, const char* name) { FindIfThere(function, name); });
}

Calibrate::EngineCalls FindExperimentCalls() {
  Calibrate::EngineCalls calls{};
  calls.reading = FindPolicyCalls();
  Find(calls.FwpmTransactionCommit0, "FwpmTransactionCommit0");
  Find(calls.FwpmProviderAdd0, "FwpmProviderAdd0");
  Find(calls.FwpmSubLayerAdd0, "FwpmSubLayerAdd0");
  Find(calls.FwpmFilterAdd0, "FwpmFilterAdd0");
  Find(calls.FwpmFilterDeleteById0, "FwpmFilterDeleteById0");
  return calls;
}

ApplicationCalls FindApplicationCalls() {
  ApplicationCalls calls{};
  Find(calls.FwpmGetAppIdFromFileName0, "FwpmGetAppIdFromFileName0");
  Find(calls.FwpmFreeMemory0, "FwpmFreeMemory0");
  return calls;
}

EmulatorControl FindEmulatorControl() {
  EmulatorControl control{};
  Find(control.setRule, "EngineEmulatorSetRule");
  Find(control.lastRefusal, "EngineEmulatorLastRefusal");
  Find(control.pretendFileExists, "EngineEmulatorPretendFileExists");
  return control;
}
