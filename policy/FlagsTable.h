/**
 * @file
 * The words of flags.
 */
#pragma once

#include "policy/FieldTable.h"

namespace Policy {

/// Words that a condition names, one by one, and all others by those of their bits that conditions test.
///
/// Live engines show filters at ALE_AUTH_RECV_ACCEPT the loopback flag always with a companion:
/// IS_APPCONTAINER_LOOPBACK or IS_NON_APPCONTAINER_LOOPBACK. Of other layers this is an assumption.
class FlagsTable : public FieldTable {
 public:
  FlagsTable(const StateLayout& layout, std::vector<TestGroup> groups);

  /// Whether a test holds of other words if the loopback flag has a companion.
  static bool DependsOnCompanion(const Test& test);

  [[nodiscard]] std::size_t SignatureOf(const Connection& connection) const override;
  [[nodiscard]] ValueClass Collect(const std::vector<bool>& signatures,
                                   const Connection& ordinary) const override;

 private:
  struct Piece {
    UINT32 word;  ///< the named word, or an example
    UINT32 bits;  ///< its tested bits
    std::size_t signature;
  };

  void FindTestedBits();
  /// The word that filters are shown, of a plane and a group.
  [[nodiscard]] UINT32 ShownWord(UINT32 word, const TestGroup& group, const Plane& plane) const;
  void AddNamedWords();
  void AddBitPatterns();
  [[nodiscard]] bool IsNamed(UINT32 word) const;
  /// The named words with some of the tested bits, ascending.
  [[nodiscard]] std::vector<UINT32> NamedWith(UINT32 bits) const;
  [[nodiscard]] std::optional<UINT32> UnnamedWord(UINT32 bits) const;
  std::size_t InternWord(UINT32 word);
  [[nodiscard]] std::size_t SignatureOfWord(UINT32 word) const;

  UINT32 testedBits_ = 0;
  std::vector<Piece> named_;
  std::vector<Piece> patterns_;  ///< ascending by bits
  std::size_t unset_ = 0;
};

}  // namespace Policy
