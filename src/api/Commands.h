#pragma once

#include <WfpPlatform.h>

#include <cstdint>

#include "engine/FirewallException.h"

/// The common end of a failed command: keeps the text for GetErrorText and gives the command's result.
std::uint64_t FailWith(const WfpFirewall::FirewallException& error);

/// The whole of a command that does nothing but remove a rule set: 0, also when it is not registered, or the
/// code of the failure, after which it stays so.
std::uint64_t RemoveRuleSet(const GUID& key);
