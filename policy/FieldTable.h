/**
 * @file
 * The values of one field, sorted by what a section's filters make of them.
 */
#pragma once

#include <optional>
#include <vector>

#include "policy/BitWords.h"
#include "policy/Connection.h"
#include "policy/State.h"
#include "policy/Test.h"
#include "policy/ValueClass.h"

namespace Policy {

/// The tests of one filter, or of one mark, on one field. They hold together if one holds. A mark is a
/// question about the connection itself: no assumption touches it.
struct TestGroup {
  std::size_t bit;
  bool isMark = false;
  bool isExcluded = false;  ///< of a mark: none of the tests may hold
  std::vector<const Test*> tests;
};

/// A field's classes: sets of values, each with its signature, the state of a connection as far as this field
/// decides. A connection's state is what the signatures of all its fields have in common.
class FieldTable {
 public:
  FieldTable(Field field, const StateLayout& layout, std::vector<TestGroup> groups);
  virtual ~FieldTable() = default;
  FieldTable(const FieldTable&) = delete;
  FieldTable& operator=(const FieldTable&) = delete;

  /// Whether tests of this kind make sense for a field. A test of flags does for the flags alone, which for
  /// their part have no order.
  static bool CanJudge(Field field, const Test& test);
  /// With each flag that is tested the patterns of flags double, so tests of many flags are too many.
  static bool CanJudge(Field field, const std::vector<const Test*>& tests);

  Field GetField() const { return field_; }
  const WordTable& Signatures() const { return signatures_; }

  /// The number of the signature of a connection's value.
  virtual std::size_t SignatureOf(const Connection& connection) const = 0;
  /// All values with one of some signatures, without a text.
  /// @param ordinary the value to give as an example, if it is among them.
  virtual ValueClass Collect(const std::vector<bool>& signatures, const Connection& ordinary) const = 0;

 protected:
  /// What a value makes of a group's tests.
  struct Standing {
    std::size_t positive = 0;  ///< tests that hold without negation
    std::size_t failing = 0;   ///< negations that do not hold
  };

  const StateLayout& Layout() const { return layout_; }
  const std::vector<TestGroup>& Groups() const { return groups_; }
  /// A signature in which only the filters without conditions on this field match.
  std::vector<BitWord> EmptySignature() const;
  /// Writes what a group makes of a value.
  /// @param plane none to write all planes.
  void Write(std::vector<BitWord>& signature, std::size_t group, Standing standing,
             std::optional<std::size_t> plane = std::nullopt) const;
  std::size_t Intern(const std::vector<BitWord>& signature) {
    return signatures_.Intern(signature.data()).index;
  }
  /// The signature of the field without a value.
  std::size_t InternUnset();

 private:
  struct Counts {
    std::size_t negations = 0;
    bool hasDoubt = false;
  };

  bool Holds(std::size_t group, Standing standing, const Plane& plane) const;
  bool HoldsUnset(std::size_t group, const Plane& plane) const;
  void WriteBits(std::vector<BitWord>& signature, std::size_t group, std::size_t plane, bool holds) const;

  Field field_;
  const StateLayout& layout_;
  std::vector<TestGroup> groups_;
  std::vector<Counts> counts_;
  WordTable signatures_;
};

}  // namespace Policy
