#pragma once

#include <windows.h>

#include <filesystem>
#include <memory>
#include <string>
#include <type_traits>

struct FreeModule {
  void operator()(HMODULE module) const { FreeLibrary(module); }
};
using ModuleHandle = std::unique_ptr<std::remove_pointer_t<HMODULE>, FreeModule>;

/// The path of a module's file; for null, that of this program.
std::filesystem::path ModulePath(HMODULE module);

/// @param path a full path, so that the loader does not take a file of the same name from another folder.
/// @throws Failure naming the path.
ModuleHandle LoadModule(const std::filesystem::path& path);

/// @throws Failure naming the function and the module that lacks it.
void* FindAddress(HMODULE module, const char* function);

/// @tparam Function such as decltype(&::EnableDhcp).
/// @throws Failure naming the function and the module that lacks it.
template <class Function>
Function FindFunction(HMODULE module, const char* function) {
  return reinterpret_cast<Function>(FindAddress(module, function));
}
