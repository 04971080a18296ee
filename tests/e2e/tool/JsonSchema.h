#pragma once

#include <nlohmann/json.hpp>
#include <string>

/// What the schema in docs/json has against a document of the tool's, a line each; empty if nothing.
std::string FaultsOf(const nlohmann::json& document);
