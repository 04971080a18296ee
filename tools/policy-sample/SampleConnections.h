#pragma once

#include <cstddef>
#include <vector>

#include "policy/Connection.h"
#include "policy/Snapshot.h"

/// Connections that a machine might see, the same ones in each run: half of them outbound, a third of IPv6,
/// most to or from usual ports, of applications that filters name and of others.
/// @param snapshot that the applications are taken from.
std::vector<Policy::Connection> SampleConnections(const Policy::Snapshot& snapshot, std::size_t count);
