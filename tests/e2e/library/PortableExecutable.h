#pragma once

#include <WfpPlatform.h>

#include <string>
#include <vector>

/// The names that a loaded module exports, in the order of its table.
std::vector<std::string> ExportedNames(HMODULE module);

/// The file names of the modules that a loaded module imports from, in lower case.
std::vector<std::string> ImportedModules(HMODULE module);

/// The flags of a loaded module that tell the loader how to protect it: IMAGE_DLLCHARACTERISTICS_*.
WORD HardeningFlags(HMODULE module);

/// Whether a module has relocations. Without them the loader cannot give it the random address that its flags
/// ask for.
bool CanBeMoved(HMODULE module);

/// The names of the sections of a loaded module that are both writable and executable.
std::vector<std::string> WritableExecutableSections(HMODULE module);
