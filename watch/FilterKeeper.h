/**
 * @file
 * The engine's filters, those that are gone included.
 */
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "policy/Owners.h"
#include "policy/Snapshot.h"

namespace Watch {

/// A filter that an event names.
struct KnownFilter {
  Policy::Filter filter;
  std::string owner;  ///< as Policy::Owners names it
  bool isOurs;
  bool isGone;  ///< the engine does not have it any more
};

/// Keeps what the engine holds, and the filters that it has held before.
class FilterKeeper {
 public:
  using Clock = std::chrono::steady_clock;
  /// Reads the engine. @throws Policy::SnapshotError
  using Read = std::function<Policy::Snapshot()>;

  /// What was read counts as present for so long.
  static constexpr std::chrono::seconds kPatience{2};

  /// Reads the engine.
  /// @param ours as for Policy::Owners.
  /// @throws Policy::SnapshotError
  FilterKeeper(Read read, std::optional<GUID> ours, Clock::time_point now);

  /// Reads the engine anew if that was some time ago, or if it is worth while for a filter that is not known.
  /// If the engine cannot be read, what was read before remains.
  void Refresh(UINT64 filterId, Clock::time_point now);
  /// Why the engine could not be read anew; empty if it could.
  [[nodiscard]] const std::string& Error() const { return error_; }

  /// What the engine holds. Valid until the next refresh, as the owners are.
  [[nodiscard]] const Policy::Snapshot& Present() const { return *present_; }
  [[nodiscard]] const Policy::Owners& PresentOwners() const { return *owners_; }
  /// A filter by its id, present or gone; none if it was never seen.
  [[nodiscard]] std::optional<KnownFilter> Find(UINT64 filterId) const;

 private:
  [[nodiscard]] const Policy::Filter* FindPresent(UINT64 filterId) const;
  [[nodiscard]] KnownFilter Describe(const Policy::Filter& filter, bool isGone) const;
  void ReadAnew(Clock::time_point now);

  Read read_;
  std::optional<GUID> ours_;
  std::unique_ptr<const Policy::Snapshot> present_;
  std::unique_ptr<const Policy::Owners> owners_;
  Clock::time_point readAt_;
  std::map<UINT64, KnownFilter> gone_;
  std::set<UINT64> neverSeen_;
  std::string error_;
};

}  // namespace Watch
