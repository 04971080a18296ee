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

/// The folder of the test program, which is also that of the tool.
std::filesystem::path ProgramFolder();

/// The tool as a child process, with its three streams in pipes.
class ToolProcess {
 public:
  /// @param arguments none may hold a double quote or end with a backslash.
  explicit ToolProcess(const std::vector<std::wstring>& arguments,
                       const std::filesystem::path& folder = ProgramFolder());

  /// What it writes to stdout until it closes it.
  [[nodiscard]] std::string ReadOutput() const;
  /// What it writes to stderr until it closes it.
  [[nodiscard]] std::string ReadErrors() const;
  /// What it writes to stderr up to a text, or until it closes it.
  [[nodiscard]] std::string ReadErrorsUpTo(const std::string& text) const;
  [[nodiscard]] bool IsRunning() const;
  void PressEnter() const;
  void CloseInput() { input_.reset(); }
  /// Waits for its end. @returns the exit code.
  [[nodiscard]] DWORD Wait() const;

 private:
  Handle process_;
  Handle input_;
  Handle output_;
  Handle errors_;
};

/// One finished run without any input; the texts have "\n" for line ends.
struct ToolRun {
  DWORD exitCode;
  std::string output;
  std::string errors;
};

ToolRun RunTool(const std::vector<std::wstring>& arguments,
                const std::filesystem::path& folder = ProgramFolder());

/// A folder of its own for a test, gone with the object.
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
