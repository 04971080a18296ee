/**
 * @file
 * Conditions on fields that follow from other fields of a connection.
 */
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "policy/Connection.h"
#include "policy/Snapshot.h"

namespace Policy {

/// What a condition on one field asks of another. One test that holds is enough.
struct DerivedTests {
  Field field;
  std::vector<Test> tests;
};

/// The type of an interface follows from its LUID, the kind of an address from the address, and the original
/// ICMP type, where a filter is about ICMP, is the type. An IPv4 address is taken for a broadcast only if it
/// is 255.255.255.255, because networks are not known. None for conditions on other fields.
std::optional<DerivedTests> Derive(const Condition& condition, const Filter& filter, Direction direction,
                                   IpVersion ipVersion);

/// Whether there are such conditions on a field.
bool IsDerived(const Catalog::Field& field);

/// What a filter asks of one field by conditions on several: tests of which one holds where of each group one
/// does. They are unreadable where that cannot be told.
std::vector<Test> HoldTogether(std::span<const std::vector<const Test*>> groups);

}  // namespace Policy
