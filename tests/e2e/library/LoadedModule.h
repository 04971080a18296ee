#pragma once

#include <WfpPlatform.h>

#include <memory>
#include <stdexcept>
#include <string>

/// The folder of the running program, with a backslash at the end.
std::wstring ProgramFolder();

/// A DLL that the destructor unloads.
class LoadedModule {
 public:
  /// @throws std::runtime_error when it does not load.
  explicit LoadedModule(const std::wstring& path);

  [[nodiscard]] HMODULE Get() const { return module_.get(); }

  /// The exported function of that name.
  /// @throws std::runtime_error when there is none.
  template <class Function>
  [[nodiscard]] Function Find(const char* name) const {
    return reinterpret_cast<Function>(FindAddress(name));
  }

 private:
  struct Unload {
    using pointer = HMODULE;
    void operator()(HMODULE module) const { FreeLibrary(module); }
  };

  void (*FindAddress(const char* name) const)();

  std::unique_ptr<HMODULE, Unload> module_;
};
