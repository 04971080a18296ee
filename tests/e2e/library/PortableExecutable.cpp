#include "PortableExecutable.h"

#include <algorithm>
#include <cctype>

namespace {

template <typename Record>
const Record* At(HMODULE module, std::size_t offset) {
  return reinterpret_cast<const Record*>(reinterpret_cast<const char*>(module) + offset);
}

const IMAGE_DATA_DIRECTORY& Directory(HMODULE module, std::size_t index) {
  const auto header = static_cast<std::size_t>(At<IMAGE_DOS_HEADER>(module, 0)->e_lfanew);
  return At<IMAGE_NT_HEADERS64>(module, header)->OptionalHeader.DataDirectory[index];
}

}  // namespace

std::vector<std::string> ExportedNames(HMODULE module) {
  const auto* exports =
      At<IMAGE_EXPORT_DIRECTORY>(module, Directory(module, IMAGE_DIRECTORY_ENTRY_EXPORT).VirtualAddress);
  const auto* names = At<DWORD>(module, exports->AddressOfNames);
  std::vector<std::string> result;
  for (DWORD i = 0; i < exports->NumberOfNames; ++i) {
    result.emplace_back(At<char>(module, names[i]));
  }
  return result;
}

std::vector<std::string> ImportedModules(HMODULE module) {
  const auto* entry =
      At<IMAGE_IMPORT_DESCRIPTOR>(module, Directory(module, IMAGE_DIRECTORY_ENTRY_IMPORT).VirtualAddress);
  std::vector<std::string> result;
  for (; entry->Name != 0; ++entry) {
    std::string name = At<char>(module, entry->Name);
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    result.push_back(name);
  }
  return result;
}
