#include "api/ModuleState.h"

ModuleState& Module() {
  static ModuleState state;
  return state;
}

StoredIdentities& Identities() { return Module().identities; }

bool IsRegistered(const GUID& key) {
  const auto& firewall = Module().firewall;
  return firewall != nullptr && firewall->HasSublayer(key);
}
