#include "api/Commands.h"

#include "api/ModuleState.h"

std::uint64_t FailWith(const WfpFirewall::FirewallException& error) {
  Module().lastErrorText = error.what();
  return error.GetErrorCode();
}
