#pragma once

#include <cstdint>
#include <exception>
#include <string>

#include "Export.h"

namespace WfpFirewall {

/// The code of a failure that no engine call reported.
inline constexpr std::uint32_t kNoEngineCode = 1;

/// Every failure of the engine and of the object model.
class WFPFIREWALL_API FirewallException : public std::exception {
 public:
  /// @param errorCode Windows or FWP_E_ code of the engine call that failed.
  explicit FirewallException(const std::string& message, std::uint32_t errorCode = kNoEngineCode);

  [[nodiscard]] const char* what() const noexcept override;
  [[nodiscard]] std::uint32_t GetErrorCode() const;

 private:
  std::string message_;
  std::uint32_t errorCode_;
};

}  // namespace WfpFirewall
