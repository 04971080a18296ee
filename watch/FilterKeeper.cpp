#include "watch/FilterKeeper.h"

#include <algorithm>
#include <utility>

namespace Watch {
namespace {

/// Of more than so many, those with the lowest ids, which are the oldest, are forgotten.
constexpr std::size_t kMostKept = 10'000;

template <class Container>
void Trim(Container& container) {
  while (container.size() > kMostKept) {
    container.erase(container.begin());
  }
}

}  // namespace

FilterKeeper::FilterKeeper(Read read, std::optional<GUID> ours, Clock::time_point now)
    : read_(std::move(read)), ours_(ours) {
  ReadAnew(now);
}

void FilterKeeper::Refresh(UINT64 filterId, Clock::time_point now) {
  const bool isUnknown = filterId != 0 && FindPresent(filterId) == nullptr && !gone_.contains(filterId) &&
                         !neverSeen_.contains(filterId);
  if (!isUnknown && now - readAt_ < kPatience) {
    return;
  }
  error_.clear();
  try {
    ReadAnew(now);
  } catch (const Policy::SnapshotError& error) {
    error_ = error.what();
    return;
  }
  if (isUnknown && FindPresent(filterId) == nullptr) {
    neverSeen_.insert(filterId);
    Trim(neverSeen_);
  }
}

std::optional<KnownFilter> FilterKeeper::Find(UINT64 filterId) const {
  if (const Policy::Filter* filter = FindPresent(filterId)) {
    return Describe(*filter, false);
  }
  const auto gone = gone_.find(filterId);
  return gone == gone_.end() ? std::nullopt : std::optional(gone->second);
}

const Policy::Filter* FilterKeeper::FindPresent(UINT64 filterId) const {
  const auto& filters = present_->filters;
  const auto found = std::ranges::lower_bound(filters, filterId, {}, &Policy::Filter::id);
  return found == filters.end() || found->id != filterId ? nullptr : &*found;
}

KnownFilter FilterKeeper::Describe(const Policy::Filter& filter, bool isGone) const {
  return {filter, owners_->NameOf(filter), owners_->KindOf(filter) == Policy::OwnerKind::Ours, isGone};
}

void FilterKeeper::ReadAnew(Clock::time_point now) {
  auto read = std::make_unique<const Policy::Snapshot>(read_());
  if (present_ != nullptr) {
    const auto remains = [&read](UINT64 id) {
      return std::ranges::binary_search(read->filters, id, {}, &Policy::Filter::id);
    };
    for (const Policy::Filter& filter : present_->filters) {
      if (!remains(filter.id)) {
        gone_.insert_or_assign(filter.id, Describe(filter, true));
      }
    }
    Trim(gone_);
  }
  present_ = std::move(read);
  owners_ = std::make_unique<const Policy::Owners>(*present_, ours_);
  readAt_ = now;
}

}  // namespace Watch
