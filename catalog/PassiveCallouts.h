/**
 * @file
 * Callouts of the system that never turn a verdict.
 */
#pragma once

#include <WfpPlatform.h>

#include <string_view>

namespace Catalog {

/// A callout that marks or inspects connections, informs somebody, or permits what its service waits for and
/// otherwise leaves the decision to the next filter. It blocks nothing that would pass without it.
struct PassiveCallout {
  GUID key;
  std::string_view purpose;  ///< "performs logging"
};

/// The passive callout with a key; null if there is none.
const PassiveCallout* FindPassiveCallout(const GUID& key);

}  // namespace Catalog
