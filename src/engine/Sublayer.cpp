#include "engine/Sublayer.h"

#include <iterator>
#include <utility>

#include "engine/FirewallException.h"

namespace WfpFirewall {

Sublayer::Sublayer(GUID guid, std::wstring name, std::wstring description)
    : guid_(guid), name_(std::move(name)), description_(std::move(description)) {}

GUID Sublayer::GetGuid() const { return guid_; }

Sublayer& Sublayer::AddFilter(Filter filter) {
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

  GUID providerKey = provider.GetGuid();
  std::vector<FWPM_FILTER0> records;
  records.reserve(filters_.size());
  for (Filter& filter : filters_) {
    FWPM_FILTER0& record = records.emplace_back(filter.ToNativeFilter());
    record.subLayerKey = guid_;
    record.displayData = {name_.data(), description_.data()};
    record.providerKey = &providerKey;
  }
  // Room for the ids first: when memory is short, no filter gets into the engine without its id being kept.
  filterIds_.reserve(filterIds_.size() + records.size());
  for (const FWPM_FILTER0& record : records) {
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
  if (!IsApplied(engine)) {
    return;
  }
  for (const std::uint64_t id : filterIds_) {
    FwpmFilterDeleteById0(engine, id);
  }
  filterIds_.clear();

  const DWORD result = FwpmSubLayerDeleteByKey0(engine, &guid_);
  // Contract: the text names the provider, and the code tolerated is the provider's not-found, not the
  // sublayer's. See docs/host-guide.md#texts and #codes.
  if (result != ERROR_SUCCESS && result != static_cast<DWORD>(FWP_E_PROVIDER_NOT_FOUND)) {
    throw FirewallException("Failed to remove provider.", result);
  }
}

std::vector<Filter>& Sublayer::Filters() { return filters_; }

}  // namespace WfpFirewall
