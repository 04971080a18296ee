#pragma once

#include <WfpPlatform.h>

#include <memory>
#include <vector>

#include "Export.h"
#include "filtering/Filter.h"

namespace WfpFirewall {

/// Sessions with the filtering engine, and what it holds.
class WFPFIREWALL_API Engine {
 public:
  /// Opens a dynamic session with the local engine: whatever is added through it goes when it closes,
  /// which it does with the last owner of the handle.
  /// @throws FirewallException "Error opening engine." with the engine's code.
  static std::shared_ptr<void> OpenEngine();

  /// Copies of every filter of the engine that blocks an application outright: a block whose one
  /// condition is the application's identifier, whoever owns it. In the engine's order. The engine's
  /// memory behind the identifiers stays allocated for the life of the process. An enumeration that
  /// fails yields nothing.
  /// @throws FirewallException as OpenEngine and Filter::BuildFromNative.
  static std::vector<Filter> GetAllBlockedAppsFilters();
};

}  // namespace WfpFirewall
