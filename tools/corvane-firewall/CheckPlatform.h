#pragma once

#include "CommandLine.h"

/// @throws UsageError for what the program cannot do on this system: off Windows there are neither the
/// system's
///   engine nor the library.
void CheckPlatform(const Plan& plan);
