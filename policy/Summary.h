/**
 * @file
 * An explanation for people: the verdict, who brings it about, and what could still change it.
 */
#pragma once

#include <map>
#include <string>

#include "policy/Decide.h"
#include "policy/Owners.h"

namespace Policy {

/// "blocked by filter 12 \"Name\" of Windows Firewall", "permitted: no filter matches"
std::string EndingText(const Ending& ending, const Owners& owners);

/// What settles an open question, by its name: {"profile", "give --profile"}.
using Settlers = std::map<std::string, std::string>;

/// A few lines: the connection, its verdict in one sentence with the deciding filter and its owner; then only
/// filters that could still change it, grouped by what would settle them; then filters that miss it by one
/// field.
std::string Summarize(const Explanation& explanation, const Owners& owners, const Labels& labels = {},
                      const Settlers& settlers = {});

}  // namespace Policy
