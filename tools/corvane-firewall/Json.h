#pragma once

#include <nlohmann/json.hpp>

/// JSON whose members keep the order in which they were added.
using Json = nlohmann::ordered_json;
