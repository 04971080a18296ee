#pragma once

#include "Json.h"
#include "SharedTexts.h"
#include "policy/Map.h"

/// A map as page/data.js reads it. A node is a list of numbers: its field, the target of most classes, then
/// class and target of each other. A target below zero is a verdict: -1 the first, -2 the second.
Json PageMap(const Policy::Map& map, SharedTexts& texts);
