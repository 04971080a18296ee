#pragma once

#include <string>

/// Writes a file, over one that is there.
/// @param path in UTF-8.
/// @throws Failure
void WriteFile(const std::string& path, const std::string& text);
