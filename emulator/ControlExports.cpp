#include "emulator/ControlExports.h"

#include <algorithm>
#include <cstring>

#include "catalog/Names.h"
#include "emulator/Control.h"
#include "emulator/Utf8.h"

namespace {

using namespace EngineEmulator;

std::string Quoted(const std::wstring& text) { return '"' + Utf8(text) + '"'; }

std::string OptionalKey(const std::optional<GUID>& key) {
  return key.has_value() ? Catalog::FormatGuid(*key) : "-";
}

std::string Line(const Call& call) {
  return call.function + '(' + call.arguments + ") -> " + Catalog::ErrorName(call.result) + '\n';
}

std::string Line(const ProviderObject& provider) {
  return "provider " + Catalog::FormatGuid(provider.key) + " flags " + std::to_string(provider.flags) + ' ' +
         Quoted(provider.name) + ' ' + Quoted(provider.description) + " service " +
         Quoted(provider.serviceName) + '\n';
}

std::string Line(const SublayerObject& sublayer) {
  return "sublayer " + Catalog::FormatGuid(sublayer.key) + " flags " + std::to_string(sublayer.flags) +
         " weight " + std::to_string(sublayer.weight) + " provider " + OptionalKey(sublayer.providerKey) +
         ' ' + Quoted(sublayer.name) + ' ' + Quoted(sublayer.description) + '\n';
}

std::string Line(const FilterObject& filter) {
  return "filter " + std::to_string(filter.id) + ' ' + Catalog::FormatGuid(filter.key) + " sublayer " +
         Catalog::FormatGuid(filter.subLayerKey) + " provider " + OptionalKey(filter.providerKey) + ' ' +
         Quoted(filter.name) + ' ' + Quoted(filter.description) + ' ' + filter.text + '\n';
}

template <class... Lists>
std::string Lines(const Lists&... lists) {
  std::string text;
  const auto append = [&](const auto& list) {
    for (const auto& entry : list) {
      text += Line(entry);
    }
  };
  (append(lists), ...);
  return text;
}

std::size_t Give(const std::string& text, char* buffer, std::size_t size) {
  if (size != 0) {
    const std::size_t length = std::min(text.size(), size - 1);
    std::memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
  }
  return text.size() + 1;
}

}  // namespace

extern "C" {

void EngineEmulatorReset(void) { Reset(); }

void EngineEmulatorFailCall(const char* function, size_t nth, DWORD code) { FailCall(function, nth, code); }

void EngineEmulatorClearJournal(void) { ClearJournal(); }

size_t EngineEmulatorJournalText(char* buffer, size_t size) { return Give(Lines(Journal()), buffer, size); }

size_t EngineEmulatorSnapshotText(char* buffer, size_t size) {
  const Snapshot snapshot = TakeSnapshot();
  return Give(Lines(snapshot.providers, snapshot.sublayers, snapshot.filters), buffer, size);
}

void EngineEmulatorCountOutstanding(EngineEmulatorOutstanding* outstanding) {
  const Outstanding counts = CountOutstanding();
  *outstanding = {counts.sessions, counts.openTransactions, counts.enumHandles, counts.memoryBlocks,
                  counts.subscriptions};
}

size_t EngineEmulatorOutstandingMemoryText(char* buffer, size_t size) {
  std::string text;
  for (const std::string& function : OutstandingMemory()) {
    text += function + '\n';
  }
  return Give(text, buffer, size);
}

size_t EngineEmulatorLastRefusal(char* buffer, size_t size) { return Give(LastRefusal(), buffer, size); }

int EngineEmulatorSetRule(const char* name, UINT32 value) {
  if (std::string_view(name) == "lenient") {
    SetSwitches(value == 0 ? Switches{} : LenientSwitches());
    return 1;
  }
  const auto member = FindSwitch(name);
  if (member == nullptr) {
    return 0;
  }
  Switches switches = GetSwitches();
  switches.*member = value;
  SetSwitches(switches);
  return 1;
}

void EngineEmulatorExpireTransactions(void) { ExpireTransactions(); }

DWORD EngineEmulatorRaiseEvent(const struct FWPM_NET_EVENT3_* event) {
  return event == nullptr ? static_cast<DWORD>(FWP_E_NULL_POINTER) : RaiseEvent(*event);
}

size_t EngineEmulatorCountMissedEvents(void) { return CountMissedEvents(); }

void EngineEmulatorStopEngine(void) { StopEngine(); }

void EngineEmulatorPretendFileExists(const wchar_t* path) { PretendFileExists(path); }

}  // extern "C"
