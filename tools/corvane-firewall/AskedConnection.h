#pragma once

#include <optional>
#include <string>

#include "AskedCircumstances.h"
#include "Step.h"
#include "policy/Connection.h"

/// Only the machine of a dump knows the names of its adapters and the volumes of its files.
/// @throws Failure when an option of the step explain names an adapter, or an application by its path.
void CheckAskedOfDump(const StepOptions& options);

/// The connection that the options of the step explain describe.
/// @param remote one of the values of --remote.
/// @throws Failure when the options contradict each other, or name an adapter or a file that does not exist.
Policy::Connection AskedConnection(const std::string& remote, const StepOptions& options,
                                   const AskedCircumstances& asked);

/// The other end of an outbound loopback connection, which the engine judges as well: the same program
/// accepts what it opens. Empty for other connections.
std::optional<Policy::Connection> AcceptingEnd(const Policy::Connection& connection);
