#include "ToolRun.h"

#include <WfpPlatform.h>

#include <system_error>

TemporaryFolder::TemporaryFolder() {
  static int count = 0;
  path_ = std::filesystem::temp_directory_path() /
          ("corvane-tool-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++count));
  std::filesystem::create_directories(path_);
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

void TemporaryFolder::Copy(const std::filesystem::path& from, const std::filesystem::path& to) const {
  std::filesystem::create_directories((path_ / to).parent_path());
  std::filesystem::copy_file(ProgramFolder() / from, path_ / to);
}
