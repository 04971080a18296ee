#pragma once

#include <gmock/gmock.h>

#include <cstdint>
#include <string>

#include "engine/FirewallException.h"

/// The engine's code for an object that another one still refers to.
inline constexpr std::uint32_t kInUse = 0x8032000A;

/// The code of a failure that is not that of an engine call.
inline constexpr std::uint32_t kNoCode = 1;

/// Matches a callable that throws a FirewallException of exactly this text and code.
inline auto FailsWith(const std::string& message, std::uint32_t code = kNoCode) {
  using WfpFirewall::FirewallException;
  return testing::Throws<FirewallException>(
      testing::AllOf(testing::Property("what", &FirewallException::what, testing::StrEq(message)),
                     testing::Property("code", &FirewallException::GetErrorCode, testing::Eq(code))));
}
