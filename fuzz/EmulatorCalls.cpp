// Clients that call the emulated engine with random arguments, in random order. In the end all sessions
// close.
#include <iterator>
#include <string>
#include <vector>

#include "catalog/Describe.h"
#include "emulator/Control.h"
#include "fuzz/HostileRecords.h"
#include "fuzz/Input.h"
#include "fuzz/ObjectCalls.h"

namespace {

using Fuzz::HostileRecords;
using Fuzz::Input;
using Fuzz::Require;

constexpr int kMostCalls = 128;

template <class Change>
void CALLBACK IgnoreChange(void*, const Change*) {}

/// Reads everything that a record of the engine points at.
void ReadRecord(const FWPM_FILTER0& filter) { Catalog::DescribeFilter(filter); }

template <class Event>
void ReadEvent(const Event& event) {
  const FWP_BYTE_BLOB& app = event.header.appId;
  const std::vector<UINT8> copy(app.data, app.data + app.size);
}
void ReadRecord(const FWPM_NET_EVENT0& event) { ReadEvent(event); }
void ReadRecord(const FWPM_NET_EVENT3& event) { ReadEvent(event); }

template <class Record>
void ReadRecord(const Record& record) {
  for (const wchar_t* text : {record.displayData.name, record.displayData.description}) {
    if (text != nullptr) {
      const std::wstring copy(text);
    }
  }
}

class Clients {
 public:
  explicit Clients(Input& input) : input_(input), records_(input) {
    EngineEmulator::Reset();
    // All clients run on one thread, so no other can release the lock while a client waits for it.
    EngineEmulator::Switches switches =
        input.TakeFlag() ? EngineEmulator::LenientSwitches() : EngineEmulator::Switches();
    switches.lockWaitMilliseconds = 1;
    EngineEmulator::SetSwitches(switches);
  }

  void Run() {
    constexpr void (Clients::*kCalls[])(){
        &Clients::Open,          &Clients::Close,         &Clients::Begin,
        &Clients::Commit,        &Clients::Abort,         &Clients::AddProvider,
        &Clients::AddSublayer,   &Clients::AddCallout,    &Clients::AddFilter,
        &Clients::CallProviders, &Clients::CallSublayers, &Clients::CallCallouts,
        &Clients::CallFilters,   &Clients::CallLayers,    &Clients::EnumerateSessions,
        &Clients::GetById,       &Clients::DeleteById,    &Clients::GetOption,
        &Clients::SetOption,     &Clients::GetAppId,      &Clients::Free,
        &Clients::AddContext,    &Clients::CallContexts,  &Clients::CallEvents};
    for (int i = 0; i < kMostCalls && !input_.IsEmpty(); ++i) {
      (this->*input_.TakeOneOf(kCalls))();
    }
    for (void* block : blocks_) {
      FwpmFreeMemory0(&block);
    }
    for (const HANDLE session : sessions_) {
      FwpmEngineClose0(session);
    }
    const EngineEmulator::Outstanding outstanding = EngineEmulator::CountOutstanding();
    Require(outstanding.sessions == 0, "every session is closed");
    Require(outstanding.openTransactions == 0, "a transaction ends with its session");
    Require(outstanding.enumHandles == 0, "an enumeration ends with its session");
    Require(outstanding.memoryBlocks == 0, "all memory is given back");
  }

 private:
  /// A handle of the right or another kind, open or closed, or a random number.
  HANDLE Handle(const std::vector<HANDLE>& likely) {
    const std::size_t index = input_.TakeIndex(likely.size() + 2);
    if (index < likely.size()) {
      return likely[index];
    }
    const auto& any = index == likely.size() ? sessions_ : handles_;
    return any.empty() ? reinterpret_cast<HANDLE>(std::uintptr_t{input_.Take<std::uint8_t>()}) : any.back();
  }
  HANDLE Session() { return Handle(sessions_); }
  HANDLE OtherHandle() { return Handle(handles_); }

  /// A pointer for a result; sometimes null.
  template <class T>
  T* Out(T& place) {
    return input_.TakeIndex(8) == 7 ? nullptr : &place;
  }

  void KeepBlock(void* block) {
    if (block != nullptr) {
      blocks_.push_back(block);
    }
  }

  void KeepHandle(HANDLE handle) {
    if (handle != nullptr) {
      handles_.push_back(handle);
    }
  }

  void Open() {
    constexpr UINT32 kServices[]{RPC_C_AUTHN_WINNT, RPC_C_AUTHN_DEFAULT, 0};
    HANDLE session = nullptr;
    const wchar_t* server = input_.TakeIndex(8) == 7 ? records_.Text() : nullptr;
    const UINT32 service = input_.TakeOneOf(kServices);
    const auto* record = records_.Pointer<FWPM_SESSION0>();
    if (FwpmEngineOpen0(server, service, nullptr, record, Out(session)) == ERROR_SUCCESS) {
      sessions_.push_back(session);
    }
  }

  void Close() { FwpmEngineClose0(Session()); }
  void Begin() { FwpmTransactionBegin0(Session(), static_cast<UINT32>(input_.TakeIndex(4))); }
  void Commit() { FwpmTransactionCommit0(Session()); }
  void Abort() { FwpmTransactionAbort0(Session()); }

  void GetOption() {
    FWP_VALUE0* value = nullptr;
    FwpmEngineGetOption0(Session(), static_cast<FWPM_ENGINE_OPTION>(input_.TakeIndex(5)), Out(value));
    KeepBlock(value);
  }

  void SetOption() {
    const FWP_VALUE0 value = records_.Value();
    const HANDLE session = Session();
    FwpmEngineSetOption0(session, static_cast<FWPM_ENGINE_OPTION>(input_.TakeIndex(5)),
                         input_.TakeFlag() ? &value : nullptr);
  }

  void AddProvider() {
    const auto* record = records_.Pointer<FWPM_PROVIDER0>();
    FwpmProviderAdd0(Session(), record, records_.SecurityDescriptor());
  }

  void AddSublayer() {
    const auto* record = records_.Pointer<FWPM_SUBLAYER0>();
    FwpmSubLayerAdd0(Session(), record, records_.SecurityDescriptor());
  }

  void AddCallout() {
    const auto* record = records_.Pointer<FWPM_CALLOUT0>();
    UINT32 id = 0;
    FwpmCalloutAdd0(Session(), record, records_.SecurityDescriptor(), Out(id));
  }

  void AddContext() {
    const auto* record = records_.Pointer<FWPM_PROVIDER_CONTEXT0>();
    UINT64 id = 0;
    FwpmProviderContextAdd0(Session(), record, records_.SecurityDescriptor(), Out(id));
    ids_.push_back(id);
  }

  void AddFilter() {
    const auto* record = records_.Pointer<FWPM_FILTER0>();
    UINT64 id = 0;
    FwpmFilterAdd0(Session(), record, records_.SecurityDescriptor(), Out(id));
    ids_.push_back(id);
  }

  UINT64 Id() { return ids_.empty() ? input_.Take<UINT64>() : input_.TakeOneOf(ids_); }

  void DeleteById() {
    FwpmFilterDeleteById0(Session(), Id());
    FwpmCalloutDeleteById0(Session(), static_cast<UINT32>(Id()));
    FwpmProviderContextDeleteById0(Session(), Id());
  }

  void GetById() {
    FWPM_FILTER0* filter = nullptr;
    FwpmFilterGetById0(Session(), Id(), Out(filter));
    KeepBlock(filter);
    FWPM_LAYER0* layer = nullptr;
    FwpmLayerGetById0(Session(), input_.Take<UINT16>(), Out(layer));
    KeepBlock(layer);
    FWPM_PROVIDER_CONTEXT0* context = nullptr;
    FwpmProviderContextGetById0(Session(), Id(), Out(context));
    KeepBlock(context);
  }

  template <class Record, class Template, class Subscription, class Change>
  void CallObject(const Fuzz::ObjectCalls<Record, Template, Subscription, Change>& calls) {
    switch (input_.TakeIndex(4)) {
      case 0: {
        const GUID* const key = records_.KeyPointer();
        calls.remove(Session(), key);
        break;
      }
      case 1:
        return CallByKey(calls.keys);
      case 2:
        return CallEnum(calls.enumerations);
      default:
        return CallChanges(calls.changes);
    }
  }
  void CallProviders() { CallObject(Fuzz::kProviders); }
  void CallSublayers() { CallObject(Fuzz::kSublayers); }
  void CallCallouts() { CallObject(Fuzz::kCallouts); }
  void CallContexts() { CallObject(Fuzz::kProviderContexts); }
  void CallFilters() { CallObject(Fuzz::kFilters); }
  void CallLayers() { input_.TakeFlag() ? CallEnum(Fuzz::kLayerEnums) : CallByKey(Fuzz::kLayerKeys); }
  void EnumerateSessions() { CallEnum(Fuzz::kSessionEnums); }

  void CallEvents() {
    switch (input_.TakeIndex(4)) {
      case 0:
        return CallEnum(Fuzz::kOldEventEnums);
      case 1:
        return CallEnum(Fuzz::kEventEnums);
      case 2:
        return CallChanges(Fuzz::kEvents);
      default:
        if (const auto* event = records_.Pointer<FWPM_NET_EVENT3>()) {
          EngineEmulator::RaiseEvent(*event);
        }
    }
  }

  template <class Record>
  void CallByKey(const Fuzz::KeyCalls<Record>& calls) {
    switch (input_.TakeIndex(3)) {
      case 0:
        return GetRecord(calls);
      case 1:
        return GetSecurity(calls);
      default:
        return SetSecurity(calls);
    }
  }

  template <class Record>
  void GetRecord(const Fuzz::KeyCalls<Record>& calls) {
    Record* record = nullptr;
    const GUID* const key = records_.KeyPointer();
    if (calls.get(Session(), key, Out(record)) == ERROR_SUCCESS) {
      ReadRecord(*record);
      KeepBlock(record);
    }
  }

  template <class Record>
  void GetSecurity(const Fuzz::KeyCalls<Record>& calls) {
    PSID owner = nullptr;
    PSID group = nullptr;
    PACL dacl = nullptr;
    PACL sacl = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    const GUID* const key = records_.KeyPointer();
    const HANDLE session = Session();
    calls.getSecurity(session, key, input_.Take<std::uint8_t>(), Out(owner), Out(group), Out(dacl), Out(sacl),
                      Out(descriptor));
    KeepBlock(descriptor);
  }

  template <class Record>
  void SetSecurity(const Fuzz::KeyCalls<Record>& calls) {
    const GUID* const key = records_.KeyPointer();
    const SID* const owner = records_.Sid();
    const SID* const group = records_.Sid();
    const ACL* const dacl = records_.AccessList();
    const ACL* const sacl = records_.AccessList();
    const HANDLE session = Session();
    calls.setSecurity(session, key, input_.Take<std::uint8_t>(), owner, group, dacl, sacl);
  }

  template <class Record, class Template>
  void CallEnum(const Fuzz::EnumCalls<Record, Template>& calls) {
    const HANDLE session = Session();
    switch (input_.TakeIndex(3)) {
      case 0: {
        HANDLE handle = nullptr;
        const auto* criteria = records_.Pointer<Template>();
        calls.create(session, criteria, Out(handle));
        KeepHandle(handle);
        break;
      }
      case 1:
        return Enumerate(calls, session);
      default:
        calls.destroy(session, OtherHandle());
    }
  }

  template <class Record, class Template>
  void Enumerate(const Fuzz::EnumCalls<Record, Template>& calls, HANDLE session) {
    Record** entries = nullptr;
    UINT32 count = 0;
    const HANDLE handle = OtherHandle();
    const UINT32 requested = input_.TakeFlag() ? 0xFFFFFFFF : input_.Take<std::uint8_t>();
    if (calls.next(session, handle, requested, Out(entries), Out(count)) == ERROR_SUCCESS) {
      Require(count <= requested, "no more entries come than were asked for");
      for (UINT32 i = 0; i < count; ++i) {
        ReadRecord(*entries[i]);
      }
      KeepBlock(entries);
    }
  }

  template <class Subscription, class Change>
  void CallChanges(const Fuzz::ChangeCalls<Subscription, Change>& calls) {
    const HANDLE session = Session();
    switch (input_.TakeIndex(3)) {
      case 0: {
        HANDLE handle = nullptr;
        const auto* subscription = records_.Pointer<Subscription>();
        const auto callback = input_.TakeIndex(8) == 7 ? nullptr : IgnoreChange<Change>;
        calls.subscribe(session, subscription, callback, nullptr, Out(handle));
        KeepHandle(handle);
        break;
      }
      case 1: {
        Subscription** entries = nullptr;
        UINT32 count = 0;
        calls.get(session, Out(entries), Out(count));
        KeepBlock(entries);
        break;
      }
      default:
        calls.unsubscribe(session, OtherHandle());
    }
  }

  void GetAppId() {
    FWP_BYTE_BLOB* blob = nullptr;
    const wchar_t* const path = records_.Text();
    if (path != nullptr && input_.TakeFlag()) {
      EngineEmulator::PretendFileExists(path);
    }
    FwpmGetAppIdFromFileName0(path, Out(blob));
    KeepBlock(blob);
  }

  /// Frees blocks, also twice, and addresses that are not those of a block.
  void Free() {
    if (!blocks_.empty()) {
      const auto block = blocks_.begin() + static_cast<std::ptrdiff_t>(input_.TakeIndex(blocks_.size()));
      void* first = *block;
      void* second = *block;
      blocks_.erase(block);
      FwpmFreeMemory0(&first);
      FwpmFreeMemory0(&second);
    }
    void* noBlock = &input_;
    FwpmFreeMemory0(Out(noBlock));
  }

  Input& input_;
  HostileRecords records_;
  std::vector<HANDLE> sessions_;
  std::vector<HANDLE> handles_;
  std::vector<UINT64> ids_;
  std::vector<void*> blocks_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  Clients(input).Run();
  return 0;
}
