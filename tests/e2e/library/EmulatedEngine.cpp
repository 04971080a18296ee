#include "EmulatedEngine.h"

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
