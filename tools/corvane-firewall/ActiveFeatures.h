#pragma once

#include <cstddef>

#include "CommandLine.h"
#include "policy/Snapshot.h"
#include "promises/Features.h"

/// The features that the first `count` steps of a plan leave switched on, with their arguments. The filters
/// are asked only for what the library itself finds in the engine: the applications that others block.
/// @throws Failure when an application or the adapters can no longer be looked up.
Promises::Features ActiveFeatures(const Plan& plan, std::size_t count, const Policy::Snapshot& snapshot);
