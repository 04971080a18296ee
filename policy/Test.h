/**
 * @file
 * What a condition asks of a value.
 */
#pragma once

#include <string>
#include <string_view>

#include "policy/Number.h"

namespace Policy {

/// What a condition asks of a value.
struct Test {
  enum class Kind {
    Unreadable,  ///< only the engine can tell, if at all: perhaps it holds
    Unset,       ///< there is no value
    InInterval,  ///< a number from interval.first to interval.last
    AllSet,      ///< every bit of interval.first
    AnySet,      ///< some bit of interval.first
    NoneSet,     ///< no bit of interval.first
    IsBytes,     ///< data equal to `bytes`
    EndsWith,    ///< data that end with `bytes`; terminators do not count
  };

  Kind kind = Kind::Unreadable;
  bool negated = false;
  Interval interval;
  std::string bytes;

  /// Whether single flags of a word are tested.
  [[nodiscard]] bool TestsFlags() const;

  bool operator==(const Test&) const = default;
};

/// The bytes of a string in UTF-16, less its terminator.
std::string_view Unterminated(std::string_view bytes);
/// Whether the id of an application has this ending; terminators do not count.
bool IdEndsWith(std::string_view id, std::string_view ending);

}  // namespace Policy
