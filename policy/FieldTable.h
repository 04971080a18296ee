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

/// The tests of one filter, or of one mark, on one field. They hold together if one holds. Assumptions are
/// about the engine, so they make no difference to a mark.
struct TestGroup {
  std::size_t bit;  ///< the number of the filter or of the mark
  bool isMark = false;
  bool isExcluded = false;  ///< of a mark: none of the tests may hold
  std::vector<const Test*> tests;
};

/// The values of a field. Each has a signature: the state of a connection as far as this field alone decides.
/// A connection's state is the AND of the signatures of all its fields. Different values can have the same
/// signature.
class FieldTable {
 public:
  FieldTable(Field field, const StateLayout& layout, std::vector<TestGroup> groups);
  virtual ~FieldTable() = default;
  FieldTable(const FieldTable&) = delete;
  FieldTable& operator=(const FieldTable&) = delete;

  /// Whether a test of this kind makes sense for a field. Only the flags can be tested bit by bit; they, in
  /// turn, have no order, so no range of them makes sense.
  static bool CanJudge(Field field, const Test& test);
  /// The same of several tests. Each tested flag doubles the number of patterns, so too many cannot be
  /// judged.
  static bool CanJudge(Field field, const std::vector<const Test*>& tests);

  [[nodiscard]] Field GetField() const { return field_; }
  [[nodiscard]] const std::vector<TestGroup>& Groups() const { return groups_; }
  [[nodiscard]] const WordTable& Signatures() const { return signatures_; }

  /// The number of the signature of a connection's value.
  [[nodiscard]] virtual std::size_t SignatureOf(const Connection& connection) const = 0;
  /// The class of all values with certain signatures, without a text.
  /// @param signatures for each number of a signature, whether it counts.
  /// @param ordinary its value is the example if it is in the class.
  [[nodiscard]] virtual ValueClass Collect(const std::vector<bool>& signatures,
                                           const Connection& ordinary) const = 0;

 protected:
  /// What a value makes of a group's tests.
  struct Standing {
    std::size_t positive = 0;  ///< tests that hold without negation
    std::size_t failing = 0;   ///< negations that do not hold
  };

  [[nodiscard]] const StateLayout& Layout() const { return layout_; }
  /// A signature in which only the filters without conditions on this field match.
  [[nodiscard]] std::vector<BitWord> EmptySignature() const;
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

  [[nodiscard]] bool Holds(std::size_t group, Standing standing, const Plane& plane) const;
  [[nodiscard]] bool HoldsUnset(std::size_t group, const Plane& plane) const;
  void WriteBits(std::vector<BitWord>& signature, std::size_t group, std::size_t plane, bool holds) const;

  Field field_;
  const StateLayout& layout_;
  std::vector<TestGroup> groups_;
  std::vector<Counts> counts_;
  WordTable signatures_;
};

}  // namespace Policy
