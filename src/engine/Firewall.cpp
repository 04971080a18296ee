#include "engine/Firewall.h"

#include <algorithm>
#include <utility>

#include "engine/Engine.h"
#include "engine/FirewallException.h"

namespace WfpFirewall {

Firewall::Firewall(Provider provider) : provider_(std::move(provider)) {}

Firewall& Firewall::AddSublayer(Sublayer& sublayer) {
  registry_.push_back(sublayer);
  return *this;
}

bool Firewall::HasSublayer(Sublayer& sublayer) const { return HasSublayer(sublayer.GetGuid()); }

bool Firewall::HasSublayer(GUID guid) const {
  return std::any_of(registry_.begin(), registry_.end(),
                     [&](const Sublayer& entry) { return entry.GetGuid() == guid; });
}

void Firewall::RemoveSublayer(GUID guid) {
  const auto matches = [&](const Sublayer& entry) { return entry.GetGuid() == guid; };
  for (const Sublayer& entry : registry_) {
    if (matches(entry) && entry.IsApplied(engine_.get())) {
      // Not by Destroy, which forgets the filter ids: after a failure the next removal deletes what is left.
      entry.DeleteFilters(engine_.get());
      entry.DeleteFromEngine(engine_.get());
    }
  }
  std::erase_if(registry_, matches);
}

void Firewall::Apply() {
  OpenEngine();
  for (Sublayer& entry : registry_) {
    entry.Apply(engine_.get(), provider_);
  }
}

void Firewall::Destroy() {
  OpenEngine();
  for (Sublayer& entry : registry_) {
    entry.Destroy(engine_.get());
  }
  const GUID providerKey = provider_.GetGuid();
  const DWORD result = FwpmProviderDeleteByKey0(engine_.get(), &providerKey);
  if (result != ERROR_SUCCESS && result != static_cast<DWORD>(FWP_E_PROVIDER_NOT_FOUND)) {
    throw FirewallException("Failed to remove provider.", result);
  }
  registry_.clear();
  engine_.reset();
}

void Firewall::TransactionBegin() {
  OpenEngine();
  const DWORD result = FwpmTransactionBegin0(engine_.get(), 0);
  if (result != ERROR_SUCCESS) {
    throw FirewallException("Failed to begin transaction.", result);
  }
}

void Firewall::TransactionCommit() {
  OpenEngine();
  const DWORD result = FwpmTransactionCommit0(engine_.get());
  if (result != ERROR_SUCCESS) {
    throw FirewallException("Failed to commit transaction.", result);
  }
}

void Firewall::OpenEngine() {
  if (engine_ != nullptr) {
    return;
  }
  engine_ = Engine::OpenEngine();
  EnsureProvider();
}

void Firewall::EnsureProvider() {
  const GUID providerKey = provider_.GetGuid();
  FWPM_PROVIDER0* existing = nullptr;
  if (FwpmProviderGetByKey0(engine_.get(), &providerKey, &existing) == ERROR_SUCCESS) {
    // The record is neither read nor freed: one small block of engine memory for each session.
    return;
  }
  std::wstring name = provider_.GetName();
  std::wstring displayName = provider_.GetDisplayName();
  std::wstring displayDesc = provider_.GetDisplayDesc();
  FWPM_PROVIDER0 record{};
  record.providerKey = providerKey;
  record.displayData = {displayName.data(), displayDesc.data()};
  record.flags = provider_.IsPersistent() ? FWPM_PROVIDER_FLAG_PERSISTENT : 0;
  record.serviceName = name.data();
  if (FwpmProviderAdd0(engine_.get(), &record, nullptr) != ERROR_SUCCESS) {
    // Contract: the only failure that does not carry the engine's code, see docs/host-guide.md#texts.
    throw FirewallException("Failed to add provider");
  }
}

}  // namespace WfpFirewall
