#include "emulator/Engine.h"

#include <utility>

#include "catalog/Layers.h"
#include "emulator/Checks.h"

namespace EngineEmulator {
namespace {

using Catalog::operator""_guid;

/// Above 32 bits, so that a client that cuts an id short is found out.
constexpr UINT64 kFirstNumber = 0x1'0000'0001;

struct SublayerWeight {
  GUID key;
  UINT16 weight;
};

/// The weights are not documented, only that INSPECTION's is the lowest. These keep the platform's order:
/// service hardening, Windows Firewall, UNIVERSAL, the others, INSPECTION.
constexpr SublayerWeight kBuiltInWeights[]{
    {"b3cdd441-af90-41ba-a745-7c6008ff2300"_guid, 0x7000},
    {"b3cdd441-af90-41ba-a745-7c6008ff2301"_guid, 0x6000},
    {Catalog::kUniversalSublayerKey, 0x4000},
    {"877519e1-e6a9-41a5-81b4-8c4f118e4a60"_guid, 0},
};
constexpr UINT16 kWeightOfOtherBuiltIns = 0x2000;

UINT16 BuiltInWeight(const GUID& key) {
  const auto* found = std::find_if(std::begin(kBuiltInWeights), std::end(kBuiltInWeights),
                                   [&](const SublayerWeight& entry) { return entry.key == key; });
  return found == std::end(kBuiltInWeights) ? kWeightOfOtherBuiltIns : found->weight;
}

bool IsPersistent(const FWPM_PROVIDER0& provider) {
  return (provider.flags & FWPM_PROVIDER_FLAG_PERSISTENT) != 0;
}

bool IsPersistent(const FWPM_SUBLAYER0& sublayer) {
  return (sublayer.flags & FWPM_SUBLAYER_FLAG_PERSISTENT) != 0;
}

bool IsPersistent(const FWPM_FILTER0& filter) {
  return (filter.flags & (FWPM_FILTER_FLAG_PERSISTENT | FWPM_FILTER_FLAG_BOOTTIME)) != 0;
}

/// The part of the effective weight that the client chose; the rest is left at zero.
UINT64 EffectiveWeight(const FWP_VALUE0& weight) {
  switch (weight.type) {
    case FWP_UINT64:
      return *weight.uint64;
    case FWP_UINT8:
      return static_cast<UINT64>(weight.uint8) << FWPM_AUTO_WEIGHT_BITS;
    default:
      return 0;
  }
}

void FillSublayer(FWPM_PROVIDER0&) {}
void FillSublayer(FWPM_SUBLAYER0&) {}
void FillSublayer(FWPM_FILTER0& filter) {
  const Catalog::Layer* layer = Catalog::FindLayer(filter.layerKey);
  if (layer != nullptr && filter.subLayerKey == GUID{}) {
    filter.subLayerKey = layer->defaultSublayerKey;
  }
}

template <class Native>
ObjectPtr<Native> MakeObject(const Native& record, const Origin& origin, UINT64 number) {
  auto block = MakeBlock([&](Packer& packer) { return PackRecord(packer, record); });
  return std::make_shared<const Object<Native>>(Object<Native>{std::move(block), origin, number});
}

template <class Native>
ObjectPtr<Native> MakeNumberedObject(const Native& record, const Origin& origin, UINT64 number) {
  return MakeObject(record, origin, number);
}

ObjectPtr<FWPM_FILTER0> MakeNumberedObject(FWPM_FILTER0 record, const Origin& origin, UINT64 number) {
  UINT64 weight = EffectiveWeight(record.weight);
  record.filterId = number;
  record.effectiveWeight.type = FWP_UINT64;
  record.effectiveWeight.uint64 = &weight;
  return MakeObject(record, origin, number);
}

DWORD CheckDeletion(const Session& session, const Origin& origin) {
  if (origin.lifetime == Lifetime::BuiltIn) {
    return static_cast<DWORD>(FWP_E_BUILTIN_OBJECT);
  }
  if (origin.lifetime == Lifetime::Dynamic) {
    return origin.session == session.handle ? ERROR_SUCCESS : static_cast<DWORD>(FWP_E_WRONG_SESSION);
  }
  return session.dynamic ? static_cast<DWORD>(FWP_E_DYNAMIC_SESSION_IN_PROGRESS) : ERROR_SUCCESS;
}

}  // namespace

Engine::Engine() : nextNumber_(kFirstNumber) { AddBuiltInSublayers(); }

DWORD Engine::OpenSession(const FWPM_SESSION0* session, HANDLE& handle) {
  const FWPM_SESSION0 wanted = session == nullptr ? FWPM_SESSION0{} : *session;
  if ((wanted.flags & ~static_cast<UINT32>(FWPM_SESSION_FLAG_DYNAMIC)) != 0) {
    return static_cast<DWORD>(FWP_E_INVALID_FLAGS);
  }
  const auto hasWantedKey = [&](const auto& entry) { return entry.second.key == wanted.sessionKey; };
  if (std::any_of(sessions_.begin(), sessions_.end(), hasWantedKey)) {
    return static_cast<DWORD>(FWP_E_ALREADY_EXISTS);
  }
  handle = NewHandle();
  const GUID key = wanted.sessionKey == GUID{} ? NewKey() : wanted.sessionKey;
  sessions_.emplace(handle, Session{handle, key, wanted.flags != 0, std::nullopt, {}});
  return ERROR_SUCCESS;
}

Session* Engine::FindSession(HANDLE handle) {
  const auto found = sessions_.find(handle);
  return found == sessions_.end() ? nullptr : &found->second;
}

void Engine::CloseSession(HANDLE handle) {
  sessions_.erase(handle);
  committed_.RemoveObjectsOf(handle);
  for (auto& [other, session] : sessions_) {
    if (session.transaction.has_value()) {
      session.transaction->policy.RemoveObjectsOf(handle);
    }
  }
}

DWORD Engine::Begin(Session& session, UINT32 flags) {
  if ((flags & ~static_cast<UINT32>(FWPM_TXN_READ_ONLY)) != 0) {
    return static_cast<DWORD>(FWP_E_INVALID_FLAGS);
  }
  if (session.transaction.has_value()) {
    return static_cast<DWORD>(FWP_E_TXN_IN_PROGRESS);
  }
  const bool readOnly = flags != 0;
  if (!readOnly && &NewestPolicy() != &committed_) {
    return static_cast<DWORD>(FWP_E_TIMEOUT);
  }
  session.transaction = Transaction{readOnly, committed_};
  return ERROR_SUCCESS;
}

DWORD Engine::Commit(Session& session) {
  if (!session.transaction.has_value()) {
    return static_cast<DWORD>(FWP_E_NO_TXN_IN_PROGRESS);
  }
  if (!session.transaction->readOnly) {
    committed_ = std::move(session.transaction->policy);
  }
  session.transaction.reset();
  return ERROR_SUCCESS;
}

DWORD Engine::Abort(Session& session) {
  if (!session.transaction.has_value()) {
    return static_cast<DWORD>(FWP_E_NO_TXN_IN_PROGRESS);
  }
  session.transaction.reset();
  return ERROR_SUCCESS;
}

const Policy& Engine::PolicyOf(const Session& session) const {
  return session.transaction.has_value() ? session.transaction->policy : committed_;
}

const Policy& Engine::NewestPolicy() const {
  for (const auto& [handle, session] : sessions_) {
    if (session.transaction.has_value() && !session.transaction->readOnly) {
      return session.transaction->policy;
    }
  }
  return committed_;
}

Engine::PolicyForChange Engine::OpenForChange(Session& session) {
  if (session.transaction.has_value()) {
    return session.transaction->readOnly
               ? PolicyForChange{static_cast<DWORD>(FWP_E_INCOMPATIBLE_TXN), nullptr}
               : PolicyForChange{ERROR_SUCCESS, &session.transaction->policy};
  }
  // Another session's transaction holds the lock. This engine does not wait for its end.
  if (&NewestPolicy() != &committed_) {
    return {static_cast<DWORD>(FWP_E_TIMEOUT), nullptr};
  }
  return {ERROR_SUCCESS, &committed_};
}

template <class Native>
DWORD Engine::Add(Session& session, const Native& record, UINT64* number) {
  const auto [result, policy] = OpenForChange(session);
  if (policy == nullptr) {
    return result;
  }
  Native filled = record;
  FillSublayer(filled);
  const Lifetime lifetime = IsPersistent(record) ? Lifetime::Persistent : Lifetime::Static;
  const Origin origin =
      session.dynamic ? Origin{Lifetime::Dynamic, session.handle} : Origin{lifetime, nullptr};
  if (const DWORD fault = Check(filled, *policy, origin); fault != ERROR_SUCCESS) {
    return fault;
  }
  if (session.dynamic && lifetime == Lifetime::Persistent) {
    return static_cast<DWORD>(FWP_E_LIFETIME_MISMATCH);
  }
  GUID& key = filled.*Kind<Native>::kKey;
  if (key == GUID{}) {
    key = NewKey();
  }
  if (policy->template Objects<Native>().Find(key) != nullptr) {
    return static_cast<DWORD>(FWP_E_ALREADY_EXISTS);
  }
  policy->template Add<Native>(MakeNumberedObject(filled, origin, nextNumber_));
  if (number != nullptr) {
    *number = nextNumber_;
  }
  ++nextNumber_;
  return ERROR_SUCCESS;
}

template <class Native, class Identity>
DWORD Engine::Delete(Session& session, const Identity& identity) {
  const auto [result, policy] = OpenForChange(session);
  if (policy == nullptr) {
    return result;
  }
  const auto object = policy->template Objects<Native>().Find(identity);
  if (object == nullptr) {
    return Kind<Native>::kNotFound;
  }
  if (const DWORD fault = CheckDeletion(session, object->origin); fault != ERROR_SUCCESS) {
    return fault;
  }
  if (policy->IsReferred(object->Record())) {
    return static_cast<DWORD>(FWP_E_IN_USE);
  }
  policy->template Remove<Native>(object);
  return ERROR_SUCCESS;
}

template DWORD Engine::Add(Session&, const FWPM_PROVIDER0&, UINT64*);
template DWORD Engine::Add(Session&, const FWPM_SUBLAYER0&, UINT64*);
template DWORD Engine::Add(Session&, const FWPM_FILTER0&, UINT64*);
template DWORD Engine::Delete<FWPM_PROVIDER0>(Session&, const GUID&);
template DWORD Engine::Delete<FWPM_SUBLAYER0>(Session&, const GUID&);
template DWORD Engine::Delete<FWPM_FILTER0>(Session&, const GUID&);
template DWORD Engine::Delete<FWPM_FILTER0>(Session&, const UINT64&);

HANDLE Engine::NewHandle() {
  // Goes on when the engine is reset: an old handle must not fit a new session.
  static std::uintptr_t next = 0;
  next += 0x10;
  return reinterpret_cast<HANDLE>(next);
}

void Engine::AddBuiltInSublayers() {
  for (const Catalog::BuiltInSublayer& builtIn : Catalog::kBuiltInSublayers) {
    std::wstring name(builtIn.name.begin(), builtIn.name.end());
    FWPM_SUBLAYER0 record{};
    record.subLayerKey = builtIn.key;
    record.displayData.name = name.data();
    record.weight = BuiltInWeight(builtIn.key);
    committed_.Add(MakeObject(record, {Lifetime::BuiltIn, nullptr}, nextNumber_++));
  }
}

GUID Engine::NewKey() {
  const UINT64 halves[2]{keys_(), keys_()};
  GUID key;
  std::memcpy(&key, halves, sizeof(key));
  return key;
}

}  // namespace EngineEmulator
