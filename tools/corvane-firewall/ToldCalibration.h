#pragma once

#include <string>

#include "calibrate/Calibration.h"

/// A calibration with where and when it was made.
struct ToldCalibration {
  Calibrate::Calibration found;
  bool isSimulated;     ///< connections were made in thought, with the readings to expect
  std::string windows;  ///< with its build; "emulated" for the emulated engine
  std::string time;     ///< "2026-11-22T09:16:19Z"
};
