/**
 * @file
 * Questions about connections that come from no filter.
 */
#pragma once

#include <vector>

#include "policy/Connection.h"
#include "policy/Test.h"

namespace Policy {

/// A question about connections that does not come from a filter, such as "is this a name look-up?". A
/// connection bears the mark if every field passes its tests.
struct Mark {
  struct FieldTests {
    Field field;
    std::vector<Test> tests;  ///< one that holds is enough
    bool isExcluded = false;  ///< instead, none of the tests may hold
  };
  std::vector<FieldTests> fields;
};

}  // namespace Policy
