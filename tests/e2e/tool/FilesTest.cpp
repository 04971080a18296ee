#include <gmock/gmock.h>

#include <algorithm>
#include <cctype>
#include <fstream>

#include "EmulatedTool.h"
#include "ToolProcess.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Not;

bool RunsUnderWine() { return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr; }

/// The modules that a program imports, in lower case.
std::vector<std::string> ImportsOf(const std::filesystem::path& program) {
  const std::unique_ptr<std::remove_pointer_t<HMODULE>, decltype(&FreeLibrary)> image(
      LoadLibraryExW(program.c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES), &FreeLibrary);
  const auto* base = reinterpret_cast<const unsigned char*>(image.get());
  const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
  const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dos->e_lfanew);
  const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  const auto* import = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
  std::vector<std::string> names;
  for (; import->Name != 0; ++import) {
    std::string name = reinterpret_cast<const char*>(base + import->Name);
    std::ranges::transform(name, name.begin(), [](char c) { return static_cast<char>(std::tolower(c)); });
    names.push_back(name);
  }
  return names;
}

TEST(Files, ToolDoesNotImportTheEnginesClientLibrary) {
  const std::vector<std::string> imports = ImportsOf(ProgramFolder() / L"corvane-firewall.exe");
  EXPECT_THAT(imports, IsSupersetOf({"kernel32.dll", "iphlpapi.dll", "setupapi.dll"}));
  EXPECT_THAT(imports, Not(testing::Contains("fwpuclnt.dll")));
}

TEST(Files, MissingLibraryIsNamedWithItsPath) {
  const TemporaryFolder folder;
  folder.Copy("corvane-firewall.exe", "corvane-firewall.exe");
  const ToolRun run = RunTool({L"status"}, folder.Path());
  EXPECT_EQ(run.exitCode, 1u);
  EXPECT_EQ(run.output, "");
  EXPECT_THAT(run.errors, AllOf(HasSubstr("error: Cannot load "),
                                HasSubstr((folder.Path() / "Corvane.Native.Firewall.dll").string()),
                                HasSubstr(": 0x0000007e\nhint: Put the file there")));
}

TEST(Files, MissingEmulatorIsNamedWithItsPath) {
  const TemporaryFolder folder;
  folder.Copy("corvane-firewall.exe", "corvane-firewall.exe");
  folder.Copy("Corvane.Native.Firewall.dll", "Corvane.Native.Firewall.dll");
  const ToolRun run = RunTool({L"--engine", L"emulated", L"status"}, folder.Path());
  EXPECT_EQ(run.exitCode, 1u);
  EXPECT_EQ(run.output, "");
  EXPECT_THAT(run.errors, AllOf(HasSubstr("error: Cannot load "),
                                HasSubstr((folder.Path() / "emulator" / "fwpuclnt.dll").string())));
}

TEST(Files, MissingFileIsInTheJsonDocumentToo) {
  const TemporaryFolder folder;
  folder.Copy("corvane-firewall.exe", "corvane-firewall.exe");
  const ToolRun run = RunTool({L"--json", L"status"}, folder.Path());
  EXPECT_EQ(run.exitCode, 1u);
  const ParsedJson document = DocumentOf(run);
  EXPECT_EQ(document["ok"], false);
  EXPECT_EQ(document["steps"], ParsedJson::array());
  EXPECT_THAT(document["error"]["text"].get<std::string>(), testing::StartsWith("Cannot load "));
}

TEST(Files, LibraryWithoutItsFunctionsIsNamedWithTheFirstMissing) {
  const TemporaryFolder folder;
  folder.Copy("corvane-firewall.exe", "corvane-firewall.exe");
  folder.Copy("engine_without_functions.dll", "Corvane.Native.Firewall.dll");
  const ToolRun run = RunTool({L"status"}, folder.Path());
  EXPECT_EQ(run.exitCode, 1u);
  EXPECT_THAT(run.errors, HasSubstr("Corvane.Native.Firewall.dll lacks the function GetErrorText"));
}

TEST(Files, EngineWithoutItsFunctionsIsAMessage) {
  if (!RunsUnderWine()) {
    GTEST_SKIP() << "Windows does not load a library whose imports are missing.";
  }
  const TemporaryFolder folder;
  folder.Copy("corvane-firewall.exe", "corvane-firewall.exe");
  folder.Copy("Corvane.Native.Firewall.dll", "Corvane.Native.Firewall.dll");
  folder.Copy("engine_without_functions.dll", "emulator/fwpuclnt.dll");
  const ToolRun run = RunTool({L"--engine", L"emulated", L"list"}, folder.Path());
  EXPECT_EQ(run.exitCode, 1u);
  EXPECT_THAT(run.errors, AllOf(testing::StartsWith("list failed: "),
                                HasSubstr("fwpuclnt.dll lacks the function FwpmEngineOpen0")));
}

TEST(Files, DumpThatAnotherProgramHoldsIsAMessage) {
  const TemporaryFolder folder;
  const std::filesystem::path file = folder.Path() / "machine.xml";
  std::ofstream(file) << "<wfpdiag/>";
  const Handle alone(CreateFileW(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
  const ToolRun run = RunTool({L"--engine", file.wstring(), L"list"});
  EXPECT_EQ(run.exitCode, 2u);
  EXPECT_THAT(run.errors, HasSubstr("machine.xml: cannot be opened; expected the right to read it\nhint: "));
}

class SystemWithoutEngine : public testing::TestWithParam<const wchar_t*> {};

TEST_P(SystemWithoutEngine, IsAFailureWithAHintAtTheEmulatedOne) {
  if (!RunsUnderWine()) {
    GTEST_SKIP() << "Windows has a filtering engine.";
  }
  const ToolRun run = RunTool({L"--no-hold", GetParam()});
  EXPECT_EQ(run.exitCode, 1u);
  EXPECT_THAT(run.errors,
              AllOf(HasSubstr("RPC_S_CANNOT_SUPPORT (0x000006e4): "),
                    HasSubstr("hint: This system has no filtering engine."), HasSubstr("--engine emulated")));
}

INSTANTIATE_TEST_SUITE_P(Files, SystemWithoutEngine, testing::Values(L"enable-dhcp", L"list"));

}  // namespace
