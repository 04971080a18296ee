// The part of Engine that deals with sessions, transactions and who hears of changes.
#include <chrono>
#include <ratio>
#include <utility>

#include "emulator/Engine.h"
#include "emulator/NetEventSelection.h"
#include "emulator/Selection.h"

namespace EngineEmulator {
namespace {

/// FWPM_SUBSCRIPTION_FLAG_NOTIFY_ON_ADD and ..._DELETE, which MinGW-w64 lacks, by FWPM_CHANGE_TYPE.
constexpr UINT32 FlagOf(FWPM_CHANGE_TYPE type) { return type == FWPM_CHANGE_ADD ? 1 : 2; }

FILETIME Now() {
  using Ticks = std::chrono::duration<UINT64, std::ratio<1, 10'000'000>>;
  constexpr UINT64 kUnixEpoch = 116'444'736'000'000'000;  // in ticks since 1601
  const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
  const UINT64 ticks = kUnixEpoch + std::chrono::duration_cast<Ticks>(sinceEpoch).count();
  return {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

}  // namespace

DWORD Engine::OpenSession(const FWPM_SESSION0* session, HANDLE& handle) {
  if (stopped_) {
    return Refuse({HRESULT{EPT_S_NOT_REGISTERED}, "the engine has been stopped"});
  }
  FWPM_SESSION0 record = session == nullptr ? FWPM_SESSION0{} : *session;
  if ((record.flags & ~static_cast<UINT32>(FWPM_SESSION_FLAG_DYNAMIC)) != 0) {
    return Refuse({FWP_E_INVALID_FLAGS, "DYNAMIC is the only flag of sessions"});
  }
  const auto hasWantedKey = [&](const auto& entry) { return entry.second.Key() == record.sessionKey; };
  if (std::any_of(sessions_.begin(), sessions_.end(), hasWantedKey)) {
    return Refuse({FWP_E_ALREADY_EXISTS, "the key is that of a session which is open"});
  }
  if (record.sessionKey == GUID{}) {
    record.sessionKey = NewKey();
  }
  SID localSystem{SID_REVISION, 1, {{0, 0, 0, 0, 0, 5}}, {18}};
  wchar_t userName[] = L"SYSTEM";
  record.processId = GetCurrentProcessId();
  record.sid = &localSystem;
  record.username = userName;
  record.kernelMode = FALSE;
  handle = NewHandle();
  Session opened;
  opened.handle = handle;
  opened.record = MakeBlock([&](Packer& packer) { return PackRecord(packer, record); });
  sessions_.emplace(handle, std::move(opened));
  return ERROR_SUCCESS;
}

Session* Engine::FindSession(HANDLE handle) {
  const auto found = sessions_.find(handle);
  return found == sessions_.end() ? nullptr : &found->second;
}

template <class Native>
void Engine::RemoveDynamicObjects(HANDLE session) {
  for (const ObjectPtr<Native>& object : committed_.OfKind<Native>().All()) {
    if (object->origin.session == session) {
      committed_.Remove<Native>(object);
      Tell(FWPM_CHANGE_DELETE, object);
    }
  }
}

Session Engine::CloseSession(HANDLE handle) {
  const auto found = sessions_.find(handle);
  Session closed = std::move(found->second);
  sessions_.erase(found);
  if (writer_ == handle) {
    writer_ = nullptr;
  }
  if (closed.IsDynamic()) {
    RemoveDynamicObjects<FWPM_FILTER0>(handle);
    RemoveDynamicObjects<FWPM_CALLOUT0>(handle);
    RemoveDynamicObjects<FWPM_PROVIDER_CONTEXT0>(handle);
    RemoveDynamicObjects<FWPM_SUBLAYER0>(handle);
    RemoveDynamicObjects<FWPM_PROVIDER0>(handle);
  }
  return closed;
}

std::unordered_map<HANDLE, Session> Engine::Stop() {
  stopped_ = true;
  writer_ = nullptr;
  return std::exchange(sessions_, {});
}

UINT32 Engine::LockWaitMilliseconds(const Session& session) const {
  const UINT32 wanted = session.record.root->txnWaitTimeoutInMSec;
  return wanted == 0 ? switches_.lockWaitMilliseconds : wanted;
}

DWORD Engine::Begin(Session& session, UINT32 flags) {
  if ((flags & ~static_cast<UINT32>(FWPM_TXN_READ_ONLY)) != 0) {
    return Refuse({FWP_E_INVALID_FLAGS, "READ_ONLY is the only flag of transactions"});
  }
  if (session.transaction.has_value()) {
    return Refuse({FWP_E_TXN_IN_PROGRESS, "transactions do not nest"});
  }
  const bool readOnly = flags != 0;
  session.transaction = Transaction{readOnly, readOnly ? committed_ : ObjectStore(&committed_), {}};
  if (!readOnly) {
    writer_ = session.handle;
  }
  return ERROR_SUCCESS;
}

DWORD Engine::Commit(Session& session) {
  if (!session.transaction.has_value()) {
    return Refuse({FWP_E_NO_TXN_IN_PROGRESS, "there is no transaction to commit"});
  }
  if (!session.transaction->readOnly) {
    committed_.Apply(session.transaction->objects);
  }
  for (const auto& announce : session.transaction->announcements) {
    announce();
  }
  return Abort(session);
}

DWORD Engine::Abort(Session& session) {
  if (!session.transaction.has_value()) {
    return Refuse({FWP_E_NO_TXN_IN_PROGRESS, "there is no transaction to abort"});
  }
  session.transaction.reset();
  if (writer_ == session.handle) {
    writer_ = nullptr;
  }
  return ERROR_SUCCESS;
}

void Engine::ExpireTransactions() {
  for (auto& [handle, session] : sessions_) {
    if (session.transaction.has_value()) {
      Abort(session);
      session.transactionExpired = true;
    }
  }
}

const ObjectStore& Engine::ObjectsOf(const Session& session) const {
  return session.transaction.has_value() ? session.transaction->objects : committed_;
}

const ObjectStore& Engine::NewestObjects() const {
  return writer_ == nullptr ? committed_ : sessions_.at(writer_).transaction->objects;
}

ObjectStore* Engine::OpenForChange(Session& session) {
  if (!session.transaction.has_value()) {
    return &committed_;
  }
  if (session.transaction->readOnly) {
    lastRefusal = "the transaction is read-only";
    return nullptr;
  }
  return &session.transaction->objects;
}

template <class Native>
void Engine::Announce(Session& session, FWPM_CHANGE_TYPE type, const ObjectPtr<Native>& object) {
  if (session.transaction.has_value()) {
    session.transaction->announcements.emplace_back([this, type, object] { Tell(type, object); });
  } else {
    Tell(type, object);
  }
}

template <class Native>
void Engine::Tell(FWPM_CHANGE_TYPE type, const ObjectPtr<Native>& object) {
  for (const auto& [handle, session] : sessions_) {
    for (const auto& [subscriptionHandle, subscription] : session.template SubscriptionsTo<Native>()) {
      const auto& wanted = *subscription.record.root;
      if ((wanted.flags & FlagOf(type)) == 0 || Select(wanted.enumTemplate, {object}).empty()) {
        continue;
      }
      const auto change = Kind<Native>::MakeChange(type, object->Record());
      subscription.worker->Post([callback = subscription.callback, context = subscription.context, change] {
        callback(context, &change);
      });
    }
  }
}

DWORD Engine::Raise(FWPM_NET_EVENT3 event) {
  if (const Refusal refusal = CheckNetEvent(event)) {
    return Refuse(refusal);
  }
  const UINT32 keyword = KeywordOf(event);
  const bool isWanted = keyword == 0 || (options[FWPM_ENGINE_NET_EVENT_MATCH_ANY_KEYWORDS] & keyword) != 0;
  if (options[FWPM_ENGINE_COLLECT_NET_EVENTS] == 0 || !isWanted) {
    return ERROR_SUCCESS;
  }
  FILETIME& time = event.header.timeStamp;
  if (time.dwLowDateTime == 0 && time.dwHighDateTime == 0) {
    time = Now();
  }
  const auto raised = std::make_shared<const NetEvent>(event);
  netEvents.Add(raised);
  for (const auto& [handle, session] : sessions_) {
    for (const auto& [eventsHandle, subscription] : session.netEventSubscriptions) {
      if (!subscription.canTell(event.type) ||
          !Selects(subscription.record.root->enumTemplate, true, raised->Record())) {
        continue;
      }
      if (subscription.worker->CountWaiting() >= switches_.waitingEvents) {
        ++missedEvents;
        continue;
      }
      subscription.worker->Post([tell = subscription.tell, raised] { tell(*raised); });
    }
  }
  return ERROR_SUCCESS;
}

template void Engine::Announce(Session&, FWPM_CHANGE_TYPE, const ObjectPtr<FWPM_PROVIDER0>&);
template void Engine::Announce(Session&, FWPM_CHANGE_TYPE, const ObjectPtr<FWPM_SUBLAYER0>&);
template void Engine::Announce(Session&, FWPM_CHANGE_TYPE, const ObjectPtr<FWPM_CALLOUT0>&);
template void Engine::Announce(Session&, FWPM_CHANGE_TYPE, const ObjectPtr<FWPM_PROVIDER_CONTEXT0>&);
template void Engine::Announce(Session&, FWPM_CHANGE_TYPE, const ObjectPtr<FWPM_FILTER0>&);

}  // namespace EngineEmulator
