/**
 * @file
 * What the tool has added to an engine, as lines that two engines can be compared by.
 */
#pragma once

#include <string>
#include <vector>

#include "dump/EngineState.h"

/// One line for the tool's provider, each sublayer of its rule sets and each filter of its provider, in
/// alphabetical order. Filters are
/// told without ids and keys, which the engine makes up, and applications without the volume's number, which
/// the emulator does not know.
std::vector<std::string> OurObjectsOf(const Dump::EngineState& state);
