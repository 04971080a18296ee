#pragma once

#include <WfpPlatform.h>

#include <string>

#include "Export.h"

namespace WfpFirewall {

/// The provider under which the engine keeps all of the library's objects.
class WFPFIREWALL_API Provider {
 public:
  /// @param name becomes the provider's service name in the engine.
  /// @param displayName, displayDesc what administrators see.
  Provider(GUID guid, std::wstring name, std::wstring displayName, std::wstring displayDesc);

  [[nodiscard]] GUID GetGuid() const;
  [[nodiscard]] std::wstring GetName() const;
  [[nodiscard]] std::wstring GetDisplayName() const;
  [[nodiscard]] std::wstring GetDisplayDesc() const;
  /// Lets the provider survive the session and a restart.
  void MakePersistent();
  [[nodiscard]] bool IsPersistent() const;

 private:
  GUID guid_;
  std::wstring name_;
  std::wstring displayName_;
  std::wstring displayDesc_;
  bool persistent_ = false;
};

}  // namespace WfpFirewall
