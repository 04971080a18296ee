/**
 * @file
 * The failures that a test has planned.
 */
#pragma once

#include <WfpPlatform.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace EngineEmulator {

class FaultPlan {
 public:
  /// Lets the nth call from now on (1 = the next) fail.
  /// @param function empty for calls of any function.
  void Add(std::string function, std::size_t nth, DWORD code);

  /// Counts a call, and gives the code that it must fail with, if a plan says so; the oldest plan counts.
  std::optional<DWORD> Count(std::string_view function);

 private:
  struct Fault {
    std::string function;
    std::size_t callsLeft;
    DWORD code;
  };
  std::vector<Fault> faults_;
};

}  // namespace EngineEmulator
