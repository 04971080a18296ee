#include "engine/Sublayer.h"

#include <cstddef>
#include <iterator>
#include <utility>

#include "engine/FirewallException.h"

namespace WfpFirewall {

Sublayer::Sublayer(GUID guid, std::wstring name, std::wstring description)
    : guid_(guid), name_(std::move(name)), description_(std::move(description)) {}

GUID Sublayer::GetGuid() const { return guid_; }

Sublayer& Sublayer::AddFilter(Filter filter) {
  constexpr std::size_t kUsual = 16;
  if (filters_.empty()) {
    filters_.reserve(kUsual);
  }
  filters_.push_back(std::move(filter));
  return *this;
}

Sublayer& Sublayer::AddFilters(std::vector<Filter> filters) {
  filters_.insert(filters_.end(), std::make_move_iterator(filters.begin()),
                  std::make_move_iterator(filters.end()));
  return *this;
}

std::vector<Filter> Sublayer::GetFilters() const { return filters_; }

bool Sublayer::IsEmpty() const { return filters_.empty(); }

void Sublayer::SetWeight(std::uint64_t weight) { weight_ = weight; }

void Sublayer::SurviveRestart() { persistent_ = true; }

bool Sublayer::IsApplied(HANDLE engine) const {
  FWPM_SUBLAYER0* found = nullptr;
  if (FwpmSubLayerGetByKey0(engine, &guid_, &found) != ERROR_SUCCESS) {
    return false;
  }
  void* memory = found;
  FwpmFreeMemory0(&memory);
  return true;
}

void Sublayer::Apply(HANDLE engine, const Provider& provider) {
  if (IsApplied(engine)) {
    return;
  }
  AddToEngine(engine);

  // All conditions are written before the first filter is added, so that none is added if one has no native
  // form.
  Filter::RecordCount count;
  for (const Filter& filter : filters_) {
    count += filter.CountRecords();
  }
  std::vector<FWPM_FILTER_CONDITION0> conditions(count.conditions);
  std::vector<FWP_RANGE0> ranges(count.ranges);
  Filter::RecordCount written;
  for (const Filter& filter : filters_) {
    (void)Filtering::MapLayerType(filter.layer_);  // it may have none
    filter.WriteConditions(conditions.data() + written.conditions, ranges.data() + written.ranges);
    written += filter.CountRecords();
  }

  // Room for the ids first: when memory is short, no filter gets into the engine without its id being kept.
  filterIds_.reserve(filterIds_.size() + filters_.size());
  GUID providerKey = provider.GetGuid();
  auto record = FWPM_FILTER0();  // every byte zero
  record.subLayerKey = guid_;
  record.displayData = {name_.data(), description_.data()};
  record.providerKey = &providerKey;
  FWPM_FILTER_CONDITION0* own = conditions.data();
  for (const Filter& filter : filters_) {
    filter.WriteRecord(record, own);
    own += record.numFilterConditions;
    UINT64 id = 0;
    const DWORD result = FwpmFilterAdd0(engine, &record, nullptr, &id);
    if (result != ERROR_SUCCESS) {
      throw FirewallException("Failed to add filter to firewall.", result);
    }
    filterIds_.push_back(id);
  }
}

void Sublayer::AddToEngine(HANDLE engine) {
  FWPM_SUBLAYER0 record{};
  record.subLayerKey = guid_;
  record.displayData = {name_.data(), description_.data()};
  record.flags = persistent_ ? FWPM_SUBLAYER_FLAG_PERSISTENT : 0;
  record.weight = static_cast<UINT16>(weight_);
  const DWORD result = FwpmSubLayerAdd0(engine, &record, nullptr);
  if (result != ERROR_SUCCESS) {
    throw FirewallException("Error creating sublayer.", result);
  }
}

void Sublayer::Destroy(HANDLE engine) {
  if (IsApplied(engine)) {
    DeleteFilters(engine);
    filterIds_.clear();
    DeleteFromEngine(engine);
  }
}

void Sublayer::DeleteFilters(HANDLE engine) const {
  for (const std::uint64_t id : filterIds_) {
    FwpmFilterDeleteById0(engine, id);
  }
}

void Sublayer::DeleteFromEngine(HANDLE engine) const {
  const DWORD result = FwpmSubLayerDeleteByKey0(engine, &guid_);
  // Contract: the text names the provider, and the code tolerated is the provider's not-found, not the
  // sublayer's. See docs/host-guide.md#texts and #codes.
  if (result != ERROR_SUCCESS && result != static_cast<DWORD>(FWP_E_PROVIDER_NOT_FOUND)) {
    throw FirewallException("Failed to remove provider.", result);
  }
}

std::vector<Filter>& Sublayer::Filters() { return filters_; }

}  // namespace WfpFirewall
