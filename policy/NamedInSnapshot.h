/**
 * @file
 * Who and what the filters of a snapshot name.
 */
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "policy/Sid.h"
#include "policy/Snapshot.h"

namespace Policy {

/// The account of a person that conditions name, if they name one alone: on a dump of a machine with one user
/// it is that user's.
std::optional<Sid> OnlyAccount(const Snapshot& snapshot);

/// The id of the application that conditions name and that ends so, if they name one alone.
/// @param ending in UTF-8 and small letters: "\\windows\\system32\\svchost.exe".
std::optional<std::string> OnlyApplication(std::string_view ending, const Snapshot& snapshot);

}  // namespace Policy
