#include "EmulatedEngine.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

Texts Lines(size_t (*give)(char* buffer, size_t size)) {
  std::string text(give(nullptr, 0), '\0');
  give(text.data(), text.size());
  text.pop_back();  // the terminator
  std::istringstream stream(text);
  Texts lines;
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(line);
  }
  return lines;
}

}  // namespace

EmulatedEngine& EmulatedEngine::Get() {
  static EmulatedEngine engine;
  return engine;
}

EmulatedEngine::EmulatedEngine()
    : module_(ProgramFolder() + L"emulator\\fwpuclnt.dll"),
      Reset(module_.Find<decltype(&EngineEmulatorReset)>("EngineEmulatorReset")),
      FailCall(module_.Find<decltype(&EngineEmulatorFailCall)>("EngineEmulatorFailCall")),
      ClearJournal(module_.Find<decltype(&EngineEmulatorClearJournal)>("EngineEmulatorClearJournal")),
      PretendFileExists(
          module_.Find<decltype(&EngineEmulatorPretendFileExists)>("EngineEmulatorPretendFileExists")) {}

Texts EmulatedEngine::Journal() const {
  Texts functions = Lines(module_.Find<decltype(&EngineEmulatorJournalText)>("EngineEmulatorJournalText"));
  for (std::string& line : functions) {
    line.resize(line.find('('));
  }
  return functions;
}

Texts EmulatedEngine::Snapshot() const {
  return Lines(module_.Find<decltype(&EngineEmulatorSnapshotText)>("EngineEmulatorSnapshotText"));
}

Texts EmulatedEngine::Filters() const {
  Texts lines = Snapshot();
  std::erase_if(lines, [](const std::string& line) { return !line.starts_with("filter "); });
  return lines;
}

EngineEmulatorOutstanding EmulatedEngine::CountOutstanding() const {
  EngineEmulatorOutstanding outstanding{};
  module_.Find<decltype(&EngineEmulatorCountOutstanding)>("EngineEmulatorCountOutstanding")(&outstanding);
  return outstanding;
}

std::shared_ptr<void> EmulatedEngine::OccupySublayer(const GUID& key) const {
  FWPM_SESSION0 options{};
  options.flags = FWPM_SESSION_FLAG_DYNAMIC;
  HANDLE handle = nullptr;
  EXPECT_EQ(module_.Find<decltype(&FwpmEngineOpen0)>("FwpmEngineOpen0")(nullptr, RPC_C_AUTHN_WINNT, nullptr,
                                                                        &options, &handle),
            ERROR_SUCCESS);
  std::shared_ptr<void> session(handle, module_.Find<decltype(&FwpmEngineClose0)>("FwpmEngineClose0"));

  std::wstring name = L"Another program's";
  FWPM_SUBLAYER0 sublayer{};
  sublayer.subLayerKey = key;
  sublayer.displayData.name = name.data();
  EXPECT_EQ(module_.Find<decltype(&FwpmSubLayerAdd0)>("FwpmSubLayerAdd0")(handle, &sublayer, nullptr),
            ERROR_SUCCESS);
  return session;
}
