#include "emulator/ApplicationId.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <system_error>

namespace EngineEmulator {
namespace {

/// Of one unit at a time, so that the halves of a surrogate pair stay as they are.
wchar_t LowerCaseOf(wchar_t unit) {
  wchar_t lower = unit;
  LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_LOWERCASE, &unit, 1, &lower, 1, nullptr, nullptr, 0);
  return lower;
}

/// Empty for a name that the host cannot write, which Windows always can.
std::filesystem::path HostPath(std::wstring_view path) {
  try {
    return path;
  } catch (const std::system_error&) {
    return {};
  }
}

bool IsFullPath(std::wstring_view lowerCasePath) {
  return lowerCasePath.size() > 3 && lowerCasePath[0] >= L'c' && lowerCasePath[0] <= L'z' &&
         lowerCasePath.substr(1, 2) == L":\\";
}

/// UTF-16 with the low byte first. Off Windows a wide character can be one of several units.
void Append(std::vector<UINT8>& bytes, char32_t character) {
  if (character > 0xFFFF) {
    Append(bytes, 0xD800 + ((character - 0x10000) >> 10));
    Append(bytes, 0xDC00 + ((character - 0x10000) & 0x3FF));
    return;
  }
  bytes.push_back(static_cast<UINT8>(character & 0xFF));
  bytes.push_back(static_cast<UINT8>(character >> 8));
}

}  // namespace

std::wstring LowerCase(std::wstring_view text) {
  std::wstring result;
  std::transform(text.begin(), text.end(), std::back_inserter(result), LowerCaseOf);
  return result;
}

DWORD CheckFile(std::wstring_view path, const std::set<std::wstring>& pretendedFiles) {
  const std::wstring lowerCasePath = LowerCase(path);
  if (!IsFullPath(lowerCasePath)) {
    return ERROR_PATH_NOT_FOUND;
  }
  if (pretendedFiles.contains(lowerCasePath)) {
    return ERROR_SUCCESS;
  }
  std::error_code ignored;
  const std::filesystem::path file = HostPath(path);
  if (std::filesystem::is_directory(file, ignored)) {
    return ERROR_ACCESS_DENIED;
  }
  if (std::filesystem::exists(file, ignored)) {
    return ERROR_SUCCESS;
  }
  const std::wstring folder = lowerCasePath.substr(0, lowerCasePath.find_last_of(L'\\') + 1);
  const auto inFolder = pretendedFiles.lower_bound(folder);
  const bool isFolderPretended = inFolder != pretendedFiles.end() && inFolder->starts_with(folder);
  return isFolderPretended || std::filesystem::is_directory(file.parent_path(), ignored)
             ? ERROR_FILE_NOT_FOUND
             : ERROR_PATH_NOT_FOUND;
}

std::vector<UINT8> ApplicationIdOf(std::wstring_view path) {
  const std::wstring file = LowerCase(path);
  const std::wstring name =
      L"\\device\\harddiskvolume" + std::to_wstring(file[0] - L'c' + 1) + file.substr(2) + L'\0';
  std::vector<UINT8> bytes;
  for (const wchar_t character : name) {
    Append(bytes, static_cast<char32_t>(character));
  }
  return bytes;
}

}  // namespace EngineEmulator
