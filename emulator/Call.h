/**
 * @file
 * What the journal holds.
 */
#pragma once

#include <WfpPlatform.h>

#include <string>

namespace EngineEmulator {

/// One call that a client made.
struct Call {
  std::string function;   ///< "FwpmFilterAdd0"
  std::string arguments;  ///< in words, without handles
  DWORD result;
};

}  // namespace EngineEmulator
