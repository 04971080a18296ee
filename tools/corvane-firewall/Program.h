#pragma once

#include <string>
#include <vector>

/// All that the program does, with its arguments in UTF-8, less the program's name.
/// @returns the program's exit code.
int RunProgram(const std::vector<std::string>& arguments);
