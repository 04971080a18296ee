/**
 * @file
 * Filters of other owners in the emulated engine.
 */
#pragma once

#include <WfpPlatform.h>

#include <array>
#include <string>

/// A filter that blocks one application on outgoing IPv4 connections, as Windows Firewall makes it.
/// Change the record before adding it.
class AppBlock {
 public:
  /// @param path need not exist.
  explicit AppBlock(const std::wstring& path);
  AppBlock(const AppBlock&) = delete;
  AppBlock& operator=(const AppBlock&) = delete;
  ~AppBlock();

  /// Adds the filter through a session of its own, which it outlives. Gives its id.
  UINT64 Add();

  std::array<FWPM_FILTER_CONDITION0, 2> conditions{};  ///< the second is not in use: remote port 53
  FWPM_FILTER0 filter{};
};
