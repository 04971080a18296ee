#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "ToolRun.h"

using ParsedJson = nlohmann::json;

/// Runs the tool on the emulated engine.
ToolRun RunEmulated(std::vector<std::wstring> arguments);

/// A text with "filter #" in place of each filter's id.
std::string WithoutIds(const std::string& text);

/// The document that a run with --json has written, checked with the schema in docs/json.
ParsedJson DocumentOf(const ToolRun& run);

/// Runs the tool with --json, expects success, and gives the last step of the document.
ParsedJson LastStep(std::vector<std::wstring> arguments);
