#pragma once

#include <WfpPlatform.h>

#include <cstdint>

#include "engine/FirewallException.h"

/// The common end of a failed command: keeps the text for GetErrorText. @return the command's result.
std::uint64_t FailWith(const WfpFirewall::FirewallException& error);

/// The whole of a command that only removes a rule set. @return 0, also when the rule set is not registered;
/// or the code of the failure, after which it stays registered.
std::uint64_t RemoveRuleSet(const GUID& key);
