#include "api/Commands.h"

#include "api/ModuleState.h"

std::uint64_t FailWith(const WfpFirewall::FirewallException& error) {
  Module().lastErrorText = error.what();
  return error.GetErrorCode();
}

std::uint64_t RemoveRuleSet(const GUID& key) {
  if (!IsRegistered(key)) {
    return 0;
  }
  try {
    Module().firewall->RemoveSublayer(key);
    return 0;
  } catch (const WfpFirewall::FirewallException& error) {
    return FailWith(error);
  }
}
