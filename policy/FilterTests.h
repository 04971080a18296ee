/**
 * @file
 * What the conditions of a filter ask, field by field.
 */
#pragma once

#include <deque>
#include <map>
#include <vector>

#include "policy/Circumstances.h"
#include "policy/Connection.h"
#include "policy/Snapshot.h"

namespace Policy {

/// What a filter's conditions ask. It matches where every field passes.
struct FilterTests {
  /// Of fields that connections have: one test that holds is enough.
  std::map<Field, std::vector<const Test*>> ofConnections;
  /// Of the circumstances, and of what the model does not have: the conditions on each field.
  std::vector<std::vector<const Condition*>> ofCircumstances;
};

/// Whether conditions on a field do not count, because the filter lets an interface out of a quarantine that
/// is over for whatever interface the connection has.
bool IsOfQuarantineThatIsOver(const Filter& filter, Field field, const Circumstances& circumstances);

/// @param filter must outlive the result.
/// @param derived gets the tests that no condition has itself, and must outlive the result as well.
FilterTests TestsOf(const Filter& filter, Direction direction, IpVersion ipVersion,
                    const Circumstances& circumstances, std::deque<Test>& derived);

}  // namespace Policy
