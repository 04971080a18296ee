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
#include "emulator/SecurityDescriptor.h"

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
  UINT64 number;  ///< Rises in the order of adding, never used again. The id of what has one.
  std::shared_ptr<const SecurityDescriptor> security;  ///< null for the default

  [[nodiscard]] const Native& Record() const { return *block.root; }
  [[nodiscard]] const GUID& Key() const { return Record().*Kind<Native>::kKey; }
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

/// The objects of one kind. A store can lie over another one: it then holds the changes to that, and is read
/// as if they had been made. Copying a store copies pointers, not objects.
template <class Native>
class KindStore {
 public:
  KindStore() = default;
  /// @param base must outlive this store.
  explicit KindStore(const KindStore* base) : base_(base), count_(base->count_) {}

  /// Null when there is none.
  [[nodiscard]] ObjectPtr<Native> Find(const GUID& key) const {
    const auto found = byKey_.find(key);
    if (found != byKey_.end()) {
      return found->second;
    }
    return base_ != nullptr ? base_->Find(key) : nullptr;
  }

  /// Null when there is none.
  [[nodiscard]] ObjectPtr<Native> Find(UINT64 number) const {
    const auto found = byNumber_.find(number);
    if (found != byNumber_.end()) {
      return found->second;
    }
    return base_ != nullptr ? base_->Find(number) : nullptr;
  }

  [[nodiscard]] std::size_t Count() const { return count_; }

  /// Takes the place of an object with the same number, if there is one.
  void Insert(const ObjectPtr<Native>& object) {
    count_ += Find(object->number) == nullptr ? 1 : 0;
    byKey_[object->Key()] = object;
    byNumber_[object->number] = object;
  }

  void Erase(const Object<Native>& object) {
    const GUID key = object.Key();
    const UINT64 number = object.number;
    --count_;
    if (base_ == nullptr) {
      byKey_.erase(key);
      byNumber_.erase(number);
    } else {
      byKey_[key] = nullptr;
      byNumber_[number] = nullptr;
    }
  }

  /// Makes the changes that another store holds which lies over this one.
  void Apply(const KindStore& changes) {
    for (const auto& [number, object] : changes.byNumber_) {
      if (object != nullptr) {
        Insert(object);
      } else if (const auto mine = Find(number); mine != nullptr) {
        Erase(*mine);
      }
    }
  }

  /// In the order of adding.
  [[nodiscard]] std::vector<ObjectPtr<Native>> All() const {
    std::map<UINT64, ObjectPtr<Native>> merged;
    if (base_ != nullptr) {
      merged = base_->byNumber_;
      for (const auto& [number, object] : byNumber_) {
        merged[number] = object;
      }
    }
    std::vector<ObjectPtr<Native>> objects;
    for (const auto& [number, object] : base_ == nullptr ? byNumber_ : merged) {
      if (object != nullptr) {
        objects.push_back(object);
      }
    }
    return objects;
  }

 private:
  const KindStore* base_ = nullptr;
  std::size_t count_ = 0;
  // Null stands for an object of the base that is erased.
  std::unordered_map<GUID, ObjectPtr<Native>, GuidHash> byKey_;
  std::map<UINT64, ObjectPtr<Native>> byNumber_;
};

}  // namespace EngineEmulator
