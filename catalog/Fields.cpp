#include "catalog/Fields.h"

#include "catalog/KeyIndex.h"

namespace Catalog {

const Field* FindField(const GUID& key) {
  static constexpr KeyIndex kIndex(kFields);
  return kIndex.Find(key);
}

}  // namespace Catalog
