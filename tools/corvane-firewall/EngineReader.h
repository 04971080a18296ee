#pragma once

#include "Listing.h"

/// Reads our provider, its filters and their sublayers from the engine that this process is bound to,
/// the system's or the emulated one.
/// @throws Failure with the engine's code, or when the engine's client library lacks a function.
Listing ReadEngine();
