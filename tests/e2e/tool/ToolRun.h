#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

/// The folder of the test program, in which the tool is too.
std::filesystem::path ProgramFolder();

/// The result of a run without input. Lines end with "\n".
struct ToolRun {
  std::uint32_t exitCode;
  std::string output;
  std::string errors;
};

/// @param arguments must not contain a double quote or end with a backslash.
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
