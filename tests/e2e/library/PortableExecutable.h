#pragma once

#include <WfpPlatform.h>

#include <string>
#include <vector>

/// The names that a loaded module exports, in the order of its table.
std::vector<std::string> ExportedNames(HMODULE module);

/// The file names of the modules that a loaded module imports from, in lower case.
std::vector<std::string> ImportedModules(HMODULE module);
