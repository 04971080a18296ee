#include "LoadedModule.h"

std::wstring ProgramFolder() {
  std::wstring path(MAX_PATH, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), MAX_PATH));
  return path.substr(0, path.rfind(L'\\') + 1);
}

LoadedModule::LoadedModule(const std::wstring& path) : module_(LoadLibraryW(path.c_str())) {
  if (module_ == nullptr) {
    throw std::runtime_error("LoadLibrary failed with code " + std::to_string(GetLastError()));
  }
}

void (*LoadedModule::FindAddress(const char* name) const)() {
  const FARPROC address = GetProcAddress(module_.get(), name);
  if (address == nullptr) {
    throw std::runtime_error(std::string(name) + " is not exported");
  }
  return reinterpret_cast<void (*)()>(address);
}
