#pragma once

#include <vector>

#include "Json.h"
#include "SharedTexts.h"
#include "policy/Circumstances.h"
#include "policy/Lint.h"
#include "policy/Snapshot.h"

// What a page shows of an engine's objects. page/data.js reads it.

/// Owners, sublayers, conditions and filters, with all that a reader needs to decide about connections in
/// these circumstances. What many filters share stands once.
Json PageSnapshot(const Policy::Snapshot& snapshot, const Policy::Circumstances& circumstances,
                  SharedTexts& texts);

/// The findings about the filters of a snapshot: a group for each kind and reason.
Json PageFindings(const std::vector<Policy::Finding>& findings, const Policy::Snapshot& snapshot);
