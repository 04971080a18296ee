/**
 * @file
 * What conditions on fields that are the same for many connections make of a filter.
 */
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "policy/Circumstances.h"
#include "policy/Connection.h"
#include "policy/Snapshot.h"

namespace Policy {

/// What is known of such conditions, the same for all connections of one direction.
enum class Certainty {
  Holds,
  InDoubt,  ///< only the engine can tell
  Fails,
};

/// The certainty of a filter's conditions on one such field.
Certainty CertaintyOf(const std::vector<const Condition*>& conditions, Direction direction,
                      const Circumstances& circumstances);

/// What of the circumstances decides conditions on a field: "user", "profile"; empty for a field that has no
/// place there.
std::string_view DecidedBy(const Catalog::Field& field);

/// Whether connections or their circumstances decide conditions on a field.
bool HasPlace(const Catalog::Field& field);

/// The names of the fields at the layers of connections that the model does not have: conditions on them are
/// always in doubt.
std::span<const std::string_view> FieldsNotModelled();

}  // namespace Policy
