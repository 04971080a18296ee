#pragma once

#include <string>
#include <vector>

#include "DumpedPolicy.h"
#include "replay/ReadEngine.h"

/// Reads all objects that this user may see, from the engine whose client library is loaded in this process.
/// Changes nothing.
/// @throws Failure with the engine's code, or when the engine's client library lacks a function.
Replay::EngineContents ReadEngineObjects();

/// Puts what a dump holds into the emulated engine that is loaded in this process, before anything else is
/// added. It then counts as one of the dump's version of Windows.
/// @return what the user should know of it, a line each.
/// @throws Failure if the emulator lacks a function, Replay::EngineError if it cannot be filled.
std::vector<std::string> FillEmulatedEngine(const DumpedPolicy& dump);
