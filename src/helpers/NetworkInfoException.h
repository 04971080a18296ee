#pragma once

#include <exception>
#include <string>

#include "Export.h"

namespace WfpFirewall::Helpers {

/// The network adapters cannot be listed.
class WFPFIREWALL_API NetworkInfoException : public std::exception {
 public:
  NetworkInfoException() = default;
  explicit NetworkInfoException(const char* message);
  /// @param code system error code.
  NetworkInfoException(const char* message, int code);
  /// Takes over the other's message.
  explicit NetworkInfoException(const std::exception& other);

  [[nodiscard]] const char* what() const noexcept override;
  /// The system error code; 0 when none was given.
  [[nodiscard]] int GetErrorCode() const;

 private:
  std::string message_;
  int code_ = 0;
};

}  // namespace WfpFirewall::Helpers
