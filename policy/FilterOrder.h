/**
 * @file
 * Which of a sublayer's filters comes first, as far as this is known.
 *
 * An explicit weight is a plain number. Of a weight that the engine chose, the top four bits are the class
 * that the filter's author gave; of the other 60 only this is known: without conditions they are zero; each
 * field has its share, greater for an exact value than for a range, and nearly none for a range of
 * everything; the share of the remote address is the greatest; more conditions weigh more.
 */
#pragma once

#include <compare>
#include <map>
#include <string>
#include <vector>

#include "catalog/Guid.h"
#include "policy/Snapshot.h"

namespace Policy {

/// What is known of a filter's weight.
class KnownWeight {
 public:
  explicit KnownWeight(const Filter& filter);

  /// Whether the filter comes before another under any rule that has the known properties.
  [[nodiscard]] bool Outranks(const KnownWeight& other) const;
  /// The same text for filters that weigh the same under any rule.
  [[nodiscard]] const std::string& TieKey() const { return tieKey_; }

 private:
  /// How much of a field's values conditions leave open, from most to least.
  enum class Narrowness { Everything, Range, Exact };

  /// The conditions on one field: narrowness from `least` to `most`, and what they are.
  struct Share {
    Narrowness least = Narrowness::Everything;
    Narrowness most = Narrowness::Everything;
    std::string conditions;

    void Join(const Share& other);
  };

  static Share ShareOf(const Condition& condition);
  static std::partial_ordering Compare(const Share& left, const Share& right);

  [[nodiscard]] bool HasShare() const;
  [[nodiscard]] bool ChosenByEngineOutranks(const KnownWeight& other) const;
  [[nodiscard]] const Share& ShareOf(const GUID& field) const;

  UINT64 weight_;
  bool isNumber_;
  std::map<GUID, Share, Catalog::KeyOrder> shares_;  // by field
  std::string tieKey_;
};

}  // namespace Policy
