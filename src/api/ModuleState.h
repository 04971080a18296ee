#pragma once

#include <memory>
#include <string>

#include "api/RuleSetIdentity.h"
#include "engine/Firewall.h"

/// What the exported functions share for the life of the process. Nothing guards it: hosts serialise
/// their calls.
struct ModuleState {
  StoredIdentities identities;
  std::shared_ptr<WfpFirewall::Firewall> firewall;  // null until Initialize
  std::string lastErrorText;
};

ModuleState& Module();

/// Whether a rule set of that key is switched on. The registry answers, not the engine; before
/// Initialize nothing is.
bool IsRegistered(const GUID& key);
