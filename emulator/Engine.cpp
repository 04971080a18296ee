#include "emulator/Engine.h"

#include <algorithm>
#include <utility>

#include "catalog/Names.h"
#include "emulator/BuiltIns.h"
#include "emulator/Checks.h"
#include "emulator/Indexing.h"
#include "emulator/MakeObject.h"
#include "emulator/Selection.h"
#include "emulator/Weights.h"

namespace EngineEmulator {
namespace {

/// Above 32 bits, so that a client fails that keeps only the low 32 bits of a filter's id.
constexpr UINT64 kFirstNumber = 0x1'0000'0001;
/// The ids of callouts have 32 bits only.
constexpr UINT64 kFirstCalloutNumber = 0x101;

bool IsPersistent(const FWPM_PROVIDER0& provider) {
  return (provider.flags & FWPM_PROVIDER_FLAG_PERSISTENT) != 0;
}

bool IsPersistent(const FWPM_SUBLAYER0& sublayer) {
  return (sublayer.flags & FWPM_SUBLAYER_FLAG_PERSISTENT) != 0;
}

bool IsPersistent(const FWPM_CALLOUT0& callout) {
  constexpr UINT32 kPersistent = 0x10000;
  return (callout.flags & kPersistent) != 0;
}

bool IsPersistent(const FWPM_PROVIDER_CONTEXT0& context) {
  constexpr UINT32 kPersistent = 0x1;
  return (context.flags & kPersistent) != 0;
}

bool IsPersistent(const FWPM_FILTER0& filter) {
  return (filter.flags & (FWPM_FILTER_FLAG_PERSISTENT | FWPM_FILTER_FLAG_BOOTTIME)) != 0;
}

template <class Native>
void FillSublayer(Native&) {}

template <>
void FillSublayer(FWPM_FILTER0& filter) {
  const Catalog::Layer* layer = Catalog::FindLayer(filter.layerKey);
  if (layer != nullptr && filter.subLayerKey == GUID{}) {
    filter.subLayerKey = layer->defaultSublayerKey;
  }
}

template <class Native>
void AssignWeight(Native&, const ObjectStore&, const Switches&) {}

template <>
void AssignWeight(FWPM_SUBLAYER0& sublayer, const ObjectStore& objects, const Switches& switches) {
  if (switches.keepAsGiven == 0) {
    sublayer.weight = objects.WeightsOfSublayers().NearestFree(sublayer.weight);
  }
}

/// The number that a record comes with; 0 for none.
template <class Native>
UINT64 GivenNumber(const Native&) {
  return 0;
}

template <>
UINT64 GivenNumber(const FWPM_CALLOUT0& callout) {
  return callout.calloutId;
}

template <>
UINT64 GivenNumber(const FWPM_FILTER0& filter) {
  return filter.filterId;
}

/// Where the weight that a filter comes with is kept.
bool KeepsWeight(const FWPM_FILTER0& filter, const Switches& switches) {
  const FWP_VALUE0& weight = filter.effectiveWeight;
  return switches.keepAsGiven != 0 && weight.type == FWP_UINT64 && weight.uint64 != nullptr;
}

template <class Native>
ObjectPtr<Native> MakeNumbered(const Native& record, const Origin& origin, UINT64 number,
                               const SecurityDescriptor* security, const Switches&) {
  return MakeObject(record, origin, number, security);
}

template <>
ObjectPtr<FWPM_CALLOUT0> MakeNumbered(const FWPM_CALLOUT0& record, const Origin& origin, UINT64 number,
                                      const SecurityDescriptor* security, const Switches&) {
  FWPM_CALLOUT0 numbered = record;
  numbered.calloutId = static_cast<UINT32>(number);
  return MakeObject(numbered, origin, number, security);
}

template <>
ObjectPtr<FWPM_PROVIDER_CONTEXT0> MakeNumbered(const FWPM_PROVIDER_CONTEXT0& record, const Origin& origin,
                                               UINT64 number, const SecurityDescriptor* security,
                                               const Switches&) {
  FWPM_PROVIDER_CONTEXT0 numbered = record;
  numbered.providerContextId = number;
  return MakeObject(numbered, origin, number, security);
}

template <>
ObjectPtr<FWPM_FILTER0> MakeNumbered(const FWPM_FILTER0& record, const Origin& origin, UINT64 number,
                                     const SecurityDescriptor* security, const Switches& switches) {
  UINT64 weight =
      KeepsWeight(record, switches) ? *record.effectiveWeight.uint64 : EffectiveWeight(record, switches);
  FWPM_FILTER0 numbered = record;
  if (switches.keepAsGiven == 0) {
    numbered.flags &= ~UINT32{FWPM_FILTER_FLAG_INDEXED};
    numbered.flags |= IsIndexed(record) ? FWPM_FILTER_FLAG_INDEXED : 0;
  }
  numbered.filterId = number;
  numbered.effectiveWeight.type = FWP_UINT64;
  numbered.effectiveWeight.uint64 = &weight;
  return MakeObject(numbered, origin, number, security);
}

std::string Text(const GUID& key) { return Catalog::FormatGuid(key); }
std::string Text(UINT64 number) { return std::to_string(number); }

}  // namespace

Engine::Engine() : nextNumber_(kFirstNumber), nextCalloutNumber_(kFirstCalloutNumber) {
  const auto add = [this](const auto& objects) {
    for (const auto& object : objects) {
      committed_.Add(object);
    }
  };
  add(Layers(switches_.Version()));
  add(BuiltInProviders());
  add(BuiltInSublayers());
  add(BuiltInCallouts());
}

void Engine::SetSwitches(const Switches& switches) {
  switches_ = switches;
  for (const auto& layer : Layers(switches_.Version())) {
    committed_.Replace(layer);
  }
}

void Engine::Record(Call call) {
  journal.push_back(std::move(call));
  while (journal.size() > switches_.journalEntries) {
    journal.pop_front();
  }
}

DWORD Engine::Refuse(const Refusal& refusal) {
  lastRefusal = refusal.Reason();
  return refusal.Code();
}

template <class Native>
DWORD Engine::Add(Session& session, const Native& record, PSECURITY_DESCRIPTOR security, UINT64* number) {
  ObjectStore* const objects = OpenForChange(session);
  if (objects == nullptr) {
    return static_cast<DWORD>(FWP_E_INCOMPATIBLE_TXN);
  }
  std::optional<SecurityDescriptor> given;
  if (security != nullptr) {
    given = SecurityDescriptor::FromNative(security);
    if (!given.has_value()) {
      return ERROR_INVALID_SECURITY_DESCR;
    }
  }
  Native filled = record;
  FillSublayer(filled);
  const Lifetime lifetime = IsPersistent(record) ? Lifetime::Persistent : Lifetime::Static;
  const Origin origin =
      session.IsDynamic() ? Origin{Lifetime::Dynamic, session.handle} : Origin{lifetime, nullptr};
  if (const Refusal refusal = Check(filled, {*objects, origin, switches_})) {
    return Refuse(refusal);
  }
  if (session.IsDynamic() && lifetime == Lifetime::Persistent &&
      switches_.refusePersistentInDynamicSession != 0) {
    return Refuse({FWP_E_LIFETIME_MISMATCH, "a dynamic session adds nothing persistent"});
  }
  GUID& key = filled.*Kind<Native>::kKey;
  const auto& others = objects->template OfKind<Native>();
  if (key == GUID{}) {
    // Each emulated engine makes up the same keys, and one may hold what another one has held.
    do {
      key = NewKey();
    } while (others.Find(key) != nullptr);
  } else if (others.Find(key) != nullptr) {
    return Refuse({FWP_E_ALREADY_EXISTS, std::string("there is a ") + Kind<Native>::kName + " " + Text(key)});
  }
  AssignWeight(filled, *objects, switches_);
  const ObjectPtr<Native> object = MakeNumbered(filled, origin, NewNumber(filled, *objects),
                                                given.has_value() ? &*given : nullptr, switches_);
  objects->template Add<Native>(object);
  if (number != nullptr) {
    *number = object->number;
  }
  Announce(session, FWPM_CHANGE_ADD, object);
  return ERROR_SUCCESS;
}

template <class Native>
UINT64 Engine::NewNumber(const Native& record, const ObjectStore& objects) {
  constexpr bool kIsCallout = std::is_same_v<Native, FWPM_CALLOUT0>;
  // Room for those that come later, which get higher ones.
  constexpr UINT64 kMostGiven = kIsCallout ? UINT32_MAX / 2 : UINT64_MAX / 2;
  UINT64& next = kIsCallout ? nextCalloutNumber_ : nextNumber_;
  const UINT64 given = switches_.keepAsGiven != 0 ? GivenNumber(record) : 0;
  if (given == 0 || given > kMostGiven || objects.OfKind<Native>().Find(given) != nullptr) {
    return next++;
  }
  next = std::max(next, given + 1);
  return given;
}

Refusal Engine::CheckDeletion(const Session& session, const Origin& origin) const {
  if (origin.lifetime == Lifetime::BuiltIn) {
    return {FWP_E_BUILTIN_OBJECT, "the object is built in"};
  }
  if (origin.lifetime != Lifetime::Dynamic) {
    return session.IsDynamic()
               ? Refusal(FWP_E_DYNAMIC_SESSION_IN_PROGRESS, "a dynamic session deletes only what it added")
               : Refusal();
  }
  const bool mayDeleteOthers = !session.IsDynamic() && switches_.refuseDeletingOthersDynamic == 0;
  return origin.session == session.handle || mayDeleteOthers
             ? Refusal()
             : Refusal(FWP_E_WRONG_SESSION, "the object is another session's");
}

template <class Native, class Identity>
DWORD Engine::Delete(Session& session, const Identity& identity) {
  ObjectStore* const objects = OpenForChange(session);
  if (objects == nullptr) {
    return static_cast<DWORD>(FWP_E_INCOMPATIBLE_TXN);
  }
  const auto object = objects->template OfKind<Native>().Find(identity);
  if (object == nullptr) {
    return Refuse(
        {Kind<Native>::kNotFound, std::string("there is no ") + Kind<Native>::kName + " " + Text(identity)});
  }
  if (const Refusal refusal = CheckDeletion(session, object->origin)) {
    return Refuse(refusal);
  }
  if (const int referrers = objects->template CountReferrers<Native>(object->Key()); referrers != 0) {
    return Refuse({FWP_E_IN_USE, "objects that refer to it: " + std::to_string(referrers)});
  }
  objects->template Remove<Native>(object);
  Announce(session, FWPM_CHANGE_DELETE, object);
  return ERROR_SUCCESS;
}

template <class Native>
DWORD Engine::SetSecurity(Session& session, const GUID& key, const SecurityDescriptor& security) {
  ObjectStore* const objects = OpenForChange(session);
  if (objects == nullptr) {
    return static_cast<DWORD>(FWP_E_INCOMPATIBLE_TXN);
  }
  const auto object = objects->template OfKind<Native>().Find(key);
  objects->template Replace<Native>(MakeObject(object->Record(), object->origin, object->number, &security));
  return ERROR_SUCCESS;
}

template DWORD Engine::Add(Session&, const FWPM_PROVIDER0&, PSECURITY_DESCRIPTOR, UINT64*);
template DWORD Engine::Add(Session&, const FWPM_SUBLAYER0&, PSECURITY_DESCRIPTOR, UINT64*);
template DWORD Engine::Add(Session&, const FWPM_CALLOUT0&, PSECURITY_DESCRIPTOR, UINT64*);
template DWORD Engine::Add(Session&, const FWPM_PROVIDER_CONTEXT0&, PSECURITY_DESCRIPTOR, UINT64*);
template DWORD Engine::Add(Session&, const FWPM_FILTER0&, PSECURITY_DESCRIPTOR, UINT64*);
template DWORD Engine::Delete<FWPM_PROVIDER0>(Session&, const GUID&);
template DWORD Engine::Delete<FWPM_SUBLAYER0>(Session&, const GUID&);
template DWORD Engine::Delete<FWPM_CALLOUT0>(Session&, const GUID&);
template DWORD Engine::Delete<FWPM_CALLOUT0>(Session&, const UINT64&);
template DWORD Engine::Delete<FWPM_PROVIDER_CONTEXT0>(Session&, const GUID&);
template DWORD Engine::Delete<FWPM_PROVIDER_CONTEXT0>(Session&, const UINT64&);
template DWORD Engine::Delete<FWPM_FILTER0>(Session&, const GUID&);
template DWORD Engine::Delete<FWPM_FILTER0>(Session&, const UINT64&);
template DWORD Engine::SetSecurity<FWPM_PROVIDER0>(Session&, const GUID&, const SecurityDescriptor&);
template DWORD Engine::SetSecurity<FWPM_SUBLAYER0>(Session&, const GUID&, const SecurityDescriptor&);
template DWORD Engine::SetSecurity<FWPM_CALLOUT0>(Session&, const GUID&, const SecurityDescriptor&);
template DWORD Engine::SetSecurity<FWPM_PROVIDER_CONTEXT0>(Session&, const GUID&, const SecurityDescriptor&);
template DWORD Engine::SetSecurity<FWPM_FILTER0>(Session&, const GUID&, const SecurityDescriptor&);
template DWORD Engine::SetSecurity<FWPM_LAYER0>(Session&, const GUID&, const SecurityDescriptor&);

HANDLE Engine::NewHandle() {
  // Goes on when the engine is reset: an old handle must not fit a new session.
  static std::uintptr_t next = 0;
  next += 0x10;
  return reinterpret_cast<HANDLE>(next);
}

GUID Engine::NewKey() {
  const UINT64 halves[2]{random_(), random_()};
  GUID key;
  std::memcpy(&key, halves, sizeof(key));
  return key;
}

}  // namespace EngineEmulator
