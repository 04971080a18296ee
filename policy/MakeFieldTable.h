/**
 * @file
 * The choice of a field's table.
 */
#pragma once

#include <memory>
#include <vector>

#include "policy/FieldTable.h"

namespace Policy {

/// The table that fits a field. It takes tests that it can judge, and unreadable ones.
/// @param layout must outlive the table.
std::unique_ptr<FieldTable> MakeFieldTable(Field field, IpVersion ipVersion, const StateLayout& layout,
                                           std::vector<TestGroup> groups);

}  // namespace Policy
