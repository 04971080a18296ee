#include "catalog/Sublayers.h"

#include "catalog/KeyIndex.h"

namespace Catalog {

const BuiltInSublayer* FindBuiltInSublayer(const GUID& key) {
  static constexpr KeyIndex kIndex(kBuiltInSublayers);
  return kIndex.Find(key);
}

}  // namespace Catalog
