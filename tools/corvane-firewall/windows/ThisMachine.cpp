#include "ThisMachine.h"

#include "Text.h"
#include "calibrate/SocketNetwork.h"
#include "windows/LoadedModule.h"

namespace {

/// What GetVersionEx tells depends on a program's manifest; this does not.
std::string VersionOfKernel() {
  const auto ask =
      FindFunction<LONG(WINAPI*)(OSVERSIONINFOW*)>(GetModuleHandleW(L"ntdll.dll"), "RtlGetVersion");
  OSVERSIONINFOW version{};
  version.dwOSVersionInfoSize = sizeof(version);
  ask(&version);
  return std::to_string(version.dwMajorVersion) + "." + std::to_string(version.dwMinorVersion) + "." +
         std::to_string(version.dwBuildNumber);
}

/// The number of the last update, with a dot before it; empty if it is not known.
std::string Revision() {
  DWORD revision = 0;
  DWORD size = sizeof(revision);
  const LSTATUS result = RegGetValueW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion",
                                      L"UBR", RRF_RT_REG_DWORD, nullptr, &revision, &size);
  return result == ERROR_SUCCESS ? "." + std::to_string(revision) : "";
}

}  // namespace

std::string WindowsBuild() { return VersionOfKernel() + Revision(); }

std::string OwnProgram() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    if (length < path.size()) {
      path.resize(length);
      return ToUtf8(path);
    }
    path.resize(path.size() * 2);
  }
}

std::unique_ptr<Calibrate::Network> RealNetwork() { return std::make_unique<Calibrate::SocketNetwork>(); }
