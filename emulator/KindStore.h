/**
 * @file
 * The objects of one kind.
 */
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include "emulator/KeyTable.h"
#include "emulator/Kind.h"

namespace EngineEmulator {

enum class Lifetime { BuiltIn, Persistent, Static, Dynamic };

/// How long an object lives, and for whom.
struct Origin {
  Lifetime lifetime;
  HANDLE session;  ///< The session that a dynamic object ends with; null for all others.
};

/// An object of the engine, in one block of memory with all that hangs off it. It never changes, so that
/// stores, snapshots and transactions can share it.
template <class Native>
struct Object {
  Native record;
  Origin origin;
  UINT64 number;          ///< Rises in the order of adding, never used again. The id of what has one.
  const UINT8* security;  ///< a self-relative descriptor; null for the default

  [[nodiscard]] const Native& Record() const { return record; }
  [[nodiscard]] const GUID& Key() const { return record.*Kind<Native>::kKey; }
};

template <class Native>
using ObjectPtr = std::shared_ptr<const Object<Native>>;

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
    if (const auto number = numbers_.Find(key)) {
      return *number == kErased ? nullptr : Find(*number);
    }
    return base_ != nullptr ? base_->Find(key) : nullptr;
  }

  /// Null when there is none.
  [[nodiscard]] ObjectPtr<Native> Find(UINT64 number) const {
    const auto found = FirstFrom(number);
    if (found != objects_.end() && found->first == number) {
      return found->second;
    }
    return base_ != nullptr ? base_->Find(number) : nullptr;
  }

  [[nodiscard]] std::size_t Count() const { return count_; }

  /// Takes the place of an object with the same number, if there is one.
  void Insert(const ObjectPtr<Native>& object) {
    const bool isNew = Find(object->number) == nullptr;
    numbers_.Set(object->Key(), object->number);
    objects_.insert_or_assign(FirstFrom(object->number), object->number, object);
    count_ += isNew ? 1 : 0;
  }

  void Erase(const Object<Native>& object) {
    const GUID key = object.Key();
    const UINT64 number = object.number;
    if (base_ == nullptr) {
      numbers_.Erase(key);
      objects_.erase(number);
    } else {
      numbers_.Set(key, kErased);
      objects_[number] = nullptr;
    }
    --count_;
  }

  /// Makes the changes that another store holds which lies over this one.
  void Apply(const KindStore& changes) {
    // A key or a number that one object has lost may be another's now.
    for (const auto& [number, object] : changes.objects_) {
      if (const auto mine = Find(number); mine != nullptr) {
        Erase(*mine);
      }
    }
    for (const auto& [number, object] : changes.objects_) {
      if (object != nullptr) {
        Insert(object);
      }
    }
  }

  /// In the order of adding.
  [[nodiscard]] std::vector<ObjectPtr<Native>> All() const {
    std::map<UINT64, ObjectPtr<Native>> merged;
    if (base_ != nullptr) {
      merged = base_->objects_;
      for (const auto& [number, object] : objects_) {
        merged[number] = object;
      }
    }
    std::vector<ObjectPtr<Native>> objects;
    for (const auto& [number, object] : base_ == nullptr ? objects_ : merged) {
      if (object != nullptr) {
        objects.push_back(object);
      }
    }
    return objects;
  }

 private:
  /// The first object of this store, without the base, with at least this number. At once for a new object,
  /// which has the highest.
  [[nodiscard]] auto FirstFrom(UINT64 number) const {
    const bool isNew = objects_.empty() || objects_.rbegin()->first < number;
    return isNew ? objects_.end() : objects_.lower_bound(number);
  }

  /// In place of the number: the object is in the base, but erased.
  static constexpr UINT64 kErased = UINT64_MAX - 1;

  const KindStore* base_ = nullptr;
  std::size_t count_ = 0;
  std::map<UINT64, ObjectPtr<Native>> objects_;  ///< By number. Null: an object of the base that is erased.
  KeyTable numbers_;
};

}  // namespace EngineEmulator
