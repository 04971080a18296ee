/**
 * @file
 * The values of a field of numbers.
 */
#pragma once

#include "policy/FieldTable.h"

namespace Policy {

/// Numbers by interval: between two neighbouring ends of conditions all behave alike.
class NumberTable : public FieldTable {
 public:
  /// @param bits of the field's numbers.
  NumberTable(Field field, unsigned bits, const StateLayout& layout, std::vector<TestGroup> groups);

  [[nodiscard]] std::size_t SignatureOf(const Connection& connection) const override;
  [[nodiscard]] ValueClass Collect(const std::vector<bool>& signatures,
                                   const Connection& ordinary) const override;

 private:
  /// Where the numbers of a test begin or end.
  struct Edge {
    Number at;
    std::size_t group;
    bool negated;
    bool isBegin;
  };

  [[nodiscard]] std::vector<Edge> Edges() const;
  void Sweep();
  [[nodiscard]] std::size_t SignatureAt(Number number) const;

  Number greatest_;
  std::vector<Number> starts_;  ///< of the intervals, ascending from 0
  std::vector<std::size_t> signatureAt_;
  std::size_t unset_ = 0;
};

}  // namespace Policy
