#pragma once

#include <nlohmann/json.hpp>
#include <string>

/// The errors that the schema in docs/json finds in a document of the tool, one in each line; empty if none.
std::string FaultsOf(const nlohmann::json& document);
/// The same of a line that the step watch has written.
std::string FaultsOfWatched(const nlohmann::json& line);
