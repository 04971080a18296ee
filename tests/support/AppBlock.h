/**
 * @file
 * A filter in the emulated engine that the library does not own.
 */
#pragma once

#include <WfpPlatform.h>

#include <array>
#include <string>

/// A filter that blocks the outbound IPv4 connections of one application, as Windows Firewall does. A test
/// may change the record before it adds it.
class AppBlock {
 public:
  /// @param path need not exist.
  explicit AppBlock(const std::wstring& path);
  AppBlock(const AppBlock&) = delete;
  AppBlock& operator=(const AppBlock&) = delete;
  ~AppBlock();

  /// Adds the filter through a session of its own; the filter stays when that session closes. Gives its id.
  UINT64 Add();

  std::array<FWPM_FILTER_CONDITION0, 2>
      conditions{};  ///< the filter uses the first only; the second is remote port 53
  FWPM_FILTER0 filter{};
};
