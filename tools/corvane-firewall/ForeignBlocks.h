#pragma once

#include <string>
#include <vector>

/// Adds filters to the emulated engine, which must be loaded, that block all outbound connections of each
/// application, as Windows Firewall does. The files need not exist.
/// @throws Failure with the engine's code.
void AddForeignBlocks(const std::vector<std::wstring>& apps);
