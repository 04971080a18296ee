/**
 * @file
 * The engine's functions that experiments take.
 */
#pragma once

#include <WfpPlatform.h>

#include <stdexcept>
#include <string>

#include "policy/EngineCalls.h"

namespace Calibrate {

/// The functions of one engine, the system's or an emulated one. A program that binds to the engine at run
/// time looks them up by their names, which are the members' names; others use LinkedEngine.
struct EngineCalls {
  Policy::EngineCalls reading;
  decltype(&::FwpmTransactionCommit0) FwpmTransactionCommit0;
  decltype(&::FwpmProviderAdd0) FwpmProviderAdd0;
  decltype(&::FwpmSubLayerAdd0) FwpmSubLayerAdd0;
  decltype(&::FwpmFilterAdd0) FwpmFilterAdd0;
  decltype(&::FwpmFilterDeleteById0) FwpmFilterDeleteById0;
};

/// The engine that the program is linked with. Inline, so that only who calls it needs that engine.
inline EngineCalls LinkedEngine() {
  return {Policy::LinkedEngine(), &::FwpmTransactionCommit0, &::FwpmProviderAdd0,
          &::FwpmSubLayerAdd0,    &::FwpmFilterAdd0,         &::FwpmFilterDeleteById0};
}

/// A call to an engine that failed.
class EngineError : public std::runtime_error {
 public:
  /// @param function such as "FwpmEngineOpen0".
  EngineError(DWORD code, const std::string& function);
  [[nodiscard]] DWORD Code() const { return code_; }

 private:
  DWORD code_;
};

}  // namespace Calibrate
