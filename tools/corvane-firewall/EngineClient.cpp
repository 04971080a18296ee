#include "EngineClient.h"

#include <string>

#include "Failure.h"

void CheckEngine(DWORD result, const char* function) {
  if (result != ERROR_SUCCESS) {
    throw Failure(result, std::string(function) + " failed");
  }
}

EngineHandle OpenEngine() {
  EngineHandle session(nullptr, FindInEngine<decltype(&::FwpmEngineClose0)>("FwpmEngineClose0"));
  HANDLE opened = nullptr;
  const auto open = FindInEngine<decltype(&::FwpmEngineOpen0)>("FwpmEngineOpen0");
  CheckEngine(open(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &opened), "FwpmEngineOpen0");
  session.reset(opened);
  return session;
}
