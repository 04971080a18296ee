#pragma once

#include <string>

#include "Failure.h"
#include "policy/Assumptions.h"

/// A file of --assume that cannot be used.
class BadAssumptions : public Failure {
 public:
  /// @param wrong begins with the file's name.
  explicit BadAssumptions(const std::string& wrong)
      : Failure(wrong, "The step calibrate FILE.json writes such a file.") {}
};

/// What a calibration has settled.
struct Assumed {
  Policy::SettledReadings settled;
  std::string note;  ///< what is taken for settled, and from where; empty if no file was given
};

/// Reads what the step calibrate has written.
/// @param path in UTF-8; empty for none.
/// @throws BadAssumptions
Assumed ReadAssumed(const std::string& path);
