/**
 * @file
 * Versions of Windows whose engines differ in what the catalogue tells.
 */
#pragma once

#include <WfpPlatform.h>

#include <array>
#include <string_view>

namespace Catalog {

/// In the order of their builds.
enum class WindowsVersion {
  Windows10,    ///< from 2004 on, build 19041
  Windows11,    ///< before 24H2, from build 22000 on
  Windows24H2,  ///< of Windows 11 and later, from build 26100 on
};

inline constexpr std::array kWindowsVersions{WindowsVersion::Windows10, WindowsVersion::Windows11,
                                             WindowsVersion::Windows24H2};
inline constexpr WindowsVersion kNewestWindows = WindowsVersion::Windows24H2;

inline constexpr UINT32 kWindows11Build = 22000;
inline constexpr UINT32 kWindows24H2Build = 26100;

/// The version that a build belongs to; older builds count as Windows10.
constexpr WindowsVersion VersionOfBuild(UINT32 build) {
  if (build >= kWindows24H2Build) {
    return WindowsVersion::Windows24H2;
  }
  return build >= kWindows11Build ? WindowsVersion::Windows11 : WindowsVersion::Windows10;
}

/// The first build of a version.
constexpr UINT32 FirstBuildOf(WindowsVersion version) {
  constexpr std::array<UINT32, kWindowsVersions.size()> kBuilds{19041, kWindows11Build, kWindows24H2Build};
  return kBuilds[static_cast<std::size_t>(version)];
}

/// "Windows 10", "Windows 11 before 24H2", "Windows 11 24H2".
constexpr std::string_view WindowsVersionName(WindowsVersion version) {
  constexpr std::array<std::string_view, kWindowsVersions.size()> kNames{
      "Windows 10", "Windows 11 before 24H2", "Windows 11 24H2"};
  return kNames[static_cast<std::size_t>(version)];
}

}  // namespace Catalog
