// The tool as a program of the system that builds; ToolProcess.cpp has the same for Windows.
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <iterator>
#include <stdexcept>

#include "Text.h"
#include "ToolRun.h"

namespace {

constexpr int kStdin = 0;
constexpr int kStdout = 1;
constexpr int kStderr = 2;

/// Where a child process reads from and writes to.
class Redirection {
 public:
  Redirection(const std::filesystem::path& output, const std::filesystem::path& errors) {
    posix_spawn_file_actions_init(&actions_);
    posix_spawn_file_actions_addopen(&actions_, kStdin, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions_, kStdout, output.c_str(), O_WRONLY | O_CREAT, 0600);
    posix_spawn_file_actions_addopen(&actions_, kStderr, errors.c_str(), O_WRONLY | O_CREAT, 0600);
  }
  ~Redirection() { posix_spawn_file_actions_destroy(&actions_); }
  Redirection(const Redirection&) = delete;
  Redirection& operator=(const Redirection&) = delete;

  [[nodiscard]] const posix_spawn_file_actions_t* Get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_{};
};

/// @returns the exit code; 128 and more for a signal, as a shell has it.
std::uint32_t Wait(pid_t process) {
  int status = 0;
  if (waitpid(process, &status, 0) != process) {
    throw std::runtime_error("cannot wait for corvane-firewall");
  }
  return static_cast<std::uint32_t>(WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status));
}

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

std::filesystem::path ProgramFolder() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

ToolRun RunTool(const std::vector<std::wstring>& arguments, const std::filesystem::path& folder) {
  std::vector<std::string> texts{(folder / "corvane-firewall").string()};
  for (const std::wstring& argument : arguments) {
    texts.push_back(ToUtf8(argument));
  }
  std::vector<char*> pointers;
  for (std::string& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  const TemporaryFolder streams;
  const std::filesystem::path output = streams.Path() / "output";
  const std::filesystem::path errors = streams.Path() / "errors";
  const Redirection redirection(output, errors);
  pid_t process = 0;
  if (posix_spawn(&process, texts[0].c_str(), redirection.Get(), nullptr, pointers.data(), environ) != 0) {
    throw std::runtime_error("cannot start " + texts[0]);
  }
  const std::uint32_t exitCode = Wait(process);
  return {exitCode, ReadFile(output), ReadFile(errors)};
}
