#include "ToolProcess.h"

#include <array>
#include <stdexcept>
#include <utility>

namespace {

struct Pipe {
  Handle read;
  Handle write;
};

Pipe MakePipe() {
  HANDLE read = nullptr;
  HANDLE write = nullptr;
  if (!CreatePipe(&read, &write, nullptr, 0)) {
    throw std::runtime_error("no pipe");
  }
  return {Handle(read), Handle(write)};
}

void LetChildInherit(const Handle& handle) {
  SetHandleInformation(handle.get(), HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
}

/// Tries again if the start fails: under Wine this happens very rarely, and the second try succeeds.
PROCESS_INFORMATION Start(const std::wstring& program, std::wstring commandLine, STARTUPINFOW& startup) {
  PROCESS_INFORMATION process{};
  for (int attempt = 0; attempt < 3; ++attempt) {
    if (CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                       &startup, &process)) {
      return process;
    }
  }
  throw std::runtime_error("cannot start corvane-firewall.exe: error " + std::to_string(GetLastError()));
}

std::string ReadSome(const Handle& pipe) {
  std::array<char, 4096> buffer;
  DWORD size = 0;
  if (!ReadFile(pipe.get(), buffer.data(), static_cast<DWORD>(buffer.size()), &size, nullptr)) {
    return {};
  }
  return {buffer.data(), size};
}

std::string ReadUpTo(const Handle& pipe, const std::string& text) {
  std::string all;
  for (std::string some = ReadSome(pipe); !some.empty(); some = ReadSome(pipe)) {
    all += some;
    if (!text.empty() && all.find(text) != std::string::npos) {
      break;
    }
  }
  std::erase(all, '\r');
  return all;
}

}  // namespace

std::filesystem::path ProgramFolder() {
  std::array<wchar_t, 1024> path;
  const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
  return std::filesystem::path(std::wstring(path.data(), length)).parent_path();
}

ToolProcess::ToolProcess(const std::vector<std::wstring>& arguments, const std::filesystem::path& folder) {
  const std::wstring program = (folder / L"corvane-firewall.exe").native();
  std::wstring commandLine = L'"' + program + L'"';
  for (const std::wstring& argument : arguments) {
    commandLine += L" \"" + argument + L'"';
  }
  Pipe input = MakePipe();
  Pipe output = MakePipe();
  Pipe errors = MakePipe();
  LetChildInherit(input.read);
  LetChildInherit(output.write);
  LetChildInherit(errors.write);

  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = input.read.get();
  startup.hStdOutput = output.write.get();
  startup.hStdError = errors.write.get();
  const PROCESS_INFORMATION process = Start(program, commandLine, startup);
  const Handle thread(process.hThread);
  process_.reset(process.hProcess);
  input_ = std::move(input.write);
  output_ = std::move(output.read);
  errors_ = std::move(errors.read);
}

std::string ToolProcess::ReadOutput() const { return ReadUpTo(output_, ""); }

std::string ToolProcess::ReadErrors() const { return ReadUpTo(errors_, ""); }

std::string ToolProcess::ReadErrorsUpTo(const std::string& text) const { return ReadUpTo(errors_, text); }

bool ToolProcess::IsRunning() const { return WaitForSingleObject(process_.get(), 0) == WAIT_TIMEOUT; }

void ToolProcess::PressEnter() const {
  DWORD written = 0;
  WriteFile(input_.get(), "\r\n", 2, &written, nullptr);
}

DWORD ToolProcess::Wait() const {
  WaitForSingleObject(process_.get(), INFINITE);
  DWORD exitCode = 0;
  GetExitCodeProcess(process_.get(), &exitCode);
  return exitCode;
}

ToolRun RunTool(const std::vector<std::wstring>& arguments, const std::filesystem::path& folder) {
  ToolProcess process(arguments, folder);
  process.CloseInput();
  ToolRun run{};
  run.output = process.ReadOutput();
  run.errors = process.ReadErrors();
  run.exitCode = process.Wait();
  return run;
}
