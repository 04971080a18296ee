#pragma once

#include <string>

#include "Step.h"
#include "policy/Connection.h"

/// The connection that the options of the step explain describe.
/// @param remote one of the values of --remote.
/// @throws Failure when the options contradict each other, or name an adapter or a file that does not exist.
Policy::Connection AskedConnection(const std::string& remote, const StepOptions& options);
