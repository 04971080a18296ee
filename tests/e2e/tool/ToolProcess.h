#pragma once

#include <windows.h>

#include <filesystem>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

struct CloseHandleOf {
  void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<std::remove_pointer_t<HANDLE>, CloseHandleOf>;

/// The folder of the test program, in which the tool is too.
std::filesystem::path ProgramFolder();

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

/// The result of a run without input. Lines end with "\n".
struct ToolRun {
  DWORD exitCode;
  std::string output;
  std::string errors;
};

ToolRun RunTool(const std::vector<std::wstring>& arguments,
                const std::filesystem::path& folder = ProgramFolder());

/// A new folder for a test, which the destructor removes.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& Path() const { return path_; }
  /// Copies a file of the program folder. @param to relative to this folder.
  void Copy(const std::filesystem::path& from, const std::filesystem::path& to) const;

 private:
  std::filesystem::path path_;
};
