#include "emulator/Control.h"

#include "emulator/ApplicationId.h"
#include "emulator/EntryPoint.h"

namespace EngineEmulator {
namespace {

std::wstring TextOf(const wchar_t* text) { return text == nullptr ? std::wstring() : text; }

std::optional<GUID> KeyOf(const GUID* key) { return key == nullptr ? std::nullopt : std::optional(*key); }

ProviderObject Show(const FWPM_PROVIDER0& provider) {
  return {provider.providerKey, TextOf(provider.displayData.name), TextOf(provider.displayData.description),
          TextOf(provider.serviceName), provider.flags};
}

SublayerObject Show(const FWPM_SUBLAYER0& sublayer) {
  return {sublayer.subLayerKey, TextOf(sublayer.displayData.name), TextOf(sublayer.displayData.description),
          sublayer.flags,       KeyOf(sublayer.providerKey),       sublayer.weight};
}

FilterObject Show(const FWPM_FILTER0& filter) {
  FWPM_FILTER0 asGiven = filter;
  asGiven.flags &= ~UINT32{FWPM_FILTER_FLAG_INDEXED};
  return {filter.filterId,
          filter.filterKey,
          TextOf(filter.displayData.name),
          TextOf(filter.displayData.description),
          filter.flags,
          KeyOf(filter.providerKey),
          filter.layerKey,
          filter.subLayerKey,
          Describe(&asGiven)};
}

template <class Native, class Shown>
void ShowAll(const ObjectStore& objects, std::vector<Shown>& shown) {
  for (const ObjectPtr<Native>& object : objects.OfKind<Native>().All()) {
    if (object->origin.lifetime != Lifetime::BuiltIn) {
      shown.push_back(Show(object->Record()));
    }
  }
}

}  // namespace

void Reset() { ResetEngine(); }

FreshEngine::FreshEngine() { PutEngineAside(); }

FreshEngine::~FreshEngine() { TakeEngineBack(); }

void FailCall(const std::string& function, std::size_t nth, DWORD code) {
  LockEngine().engine.faults.Add(function, nth, code);
}

std::vector<Call> Journal() {
  const LockedEngine locked = LockEngine();
  return {locked.engine.journal.begin(), locked.engine.journal.end()};
}

void ClearJournal() { LockEngine().engine.journal.clear(); }

Snapshot TakeSnapshot() {
  const LockedEngine locked = LockEngine();
  const ObjectStore& objects = locked.engine.NewestObjects();
  Snapshot snapshot;
  ShowAll<FWPM_PROVIDER0>(objects, snapshot.providers);
  ShowAll<FWPM_SUBLAYER0>(objects, snapshot.sublayers);
  ShowAll<FWPM_FILTER0>(objects, snapshot.filters);
  return snapshot;
}

Outstanding CountOutstanding() {
  const LockedEngine locked = LockEngine();
  Outstanding outstanding{locked.engine.Sessions().size(), 0, 0, locked.engine.memory.Count(), 0};
  for (const auto& [handle, session] : locked.engine.Sessions()) {
    outstanding.openTransactions += session.transaction.has_value() ? 1 : 0;
    outstanding.enumHandles += session.CountEnumerations();
    outstanding.subscriptions += session.CountSubscriptions();
  }
  return outstanding;
}

std::vector<std::string> OutstandingMemory() { return LockEngine().engine.memory.Functions(); }

std::string LastRefusal() { return LockEngine().engine.lastRefusal; }

Switches GetSwitches() { return LockEngine().engine.GetSwitches(); }

void SetSwitches(const Switches& switches) { LockEngine().engine.SetSwitches(switches); }

void ExpireTransactions() {
  const LockedEngine locked = LockEngine();
  locked.engine.ExpireTransactions();
  locked.answered.notify_all();
}

DWORD RaiseEvent(const FWPM_NET_EVENT3& event) { return LockEngine().engine.Raise(event); }

std::size_t CountMissedEvents() { return LockEngine().engine.missedEvents; }

void StopEngine() { StopTheEngine(); }

void PretendFileExists(const std::wstring& path) {
  LockEngine().engine.pretendedFiles.insert(LowerCase(path));
}

}  // namespace EngineEmulator
