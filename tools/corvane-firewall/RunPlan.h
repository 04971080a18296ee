#pragma once

#include "CommandLine.h"

/// Runs the steps in order and stops at the first that fails. Then keeps what was installed for as long as
/// the plan says.
/// @returns the program's exit code: 0, 1 when something failed, or 2 when the dump or the calibration to
/// read is none.
int RunPlan(const Plan& plan);

/// Reports a command line that is not valid.
/// @returns the program's exit code: 2.
int RefuseCommandLine(const UsageError& error, bool asJson);
