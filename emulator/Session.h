/**
 * @file
 * A client's connection to the engine.
 */
#pragma once

#include <algorithm>
#include <functional>
#include <optional>

#include "emulator/NetEventLog.h"
#include "emulator/ObjectStore.h"
#include "emulator/Records.h"
#include "emulator/Worker.h"

namespace EngineEmulator {

/// A snapshot of objects that a client pages through.
template <class Native>
struct Enumeration {
  std::vector<ObjectPtr<Native>> objects;
  std::size_t next = 0;

  /// The next objects, at most so many.
  std::vector<ObjectPtr<Native>> Take(std::size_t count) {
    const auto first = objects.begin() + static_cast<std::ptrdiff_t>(next);
    count = std::min(count, objects.size() - next);
    next += count;
    return {first, first + static_cast<std::ptrdiff_t>(count)};
  }
};

template <class Native>
using Enumerations = std::unordered_map<HANDLE, Enumeration<Native>>;

/// A client's callback for changes; the worker's thread calls it.
template <class Native>
struct Subscription {
  Block<typename Kind<Native>::Subscription> record;
  typename Kind<Native>::Callback callback;
  void* context;
  std::unique_ptr<Worker> worker = std::make_unique<Worker>();
};

template <class Native>
using Subscriptions = std::map<HANDLE, Subscription<Native>>;

/// A client's callback for net events; the worker's thread calls it.
struct NetEventSubscription {
  Block<FWPM_NET_EVENT_SUBSCRIPTION0> record;
  bool (*canTell)(UINT32 type);  ///< whether the version of the client's records knows events of a type
  std::function<void(const NetEvent&)> tell;
  std::unique_ptr<Worker> worker = std::make_unique<Worker>();
};

/// The changes since it began. Only its own session sees them before the commit.
struct Transaction {
  bool readOnly;
  ObjectStore objects;
  std::vector<std::function<void()>> announcements;  ///< to be made at commit
};

struct Session {
  HANDLE handle;
  Block<FWPM_SESSION0> record;
  std::optional<Transaction> transaction;
  bool transactionExpired = false;  ///< The engine has ended it; the client is yet to be told.
  std::tuple<Enumerations<FWPM_PROVIDER0>, Enumerations<FWPM_SUBLAYER0>, Enumerations<FWPM_CALLOUT0>,
             Enumerations<FWPM_PROVIDER_CONTEXT0>, Enumerations<FWPM_FILTER0>, Enumerations<FWPM_LAYER0>,
             Enumerations<FWPM_SESSION0>>
      enumerations;
  std::unordered_map<HANDLE, NetEventEnumeration> netEventEnumerations;
  std::tuple<Subscriptions<FWPM_PROVIDER0>, Subscriptions<FWPM_SUBLAYER0>, Subscriptions<FWPM_CALLOUT0>,
             Subscriptions<FWPM_PROVIDER_CONTEXT0>, Subscriptions<FWPM_FILTER0>>
      subscriptions;
  std::map<HANDLE, NetEventSubscription> netEventSubscriptions;

  [[nodiscard]] const GUID& Key() const { return record.root->sessionKey; }
  [[nodiscard]] bool IsDynamic() const { return (record.root->flags & FWPM_SESSION_FLAG_DYNAMIC) != 0; }

  template <class Native>
  Enumerations<Native>& EnumerationsOf() {
    return std::get<Enumerations<Native>>(enumerations);
  }

  template <class Native>
  Subscriptions<Native>& SubscriptionsTo() {
    return std::get<Subscriptions<Native>>(subscriptions);
  }
  template <class Native>
  [[nodiscard]] const Subscriptions<Native>& SubscriptionsTo() const {
    return std::get<Subscriptions<Native>>(subscriptions);
  }

  [[nodiscard]] std::size_t CountEnumerations() const {
    const auto count = [](const auto&... kinds) { return (kinds.size() + ...); };
    return std::apply(count, enumerations) + netEventEnumerations.size();
  }

  [[nodiscard]] std::size_t CountSubscriptions() const {
    const auto count = [](const auto&... kinds) { return (kinds.size() + ...); };
    return std::apply(count, subscriptions) + netEventSubscriptions.size();
  }
};

}  // namespace EngineEmulator
