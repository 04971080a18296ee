/**
 * @file
 * The calls by which clients ask to be told of changes.
 */
#pragma once

#include "emulator/EntryPoint.h"
#include "emulator/Selection.h"

namespace EngineEmulator {

/// Whether the flags ask for additions, deletions or both, and for nothing else.
Refusal CheckSubscriptionFlags(UINT32 flags);

template <class Native>
DWORD AnswerSubscribe(const char* function, HANDLE engineHandle,
                      const typename Kind<Native>::Subscription* wanted,
                      typename Kind<Native>::Callback callback, void* context, HANDLE* changeHandle) {
  const auto subscribe = [&](Engine& engine, Session& session) -> DWORD {
    if (wanted == nullptr || callback == nullptr || changeHandle == nullptr) {
      return kNullPointer;
    }
    const Refusal badFlags = CheckSubscriptionFlags(wanted->flags);
    const Refusal refusal = badFlags ? badFlags : CheckTemplate(wanted->enumTemplate, engine.GetSwitches());
    if (refusal) {
      engine.lastRefusal = refusal.Reason();
      return refusal.Code();
    }
    auto record = *wanted;
    record.sessionKey = session.Key();
    *changeHandle = engine.NewHandle();
    session.SubscriptionsTo<Native>().emplace(
        *changeHandle,
        Subscription<Native>{MakeBlock([&](Packer& packer) { return PackRecord(packer, record); }), callback,
                             context});
    return ERROR_SUCCESS;
  };
  return AnswerOutsideTransaction(function, engineHandle,
                                  wanted == nullptr ? "null" : Describe(wanted->enumTemplate), subscribe);
}

/// Returns when the callback does not run any more, unless called from it.
template <class Native>
DWORD AnswerUnsubscribe(const char* function, HANDLE engineHandle, HANDLE changeHandle) {
  // Destroyed after the engine is unlocked, because a running callback may be waiting to use it.
  typename Subscriptions<Native>::node_type ended;
  return AnswerOutsideTransaction(function, engineHandle, "", [&](Engine&, Session& session) {
    ended = session.SubscriptionsTo<Native>().extract(changeHandle);
    return ended.empty() ? static_cast<DWORD>(FWP_E_NOT_FOUND) : ERROR_SUCCESS;
  });
}

template <class Native>
DWORD AnswerSubscriptionsGet(const char* function, HANDLE engineHandle,
                             typename Kind<Native>::Subscription*** entries, UINT32* count) {
  return AnswerSession(function, engineHandle, "", [&](Engine& engine, Session&) -> DWORD {
    if (entries == nullptr || count == nullptr) {
      return kNullPointer;
    }
    std::vector<typename Kind<Native>::Subscription> records;
    for (const auto& [handle, session] : engine.Sessions()) {
      for (const auto& [changeHandle, subscription] : session.template SubscriptionsTo<Native>()) {
        records.push_back(*subscription.record.root);
      }
    }
    *count = static_cast<UINT32>(records.size());
    *entries = records.empty()
                   ? nullptr
                   : engine.memory.HandOut(function, MakeBlock([&](Packer& packer) {
                                             return PackRecords<typename Kind<Native>::Subscription>(packer,
                                                                                                     records);
                                           }));
    return ERROR_SUCCESS;
  });
}

}  // namespace EngineEmulator
