/**
 * @file
 * Features switched on through the library's exported functions.
 */
#pragma once

#include "promises/Features.h"

/// Switches features on over the emulated engine and a scripted machine whose adapters are the interfaces
/// that the features name, and all of it off at the end of its life.
class InstalledFeatures {
 public:
  /// @param features applications by the ids of paths on drive C ("\device\harddiskvolume1\a.exe"), so that
  ///        the library can be given the paths. The filters that blocked applications outside the library
  ///        are gone afterwards: only the library's copies of them remain.
  /// @throws std::runtime_error naming the command that failed.
  explicit InstalledFeatures(const Promises::Features& features);
  InstalledFeatures(const InstalledFeatures&) = delete;
  InstalledFeatures& operator=(const InstalledFeatures&) = delete;
  ~InstalledFeatures();
};
