#include "PortableExecutable.h"

#include <algorithm>
#include <cctype>
#include <span>

namespace {

template <class Record>
const Record* At(HMODULE module, std::size_t offset) {
  return reinterpret_cast<const Record*>(reinterpret_cast<const char*>(module) + offset);
}

const IMAGE_NT_HEADERS64& Headers(HMODULE module) {
  return *At<IMAGE_NT_HEADERS64>(module, static_cast<std::size_t>(At<IMAGE_DOS_HEADER>(module, 0)->e_lfanew));
}

const IMAGE_DATA_DIRECTORY& Directory(HMODULE module, std::size_t index) {
  return Headers(module).OptionalHeader.DataDirectory[index];
}

std::span<const IMAGE_SECTION_HEADER> Sections(HMODULE module) {
  const IMAGE_NT_HEADERS64& headers = Headers(module);
  return {IMAGE_FIRST_SECTION(&headers), headers.FileHeader.NumberOfSections};
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

WORD HardeningFlags(HMODULE module) { return Headers(module).OptionalHeader.DllCharacteristics; }

bool CanBeMoved(HMODULE module) {
  return (Headers(module).FileHeader.Characteristics & IMAGE_FILE_RELOCS_STRIPPED) == 0 &&
         Directory(module, IMAGE_DIRECTORY_ENTRY_BASERELOC).Size > 0;
}

std::vector<std::string> WritableExecutableSections(HMODULE module) {
  constexpr DWORD kBoth = IMAGE_SCN_MEM_WRITE | IMAGE_SCN_MEM_EXECUTE;
  std::vector<std::string> names;
  for (const IMAGE_SECTION_HEADER& section : Sections(module)) {
    if ((section.Characteristics & kBoth) == kBoth) {
      const auto* name = reinterpret_cast<const char*>(section.Name);
      names.emplace_back(name, std::find(name, name + IMAGE_SIZEOF_SHORT_NAME, '\0'));
    }
  }
  return names;
}
