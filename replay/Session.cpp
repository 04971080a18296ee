#include "replay/Session.h"

#include "catalog/Names.h"

namespace Replay {
namespace {

HANDLE Open(const EngineCalls& engine) {
  HANDLE session = nullptr;
  Check(engine.FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &session), "FwpmEngineOpen0");
  return session;
}

}  // namespace

EngineError::EngineError(DWORD code, const std::string& function)
    : std::runtime_error(function + " failed: " + Catalog::ErrorName(code)), code_(code) {}

void Check(DWORD result, const std::string& function) {
  if (result != ERROR_SUCCESS) {
    throw EngineError(result, function);
  }
}

Session::Session(const EngineCalls& engine, UINT32 flags)
    : engine_(engine),
      handle_(Open(engine), engine.FwpmEngineClose0),
      transaction_(nullptr, engine.FwpmTransactionAbort0) {
  Check(engine.FwpmTransactionBegin0(Handle(), flags), "FwpmTransactionBegin0");
  transaction_.reset(Handle());
}

void Session::Commit() {
  Check(engine_.FwpmTransactionCommit0(Handle()), "FwpmTransactionCommit0");
  static_cast<void>(transaction_.release());
}

}  // namespace Replay
