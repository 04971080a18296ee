/**
 * @file
 * How a record becomes an object of the engine.
 */
#pragma once

#include "emulator/KindStore.h"

namespace EngineEmulator {

/// An object with a deep copy of the record.
/// @param security null for the default
template <class Native>
ObjectPtr<Native> MakeObject(const Native& record, const Origin& origin, UINT64 number,
                             std::shared_ptr<const SecurityDescriptor> security = nullptr) {
  auto block = MakeBlock([&](Packer& packer) { return PackRecord(packer, record); });
  return std::make_shared<const Object<Native>>(
      Object<Native>{std::move(block), origin, number, std::move(security)});
}

}  // namespace EngineEmulator
