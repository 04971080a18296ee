#include "emulator/ApplicationId.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

namespace EngineEmulator {
namespace {

/// Upper-case letters, all or every other character of a range, and the way to their lower case.
struct UpperCaseRange {
  int first;
  int last;
  int step;
  int distance;
};

constexpr UpperCaseRange kUpperCase[]{
    {'A', 'Z', 1, 32},     {0xC0, 0xD6, 1, 32},    {0xD8, 0xDE, 1, 32},    {0x100, 0x12E, 2, 1},
    {0x132, 0x136, 2, 1},  {0x139, 0x147, 2, 1},   {0x14A, 0x176, 2, 1},   {0x178, 0x178, 1, -121},
    {0x179, 0x17D, 2, 1},  {0x386, 0x386, 1, 38},  {0x388, 0x38A, 1, 37},  {0x38C, 0x38C, 1, 64},
    {0x38E, 0x38F, 1, 63}, {0x391, 0x3A1, 1, 32},  {0x3A3, 0x3AB, 1, 32},  {0x400, 0x40F, 1, 80},
    {0x410, 0x42F, 1, 32}, {0x460, 0x480, 2, 1},   {0x48A, 0x4BE, 2, 1},   {0x4D0, 0x52E, 2, 1},
    {0x531, 0x556, 1, 48}, {0x1E00, 0x1E94, 2, 1}, {0x1EA0, 0x1EFE, 2, 1}, {0xFF21, 0xFF3A, 1, 32},
};

wchar_t LowerCaseOf(wchar_t character) {
  const int code = character;
  for (const UpperCaseRange& range : kUpperCase) {
    if (code >= range.first && code <= range.last && (code - range.first) % range.step == 0) {
      return static_cast<wchar_t>(code + range.distance);
    }
  }
  return character;
}

bool IsFullPath(std::wstring_view lowerCasePath) {
  return lowerCasePath.size() > 3 && lowerCasePath[0] >= L'c' && lowerCasePath[0] <= L'z' &&
         lowerCasePath.substr(1, 2) == L":\\";
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
  const std::filesystem::path file(path);
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
    bytes.push_back(static_cast<UINT8>(character & 0xFF));
    bytes.push_back(static_cast<UINT8>((character >> 8) & 0xFF));
  }
  return bytes;
}

}  // namespace EngineEmulator
