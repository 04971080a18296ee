#pragma once

#include <cstddef>

#include "policy/Snapshot.h"

/// Filters in the shape of those of a live machine, the same for each call: most of them rules of
/// applications in Windows Firewall's sublayer, for both directions and IP versions, with blocks above
/// permits and a block of everything below, some with a condition that cannot be judged; then exceptions by
/// flags, and blocks and hard permits of another product.
/// @param count how many, about.
Policy::Snapshot LiveFilters(std::size_t count);

/// What several machines' dumps hold, as one engine.
/// @param paths the files, with colons between.
/// @throws Dump::DumpError if one is no dump.
Policy::Snapshot MergedDumps(const char* paths);
