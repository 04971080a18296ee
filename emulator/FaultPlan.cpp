#include "emulator/FaultPlan.h"

#include <utility>

namespace EngineEmulator {

void FaultPlan::Add(std::string function, std::size_t nth, DWORD code) {
  faults_.push_back({std::move(function), nth, code});
}

std::optional<DWORD> FaultPlan::Count(std::string_view function) {
  std::optional<DWORD> code;
  for (Fault& fault : faults_) {
    const bool matches = fault.function.empty() || fault.function == function;
    if (matches && --fault.callsLeft == 0) {
      code = code.value_or(fault.code);
    }
  }
  std::erase_if(faults_, [](const Fault& fault) { return fault.callsLeft == 0; });
  return code;
}

}  // namespace EngineEmulator
