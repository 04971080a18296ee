/**
 * @file
 * Everything that the engine holds at one moment.
 */
#pragma once

#include <tuple>

#include "emulator/ObjectStore.h"

namespace EngineEmulator {

/// All objects, with a count of the references to each. Checks nothing: that is done before a change. A
/// transaction works on a copy, which becomes the engine's policy at commit.
class Policy {
 public:
  template <class Native>
  const ObjectStore<Native>& Objects() const {
    return std::get<ObjectStore<Native>>(stores_);
  }

  template <class Native>
  void Add(const ObjectPtr<Native>& object) {
    std::get<ObjectStore<Native>>(stores_).Insert(object);
    CountReferences(object->Record(), 1);
  }

  template <class Native>
  void Remove(const ObjectPtr<Native>& object) {
    CountReferences(object->Record(), -1);
    std::get<ObjectStore<Native>>(stores_).Erase(*object);
  }

  /// Whether another object refers to this one.
  bool IsReferred(const FWPM_PROVIDER0& provider) const;
  bool IsReferred(const FWPM_SUBLAYER0& sublayer) const;
  bool IsReferred(const FWPM_FILTER0& filter) const;

  /// Ends the dynamic objects of a session.
  void RemoveObjectsOf(HANDLE session);

 private:
  using References = std::unordered_map<GUID, int, GuidHash>;

  static void Count(References& references, const GUID* key, int change);
  void CountReferences(const FWPM_PROVIDER0& provider, int change);
  void CountReferences(const FWPM_SUBLAYER0& sublayer, int change);
  void CountReferences(const FWPM_FILTER0& filter, int change);

  template <class Native>
  void RemoveObjectsOfKind(HANDLE session);

  std::tuple<ObjectStore<FWPM_PROVIDER0>, ObjectStore<FWPM_SUBLAYER0>, ObjectStore<FWPM_FILTER0>> stores_;
  References toProviders_;
  References toSublayers_;
};

}  // namespace EngineEmulator
