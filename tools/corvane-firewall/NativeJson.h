#pragma once

#include <WfpPlatform.h>

#include "Json.h"

// The engine's values for machines; docs/json.md has a table by type. Null where a pointer is null.
Json ToJson(const FWP_VALUE0& value);
Json ToJson(const FWP_CONDITION_VALUE0& value);
