/**
 * @file
 * A client's connection to the engine.
 */
#pragma once

#include <algorithm>
#include <optional>

#include "emulator/Policy.h"

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

/// The engine's objects as a transaction sees them, its own changes included.
struct Transaction {
  bool readOnly;
  Policy policy;
};

template <class Native>
using Enumerations = std::unordered_map<HANDLE, Enumeration<Native>>;

struct Session {
  HANDLE handle;
  GUID key;
  bool dynamic;
  std::optional<Transaction> transaction;
  std::tuple<Enumerations<FWPM_PROVIDER0>, Enumerations<FWPM_SUBLAYER0>, Enumerations<FWPM_FILTER0>>
      enumerations;

  template <class Native>
  Enumerations<Native>& EnumerationsOf() {
    return std::get<Enumerations<Native>>(enumerations);
  }

  std::size_t CountEnumerations() const {
    return std::apply([](const auto&... kinds) { return (kinds.size() + ...); }, enumerations);
  }
};

}  // namespace EngineEmulator
