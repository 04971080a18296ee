#pragma once

#include "Json.h"
#include "policy/Value.h"

/// A value of the engine as JSON; docs/json.md has a table by type.
Json ToJson(const Policy::Value& value);
