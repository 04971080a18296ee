#pragma once

#include <cstdint>

#include "engine/FirewallException.h"

/// The common end of a failed command: keeps the text for GetErrorText and gives the command's result.
std::uint64_t FailWith(const WfpFirewall::FirewallException& error);
