#include "catalog/Sublayers.h"

#include <algorithm>

#include "catalog/KeyIndex.h"

namespace Catalog {

const BuiltInSublayer* FindBuiltInSublayer(const GUID& key) {
  static constexpr KeyIndex kIndex(kBuiltInSublayers);
  return kIndex.Find(key);
}

const BuiltInSublayer* FindBuiltInSublayer(std::string_view name) {
  const auto found = std::ranges::find(kBuiltInSublayers, name, &BuiltInSublayer::name);
  return found == kBuiltInSublayers.end() ? nullptr : &*found;
}

}  // namespace Catalog
