#include "policy/Owners.h"

#include <algorithm>
#include <string_view>

#include "catalog/Names.h"
#include "catalog/Providers.h"

namespace Policy {
namespace {

/// Whether a provider's name tells it from others. Many have the name of their maker alone, or a reference to
/// a text that the reader of a dump does not have.
bool Distinguishes(std::string_view name, const std::vector<Provider>& providers) {
  return !name.empty() && !name.starts_with('@') && std::ranges::count(providers, name, &Provider::name) == 1;
}

std::string NameOf(const Provider& provider, const std::vector<Provider>& providers) {
  if (const Catalog::BuiltInProvider* builtIn = Catalog::FindBuiltInProvider(provider.key)) {
    return std::string(builtIn->title);
  }
  if (Distinguishes(provider.name, providers)) {
    return provider.name;
  }
  return provider.description.empty() ? provider.name + " {" + Catalog::FormatGuid(provider.key) + '}'
                                      : provider.description;
}

}  // namespace

Owners::Owners(const Snapshot& snapshot, std::optional<GUID> ours) : ours_(ours) {
  for (const Provider& provider : snapshot.providers) {
    names_.emplace(provider.key, Policy::NameOf(provider, snapshot.providers));
  }
}

OwnerKind Owners::KindOf(const Filter& filter) const {
  if (filter.providerKey && ours_ && *filter.providerKey == *ours_) {
    return OwnerKind::Ours;
  }
  return filter.providerKey && Catalog::FindBuiltInProvider(*filter.providerKey) != nullptr
             ? OwnerKind::Platform
             : OwnerKind::Other;
}

std::string Owners::NameOf(const Filter& filter) const {
  if (!filter.providerKey) {
    return "no provider";
  }
  const auto found = names_.find(*filter.providerKey);
  const Catalog::BuiltInProvider* builtIn = Catalog::FindBuiltInProvider(*filter.providerKey);
  std::string name = '{' + Catalog::FormatGuid(*filter.providerKey) + '}';
  if (found != names_.end()) {
    name = found->second;
  } else if (builtIn != nullptr) {
    name = builtIn->title;
  }
  return KindOf(filter) == OwnerKind::Ours ? name + " (ours)" : name;
}

std::string Owners::Describe(const Filter& filter) const {
  return Policy::Describe(filter) + " of " + NameOf(filter);
}

}  // namespace Policy
