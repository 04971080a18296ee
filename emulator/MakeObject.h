/**
 * @file
 * How a record becomes an object of the engine.
 */
#pragma once

#include "emulator/KindStore.h"
#include "emulator/Records.h"
#include "emulator/SecurityDescriptor.h"

namespace EngineEmulator {

/// An object with a deep copy of the record.
/// @param security null for the default
template <class Native>
ObjectPtr<Native> MakeObject(const Native& record, const Origin& origin, UINT64 number,
                             const SecurityDescriptor* security = nullptr) {
  constexpr SECURITY_INFORMATION kAllParts = OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION |
                                             DACL_SECURITY_INFORMATION | SACL_SECURITY_INFORMATION;
  return MakeSharedBlock([&](Packer& packer) {
    const Object<Native> object{Pack(packer, record), origin, number,
                                security == nullptr ? nullptr : security->Pack(packer, kAllParts)};
    return packer.Copy(&object);
  });
}

}  // namespace EngineEmulator
