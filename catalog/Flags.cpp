#include "catalog/Flags.h"

#include <algorithm>
#include <cstddef>

#include "catalog/Format.h"

namespace Catalog {

const Flag* FindFlag(std::span<const Flag> flags, std::string_view name) {
  const auto found = std::ranges::find(flags, name, &Flag::name);
  return found == flags.end() ? nullptr : &*found;
}

std::string FlagNames(std::span<const Flag> flags, UINT32 bits) {
  std::string names;
  for (std::size_t i = flags.size(); i-- > 0;) {
    const auto& [name, bit] = flags[i];
    if ((bits & bit.value_or(0)) == 0) {
      continue;
    }
    names.append(names.empty() ? "" : "|").append(name);
    bits &= ~*bit;
  }
  if (bits != 0) {
    names.append(names.empty() ? "" : "|").append(FormatHex(bits));
  }
  return names.empty() ? "-" : names;
}

}  // namespace Catalog
