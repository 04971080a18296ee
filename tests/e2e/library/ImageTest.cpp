#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>

#include "LibraryTest.h"
#include "PortableExecutable.h"

namespace {

using testing::AnyOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

class LibraryImage : public LibraryTest {};

std::wstring PathOf(HMODULE module) {
  std::wstring path(MAX_PATH, L'\0');
  path.resize(GetModuleFileNameW(module, path.data(), MAX_PATH));
  return path;
}

TEST_F(LibraryImage, ExportsTheFunctionsUndecorated) {
  Texts names = ExportedNames(library_->Get());
  const auto isDecorated = [](const std::string& name) {
    return name.starts_with("_Z") || name.starts_with('?');
  };
  std::erase_if(names, isDecorated);
  EXPECT_THAT(names, ElementsAre("DisableDhcp", "DisableInternet", "DisableLeakProtection",
                                 "DisableLocalNetwork", "DisableSkeinFirewallRules", "EnableDhcp",
                                 "EnableInternet", "EnableLeakProtection", "EnableLocalNetwork",
                                 "EnableSkeinFirewallRules", "GetErrorText", "Initialize", "IsDhcpEnabled",
                                 "IsInternetEnabled", "IsLeakProtectionEnabled", "IsLocalNetworkEnabled"));
}

TEST_F(LibraryImage, ImportsOnlySystemLibraries) {
  const Texts modules = ImportedModules(library_->Get());
  EXPECT_THAT(modules, Contains("fwpuclnt.dll"));
  EXPECT_THAT(modules,
              Each(AnyOf("fwpuclnt.dll", "iphlpapi.dll", "setupapi.dll", "advapi32.dll", "ws2_32.dll",
                         "kernel32.dll", "ole32.dll", "msvcrt.dll", StartsWith("api-ms-win-crt-"),
                         StartsWith("msvcp140"), StartsWith("vcruntime140"))));
}

TEST_F(LibraryImage, LiesInARandomPlaceOfTheWholeAddressSpace) {
  EXPECT_TRUE(HardeningFlags(library_->Get()) & IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE);
  EXPECT_TRUE(HardeningFlags(library_->Get()) & IMAGE_DLLCHARACTERISTICS_HIGH_ENTROPY_VA);
  EXPECT_TRUE(CanBeMoved(library_->Get()));
}

TEST_F(LibraryImage, ExecutesCodeOnly) {
  EXPECT_TRUE(HardeningFlags(library_->Get()) & IMAGE_DLLCHARACTERISTICS_NX_COMPAT);
  EXPECT_THAT(WritableExecutableSections(library_->Get()), IsEmpty());
}

TEST_F(LibraryImage, StaysSmall) { EXPECT_LT(std::filesystem::file_size(PathOf(library_->Get())), 500'000); }

TEST_F(LibraryImage, CarriesItsVersion) {
  const std::wstring path = PathOf(library_->Get());
  std::vector<char> resource(GetFileVersionInfoSizeW(path.c_str(), nullptr));
  ASSERT_TRUE(GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(resource.size()), resource.data()));

  void* found = nullptr;
  UINT size = 0;
  ASSERT_TRUE(VerQueryValueW(resource.data(), L"\\", &found, &size));
  const auto* version = static_cast<const VS_FIXEDFILEINFO*>(found);
  const std::string number = std::to_string(HIWORD(version->dwFileVersionMS)) + "." +
                             std::to_string(LOWORD(version->dwFileVersionMS)) + "." +
                             std::to_string(HIWORD(version->dwFileVersionLS));
  EXPECT_EQ(number, CORVANE_VERSION);
  EXPECT_EQ(version->dwProductVersionMS, version->dwFileVersionMS);
  EXPECT_EQ(version->dwProductVersionLS, version->dwFileVersionLS);

  ASSERT_TRUE(VerQueryValueW(resource.data(), L"\\StringFileInfo\\040904B0\\ProductName", &found, &size));
  EXPECT_STREQ(static_cast<const wchar_t*>(found), L"Corvane.Native.Firewall");
}

}  // namespace
