/**
 * @file
 * Values of a field that behave alike.
 */
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "policy/Connection.h"

namespace Policy {

/// Values of a field that behave alike: wherever the rest of the connection is the same, so is the verdict.
struct ValueClass {
  /// Words of flags that agree in some bits: under `mask` they are `value`. The words of `except` are left
  /// out, because a condition names them and so they have their own classes.
  struct Masked {
    UINT32 mask;
    UINT32 value;
    std::vector<UINT32> except;  ///< ascending
    bool operator==(const Masked&) const = default;
  };

  bool unset = false;                     ///< the field without a value is among them
  std::vector<Interval> intervals;        ///< the numbers among them, ascending, with gaps between
  std::vector<Masked> masked;             ///< of flags
  std::vector<std::string> applications;  ///< the ids that conditions name
  std::vector<std::string> endings;       ///< of ids, unless a longer ending or a name fits them
  bool others = false;                    ///< all ids that neither a name nor an ending fits

  /// One of the values, that of an ordinary connection if possible. Both are empty if `unset` is all there
  /// is.
  std::optional<Number> exampleNumber;
  std::optional<std::string> exampleApplication;

  std::string text;  ///< "10.0.0.0/8, 172.16.0.0/12", "other than 53", "unset"
};

/// A field that makes a difference, with the classes that its values fall into.
struct FieldClasses {
  Field field;
  std::vector<ValueClass> classes;
};

/// All values of some classes of one field; example and text are left empty.
ValueClass Together(std::span<const ValueClass* const> classes);

/// The class that a connection's value of the field is in.
std::size_t ClassOf(const FieldClasses& field, const Connection& connection);

}  // namespace Policy
