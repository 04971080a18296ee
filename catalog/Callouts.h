/**
 * @file
 * The callouts that come with the system.
 */
#pragma once

#include <WfpPlatform.h>

#include <span>
#include <string_view>

namespace Catalog {

/// A callout that nobody can delete.
struct BuiltInCallout {
  UINT32 id;
  std::string_view name;  ///< less the prefix FWPM_CALLOUT_
  GUID key;
  std::string_view layer;  ///< name of the only layer whose filters may name it
  UINT32 flags;            ///< FWPM_CALLOUT_FLAG_* and FWP_CALLOUT_FLAG_*, as live engines show them
};

/// All built-in callouts, by rising id.
std::span<const BuiltInCallout> BuiltInCallouts();

/// The built-in callout with a key; null if there is none.
const BuiltInCallout* FindBuiltInCallout(const GUID& key);

/// The built-in callout with an id; null if there is none.
const BuiltInCallout* FindBuiltInCallout(UINT32 id);

/// The built-in callout with a name; null if there is none.
const BuiltInCallout* FindBuiltInCallout(std::string_view name);

}  // namespace Catalog
