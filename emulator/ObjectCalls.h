/**
 * @file
 * The calls that each kind of objects has, and the sessions' enumeration.
 */
#pragma once

#include "emulator/EntryPoint.h"
#include "emulator/Selection.h"

namespace EngineEmulator {

template <class Native>
DWORD AnswerAdd(const char* function, HANDLE engineHandle, const Native* record,
                PSECURITY_DESCRIPTOR security, UINT64* number) {
  return AnswerChange(function, engineHandle, Describe(record), [&](Engine& engine, Session& session) {
    return record == nullptr ? kNullPointer : engine.Add(session, *record, security, number);
  });
}

template <class Native>
DWORD AnswerDeleteByKey(const char* function, HANDLE engineHandle, const GUID* key) {
  return AnswerChange(function, engineHandle, Describe(key), [&](Engine& engine, Session& session) {
    return key == nullptr ? kNullPointer : engine.Delete<Native>(session, *key);
  });
}

template <class Native>
DWORD AnswerDeleteById(const char* function, HANDLE engineHandle, UINT64 id) {
  return AnswerChange(function, engineHandle, std::to_string(id),
                      [&](Engine& engine, Session& session) { return engine.Delete<Native>(session, id); });
}

/// @param identity a key or a number.
template <class Native, class Identity>
DWORD Get(const char* function, Engine& engine, const Session& session, const Identity& identity,
          Native** record) {
  if (record == nullptr) {
    return kNullPointer;
  }
  const auto object = engine.ObjectsOf(session).template OfKind<Native>().Find(identity);
  if (object == nullptr) {
    return static_cast<DWORD>(Kind<Native>::kNotFound);
  }
  *record = engine.memory.HandOut(
      function, MakeBlock([&](Packer& packer) { return PackRecord(packer, object->Record()); }));
  return ERROR_SUCCESS;
}

template <class Native>
DWORD AnswerGetByKey(const char* function, HANDLE engineHandle, const GUID* key, Native** record) {
  return AnswerSession(function, engineHandle, Describe(key), [&](Engine& engine, Session& session) {
    return key == nullptr ? kNullPointer : Get(function, engine, session, *key, record);
  });
}

template <class Native>
DWORD AnswerGetById(const char* function, HANDLE engineHandle, UINT64 id, Native** record) {
  return AnswerSession(function, engineHandle, std::to_string(id), [&](Engine& engine, Session& session) {
    return Get(function, engine, session, id, record);
  });
}

/// Keeps the objects for the session to page through.
template <class Native>
DWORD StartEnumeration(Engine& engine, Session& session, std::vector<ObjectPtr<Native>> objects,
                       HANDLE* enumHandle) {
  if (enumHandle == nullptr) {
    return kNullPointer;
  }
  *enumHandle = engine.NewHandle();
  session.EnumerationsOf<Native>().emplace(*enumHandle, Enumeration<Native>{std::move(objects)});
  return ERROR_SUCCESS;
}

template <class Native>
DWORD AnswerCreateEnumHandle(const char* function, HANDLE engineHandle,
                             const typename Kind<Native>::EnumTemplate* criteria, HANDLE* enumHandle) {
  const auto create = [&](Engine& engine, Session& session) -> DWORD {
    if (const Refusal refusal = CheckTemplate(criteria, engine.GetSwitches())) {
      engine.lastRefusal = refusal.Reason();
      return refusal.Code();
    }
    const ObjectStore& objects = engine.ObjectsOf(session);
    auto selected = Select(criteria, objects.template OfKind<Native>().All());
    if (AsksForOrder(criteria)) {
      if constexpr (std::is_same_v<Native, FWPM_FILTER0>) {
        SortFilters(selected, objects);
      }
    } else if (engine.GetSwitches().shuffleEnumerations != 0) {
      std::shuffle(selected.begin(), selected.end(), engine.Random());
    }
    return StartEnumeration(engine, session, std::move(selected), enumHandle);
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
    *entries = page.empty() ? nullptr : engine.memory.HandOut(function, MakeBlock([&](Packer& packer) {
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
