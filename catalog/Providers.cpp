#include "catalog/Providers.h"

#include <algorithm>

#include "catalog/KeyIndex.h"

namespace Catalog {

const BuiltInProvider* FindBuiltInProvider(const GUID& key) {
  static constexpr KeyIndex kIndex(kBuiltInProviders);
  return kIndex.Find(key);
}

const BuiltInProvider* FindBuiltInProvider(std::string_view name) {
  const auto found = std::ranges::find(kBuiltInProviders, name, &BuiltInProvider::name);
  return found == kBuiltInProviders.end() ? nullptr : &*found;
}

}  // namespace Catalog
