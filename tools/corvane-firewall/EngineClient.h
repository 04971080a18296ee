#pragma once

#include <WfpPlatform.h>

#include <memory>

#include "LoadedModule.h"

/// A function of the engine's client library that is loaded in this process. If the program imported that
/// library, the loader would bind it to the system's before the emulator can be loaded. So every function is
/// looked up when it is needed.
template <class Function>
Function FindInEngine(const char* function) {
  return FindFunction<Function>(GetModuleHandleW(L"fwpuclnt.dll"), function);
}

struct FreeEngineMemory {
  decltype(&::FwpmFreeMemory0) free;
  void operator()(void* memory) const { free(&memory); }
};

/// Owns memory that the engine handed out.
template <class Memory>
std::unique_ptr<Memory, FreeEngineMemory> Own(Memory* memory) {
  return {memory, FreeEngineMemory{FindInEngine<decltype(&::FwpmFreeMemory0)>("FwpmFreeMemory0")}};
}
