#pragma once

#include <windows.h>

#include <memory>
#include <type_traits>

#include "ToolRun.h"

struct CloseHandleOf {
  void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<std::remove_pointer_t<HANDLE>, CloseHandleOf>;

/// The tool as a child process, with pipes for stdin, stdout and stderr.
class ToolProcess {
 public:
  /// @param arguments must not contain a double quote or end with a backslash.
  explicit ToolProcess(const std::vector<std::wstring>& arguments,
                       const std::filesystem::path& folder = ProgramFolder());

  /// Reads stdout until the tool closes it.
  [[nodiscard]] std::string ReadOutput() const;
  /// Reads stderr until the tool closes it.
  [[nodiscard]] std::string ReadErrors() const;
  /// Reads stderr up to a text, or until the tool closes it.
  [[nodiscard]] std::string ReadErrorsUpTo(const std::string& text) const;
  [[nodiscard]] bool IsRunning() const;
  void PressEnter() const;
  void CloseInput() { input_.reset(); }
  /// Waits until the process ends. @returns its exit code.
  [[nodiscard]] DWORD Wait() const;

 private:
  Handle process_;
  Handle input_;
  Handle output_;
  Handle errors_;
};
