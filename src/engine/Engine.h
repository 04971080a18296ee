#pragma once

#include <WfpPlatform.h>

#include <memory>

#include "Export.h"

namespace WfpFirewall {

/// Sessions with the filtering engine.
class WFPFIREWALL_API Engine {
 public:
  /// Opens a dynamic session with the local engine: whatever is added through it goes when it closes,
  /// which it does with the last owner of the handle.
  /// @throws FirewallException "Error opening engine." with the engine's code.
  static std::shared_ptr<void> OpenEngine();
};

}  // namespace WfpFirewall
