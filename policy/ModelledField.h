/**
 * @file
 * Which conditions test a field that connections have here.
 */
#pragma once

#include <optional>

#include "policy/Connection.h"
#include "policy/Snapshot.h"

namespace Policy {

/// The field of connections that a field of the engine is; none if connections do not have it.
std::optional<Field> ModelledField(const Catalog::Field& field);
/// The same for what a condition tests.
std::optional<Field> ModelledField(const Condition& condition);

}  // namespace Policy
