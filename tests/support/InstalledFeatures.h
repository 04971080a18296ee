/**
 * @file
 * Features switched on through the library's exported functions.
 */
#pragma once

#include "promises/Features.h"

/// Switches features on, with the emulated engine and with FakePlatform, whose adapters are the interfaces
/// that the features name. The destructor switches them off.
class InstalledFeatures {
 public:
  /// @param features its applications are ids of files on drive C ("\device\harddiskvolume1\a.exe"), from
  ///        which the paths for the library are made. The filters of others that block applications are
  ///        removed afterwards: only the library's copies of them remain.
  /// @throws std::runtime_error naming the command that failed.
  explicit InstalledFeatures(const Promises::Features& features);
  InstalledFeatures(const InstalledFeatures&) = delete;
  InstalledFeatures& operator=(const InstalledFeatures&) = delete;
  ~InstalledFeatures();
};
