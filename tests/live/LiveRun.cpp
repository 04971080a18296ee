#include "live/LiveRun.h"

#include <windows.h>

#include <array>
#include <iterator>
#include <utility>

namespace {

ToolRun Run(std::vector<std::wstring> arguments, std::vector<std::wstring> steps) {
  arguments.insert(arguments.end(), std::make_move_iterator(steps.begin()),
                   std::make_move_iterator(steps.end()));
  return RunTool(arguments);
}

}  // namespace

LiveRun& LiveRun::Get() {
  static LiveRun run;
  return run;
}

ToolRun LiveRun::OnTheEngine(std::vector<std::wstring> steps) const {
  if (isEmulated) {
    return OnAnEmulatedOne(start, std::move(steps));
  }
  return Run({L"--engine", L"system", L"--no-hold"}, std::move(steps));
}

ToolRun LiveRun::OnAnEmulatedOne(const std::filesystem::path& dump, std::vector<std::wstring> steps) {
  return Run({L"--engine", L"emulated", L"--start", dump.wstring()}, std::move(steps));
}

std::filesystem::path LiveRun::ClientLibrary() const {
  if (isEmulated) {
    return EmulatedClientLibrary();
  }
  std::array<wchar_t, MAX_PATH> system;
  const UINT length = GetSystemDirectoryW(system.data(), static_cast<UINT>(system.size()));
  return std::filesystem::path(std::wstring(system.data(), length)) / L"fwpuclnt.dll";
}

std::filesystem::path LiveRun::EmulatedClientLibrary() {
  return ProgramFolder() / L"emulator" / L"fwpuclnt.dll";
}
