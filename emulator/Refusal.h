/**
 * @file
 * Why the engine turns something down.
 */
#pragma once

#include <WfpPlatform.h>

#include <string>
#include <utility>

namespace EngineEmulator {

/// The engine's code, and the reason that the engine itself never gives. Without a code nothing is refused.
class [[nodiscard]] Refusal {
 public:
  Refusal() = default;
  /// @param reason one sentence without a full stop.
  Refusal(HRESULT code, std::string reason) : code_(static_cast<DWORD>(code)), reason_(std::move(reason)) {}

  explicit operator bool() const { return code_ != ERROR_SUCCESS; }
  [[nodiscard]] DWORD Code() const { return code_; }
  [[nodiscard]] const std::string& Reason() const { return reason_; }

 private:
  DWORD code_ = ERROR_SUCCESS;
  std::string reason_;
};

}  // namespace EngineEmulator
