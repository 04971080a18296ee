/**
 * @file
 * The objects of one kind.
 */
#pragma once

#include <cstring>
#include <map>
#include <unordered_map>
#include <vector>

#include "emulator/Kind.h"
#include "emulator/Records.h"

namespace EngineEmulator {

enum class Lifetime { BuiltIn, Persistent, Static, Dynamic };

/// How long an object lives, and for whom.
struct Origin {
  Lifetime lifetime;
  HANDLE session;  ///< The session that a dynamic object ends with; null for all others.
};

/// An object of the engine. It never changes, so that stores, snapshots and transactions can share it.
template <class Native>
struct Object {
  Block<Native> block;
  Origin origin;
  UINT64 number;  ///< Rises in the order of adding, never used again. A filter's is its id.

  const Native& Record() const { return *block.root; }
  const GUID& Key() const { return Record().*Kind<Native>::kKey; }
};

template <class Native>
using ObjectPtr = std::shared_ptr<const Object<Native>>;

struct GuidHash {
  std::size_t operator()(const GUID& key) const {
    UINT64 halves[2];
    static_assert(sizeof(halves) == sizeof(key));
    std::memcpy(halves, &key, sizeof(key));
    return std::hash<UINT64>()(halves[0] ^ halves[1]);
  }
};

/// Copying a store copies pointers, not objects.
template <class Native>
class ObjectStore {
 public:
  /// Null when there is none.
  ObjectPtr<Native> Find(const GUID& key) const {
    const auto found = byKey_.find(key);
    return found == byKey_.end() ? nullptr : found->second;
  }

  /// Null when there is none.
  ObjectPtr<Native> Find(UINT64 number) const {
    const auto found = byNumber_.find(number);
    return found == byNumber_.end() ? nullptr : found->second;
  }

  void Insert(const ObjectPtr<Native>& object) {
    byKey_.emplace(object->Key(), object);
    byNumber_.emplace(object->number, object);
  }

  void Erase(const Object<Native>& object) {
    byNumber_.erase(object.number);
    byKey_.erase(GUID(object.Key()));
  }

  /// In the order of adding.
  std::vector<ObjectPtr<Native>> All() const {
    std::vector<ObjectPtr<Native>> objects;
    objects.reserve(byNumber_.size());
    for (const auto& [number, object] : byNumber_) {
      objects.push_back(object);
    }
    return objects;
  }

 private:
  std::unordered_map<GUID, ObjectPtr<Native>, GuidHash> byKey_;
  std::map<UINT64, ObjectPtr<Native>> byNumber_;
};

}  // namespace EngineEmulator
