#pragma once

#include "CommandLine.h"

/// Runs the steps in order and stops at the first that fails. Holds what was installed as the plan says.
/// @returns the program's exit code: 0, or 1 when something failed.
int RunPlan(const Plan& plan);

/// Reports a command line that makes no sense.
/// @returns the program's exit code: 2.
int RefuseCommandLine(const UsageError& error, bool asJson);
