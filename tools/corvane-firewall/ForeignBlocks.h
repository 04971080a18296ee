#pragma once

#include <string>
#include <vector>

/// Adds filters to the emulated engine that block all outbound connections of each application, as Windows
/// Firewall does.
/// @param apps paths, whose files need not exist, or ids.
/// @throws Failure with the engine's code.
void AddForeignBlocks(const std::vector<std::string>& apps);
