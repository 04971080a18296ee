/**
 * @file
 * GUIDs in hash tables.
 */
#pragma once

#include <WfpPlatform.h>

#include <cstring>
#include <functional>

namespace EngineEmulator {

struct GuidHash {
  std::size_t operator()(const GUID& key) const {
    UINT64 halves[2];
    static_assert(sizeof(halves) == sizeof(key));
    std::memcpy(halves, &key, sizeof(key));
    return std::hash<UINT64>()(halves[0] ^ halves[1]);
  }
};

}  // namespace EngineEmulator
