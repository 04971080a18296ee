#pragma once

#include "Listing.h"

/// Whose filters and sublayers are read: ours, those that hold nothing too, or everybody's.
enum class Owners { Ours, All };

/// Reads our provider, filters and sublayers from the engine that this process is bound to, the system's or
/// the emulated one.
/// @throws Failure with the engine's code, or when the engine's client library lacks a function.
Listing ReadEngine(Owners owners);
