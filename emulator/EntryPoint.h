/**
 * @file
 * What every function of the engine's interface has in common.
 */
#pragma once

#include <mutex>
#include <string>
#include <utility>

#include "emulator/Engine.h"
#include "emulator/Selection.h"
#include "emulator/Texts.h"

namespace EngineEmulator {

/// The engine, to be replaced at a reset. Hold the lock while using it.
struct LockedEngine {
  std::unique_lock<std::mutex> lock;
  Engine& engine;
};
LockedEngine LockEngine();
void ResetEngine();

/// Answers a call: with the planned failure if there is one, else with what the body gives. Either way
/// the call is in the journal.
/// @param body takes the Engine&.
template <class Body>
DWORD Answer(const char* function, std::string arguments, Body body) {
  const LockedEngine locked = LockEngine();
  Engine& engine = locked.engine;
  const std::optional<DWORD> failure = engine.faults.Count(function);
  const DWORD result = failure.has_value() ? *failure : body(engine);
  engine.journal.push_back({function, std::move(arguments), result});
  return result;
}

/// The same for calls within a session.
/// @param body takes the Engine& and the Session&.
template <class Body>
DWORD AnswerSession(const char* function, HANDLE engineHandle, std::string arguments, Body body) {
  return Answer(function, std::move(arguments), [&](Engine& engine) -> DWORD {
    Session* session = engine.FindSession(engineHandle);
    return session == nullptr ? ERROR_INVALID_HANDLE : body(engine, *session);
  });
}

constexpr DWORD kNullPointer = static_cast<DWORD>(FWP_E_NULL_POINTER);

template <class Native>
DWORD AnswerAdd(const char* function, HANDLE engineHandle, const Native* record, UINT64* number) {
  return AnswerSession(function, engineHandle, Describe(record), [&](Engine& engine, Session& session) {
    return record == nullptr ? kNullPointer : engine.Add(session, *record, number);
  });
}

template <class Native>
DWORD AnswerDeleteByKey(const char* function, HANDLE engineHandle, const GUID* key) {
  return AnswerSession(function, engineHandle, Describe(key), [&](Engine& engine, Session& session) {
    return key == nullptr ? kNullPointer : engine.Delete<Native>(session, *key);
  });
}

/// @param identity a key or a number.
template <class Native, class Identity>
DWORD Get(Engine& engine, const Session& session, const Identity& identity, Native** record) {
  if (record == nullptr) {
    return kNullPointer;
  }
  const auto object = engine.PolicyOf(session).template Objects<Native>().Find(identity);
  if (object == nullptr) {
    return Kind<Native>::kNotFound;
  }
  *record =
      engine.memory.HandOut(MakeBlock([&](Packer& packer) { return PackRecord(packer, object->Record()); }));
  return ERROR_SUCCESS;
}

template <class Native>
DWORD AnswerGetByKey(const char* function, HANDLE engineHandle, const GUID* key, Native** record) {
  return AnswerSession(function, engineHandle, Describe(key), [&](Engine& engine, Session& session) {
    return key == nullptr ? kNullPointer : Get(engine, session, *key, record);
  });
}

template <class Native>
DWORD AnswerCreateEnumHandle(const char* function, HANDLE engineHandle,
                             const typename Kind<Native>::EnumTemplate* criteria, HANDLE* enumHandle) {
  const auto create = [&](Engine& engine, Session& session) -> DWORD {
    if (enumHandle == nullptr) {
      return kNullPointer;
    }
    if (const DWORD fault = CheckTemplate(criteria); fault != ERROR_SUCCESS) {
      return fault;
    }
    const HANDLE handle = engine.NewHandle();
    auto selected = Select(criteria, engine.PolicyOf(session).template Objects<Native>().All());
    session.EnumerationsOf<Native>().emplace(handle, Enumeration<Native>{std::move(selected)});
    *enumHandle = handle;
    return ERROR_SUCCESS;
  };
  return AnswerSession(function, engineHandle, Describe(criteria), create);
}

/// The array and the records in it are one block. An empty array is a null pointer.
template <class Native>
Native** PackArray(Packer& packer, const std::vector<ObjectPtr<Native>>& objects) {
  std::vector<Native*> records;
  records.reserve(objects.size());
  for (const ObjectPtr<Native>& object : objects) {
    records.push_back(PackRecord(packer, object->Record()));
  }
  return packer.Copy(records.data(), records.size());
}

template <class Native>
DWORD AnswerEnum(const char* function, HANDLE engineHandle, HANDLE enumHandle, UINT32 requested,
                 Native*** entries, UINT32* returned) {
  const auto enumerate = [&](Engine& engine, Session& session) -> DWORD {
    if (entries == nullptr || returned == nullptr) {
      return kNullPointer;
    }
    auto& enumerations = session.EnumerationsOf<Native>();
    const auto found = enumerations.find(enumHandle);
    if (found == enumerations.end()) {
      return static_cast<DWORD>(FWP_E_NOT_FOUND);
    }
    const auto page = found->second.Take(requested);
    *returned = static_cast<UINT32>(page.size());
    *entries = page.empty() ? nullptr : engine.memory.HandOut(MakeBlock([&](Packer& packer) {
      return PackArray(packer, page);
    }));
    return ERROR_SUCCESS;
  };
  return AnswerSession(function, engineHandle, std::to_string(requested), enumerate);
}

template <class Native>
DWORD AnswerDestroyEnumHandle(const char* function, HANDLE engineHandle, HANDLE enumHandle) {
  return AnswerSession(function, engineHandle, "", [&](Engine&, Session& session) {
    const bool existed = session.EnumerationsOf<Native>().erase(enumHandle) != 0;
    return existed ? ERROR_SUCCESS : static_cast<DWORD>(FWP_E_NOT_FOUND);
  });
}

}  // namespace EngineEmulator
