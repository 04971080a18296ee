#pragma once

#include <string>
#include <vector>

/// Lets the emulated engine, which must be loaded, hold blocks of each application's outbound connections,
/// as Windows Firewall has them. The files need not exist.
/// @throws Failure with the engine's code.
void AddForeignBlocks(const std::vector<std::wstring>& apps);
