#pragma once

#include <WfpPlatform.h>

namespace Tarnwell {

/// Reports a failed system call.
/// @param unit file name of the source unit.
/// @param code system error code; the system gives its text.
/// @throws std::runtime_error always.
[[noreturn]] void RaiseSystemError(const char* unit, int line, DWORD code, const char* call);

/// Reports a failed internal check.
/// @param unit file name of the source unit.
/// @throws std::runtime_error always.
[[noreturn]] void RaiseFailedAssertion(const char* expression, int line, const char* unit,
                                       const char* unitName);

}  // namespace Tarnwell
