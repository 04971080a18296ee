/**
 * @file
 * The identities of programs.
 */
#pragma once

#include <WfpPlatform.h>

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace EngineEmulator {

/// Letters in lower case as file names have it: whatever the language of the system, only letters of the
/// basic plane, and of these only those that their lower case leads back to.
std::wstring LowerCase(std::wstring_view text);

/// ERROR_SUCCESS for a full path of an existing file, else what opening it would give.
/// @param pretendedFiles paths in lower case that count as existing, and so do their folders. What else is in
/// these folders is as it is.
DWORD CheckFile(std::wstring_view path, const std::set<std::wstring>& pretendedFiles);

/// "C:\A.exe" as "\device\harddiskvolume1\a.exe" in UTF-16, least significant byte first, with the
/// terminating zero. Drive C: is volume 1, D: volume 2 and so on.
std::vector<UINT8> ApplicationIdOf(std::wstring_view path);

}  // namespace EngineEmulator
