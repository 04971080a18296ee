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

/// Letters in lower case whatever the language of the system: Latin, Greek, Cyrillic and Armenian.
std::wstring LowerCase(std::wstring_view text);

/// ERROR_SUCCESS for a full path of an existing file, else what opening it would give.
/// @param pretendedFiles paths in lower case that count as existing, and so do their folders. What else is in
/// these folders is as it is.
DWORD CheckFile(std::wstring_view path, const std::set<std::wstring>& pretendedFiles);

/// "C:\A.exe" as "\device\harddiskvolume1\a.exe" in UTF-16, least significant byte first, with the
/// terminating zero. Drive C: is volume 1, D: volume 2 and so on.
std::vector<UINT8> ApplicationIdOf(std::wstring_view path);

}  // namespace EngineEmulator
