#include "windows/LoadedModule.h"

#include "Failure.h"
#include "Text.h"

std::filesystem::path ModulePath(HMODULE module) {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
    if (length < path.size()) {
      path.resize(length);
      return path;
    }
    path.resize(2 * path.size());
  }
}

ModuleHandle LoadModule(const std::filesystem::path& path) {
  ModuleHandle module(LoadLibraryW(path.c_str()));
  if (module == nullptr) {
    const DWORD code = GetLastError();
    throw Failure(
        "Cannot load " + PathToUtf8(path) + ": " + CodeName(code),
        "Put the file there: the program, Corvane.Native.Firewall.dll and the folder emulator belong "
        "together.");
  }
  return module;
}

void* FindAddress(HMODULE module, const char* function) {
  const FARPROC address = GetProcAddress(module, function);
  if (address == nullptr) {
    throw Failure(PathToUtf8(ModulePath(module)) + " lacks the function " + function,
                  "It is of another version, or not what its name says.");
  }
  return reinterpret_cast<void*>(address);
}
