#include "engine/Engine.h"

#include "engine/FirewallException.h"

namespace WfpFirewall {

std::shared_ptr<void> Engine::OpenEngine() {
  FWPM_SESSION0 session{};
  session.flags = FWPM_SESSION_FLAG_DYNAMIC;
  HANDLE handle = nullptr;
  const DWORD result = FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, &session, &handle);
  if (result != ERROR_SUCCESS) {
    throw FirewallException("Error opening engine.", result);
  }
  return {handle, [](HANDLE engine) { FwpmEngineClose0(engine); }};
}

}  // namespace WfpFirewall
