/**
 * @file
 * Whom filters belong to.
 */
#pragma once

#include <map>
#include <optional>
#include <string>

#include "catalog/Guid.h"
#include "policy/Snapshot.h"

namespace Policy {

enum class OwnerKind {
  Ours,
  Other,     ///< another program, or nobody
  Platform,  ///< a provider that comes with the system: its filters are not to be changed
};

/// Names the owners of a snapshot's filters.
class Owners {
 public:
  /// @param ours the key of the asking program's own provider; none if it has none.
  explicit Owners(const Snapshot& snapshot, std::optional<GUID> ours = std::nullopt);

  [[nodiscard]] OwnerKind KindOf(const Filter& filter) const;
  /// "Windows Firewall", "Corvane (ours)", "no provider". The key in braces if the snapshot lacks the name.
  [[nodiscard]] std::string NameOf(const Filter& filter) const;
  /// "filter 12 \"Name\" of Windows Firewall"
  [[nodiscard]] std::string Describe(const Filter& filter) const;

 private:
  std::optional<GUID> ours_;
  std::map<GUID, std::string, Catalog::KeyOrder> names_;
};

}  // namespace Policy
