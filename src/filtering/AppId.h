#pragma once

#include <WfpPlatform.h>

#include <string>

#include "filtering/BaseValue.h"

namespace WfpFirewall::Filtering::Values {

/// An application, as the identifier that the engine derives from the path of its executable.
class WFPFIREWALL_API AppId : public Value<FWP_BYTE_BLOB> {
 public:
  /// Copies the size and the pointer, not the bytes: these must outlive the value and its copies.
  explicit AppId(FWP_BYTE_BLOB blob);
  /// @param path full path of an executable that exists.
  /// @throws FirewallException "Failed to retrieve app blob" with the engine's code.
  explicit AppId(std::wstring path);
};

}  // namespace WfpFirewall::Filtering::Values
