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

/// The file of a module; of this program for null.
std::filesystem::path ModulePath(HMODULE module);

/// @param path full path, so that nothing of the same name is taken from elsewhere.
/// @throws Failure naming the path.
ModuleHandle LoadModule(const std::filesystem::path& path);

/// @throws Failure naming the function and the module that lacks it.
void* FindAddress(HMODULE module, const char* function);

/// @tparam Function such as decltype(&::EnableDhcp).
/// @throws Failure naming the function and the module that lacks it.
template <typename Function>
Function FindFunction(HMODULE module, const char* function) {
  return reinterpret_cast<Function>(FindAddress(module, function));
}
