/**
 * @file
 * Security descriptors: who may do what to an object. The engine keeps them and gives them back; it lets
 * everybody do everything.
 */
#pragma once

#include <WfpPlatform.h>

#include <array>
#include <optional>
#include <span>
#include <vector>

#include "emulator/Records.h"

namespace EngineEmulator {

/// Whether these are the bytes of a descriptor that holds all its parts.
bool IsSelfRelative(std::span<const UINT8> bytes);

/// The parts of a descriptor as bytes; absent or, for a list, null ones are empty.
class SecurityDescriptor {
 public:
  /// What an object has that was added without one: all rights to administrators and network operators,
  /// opening the engine and classifying to everybody.
  static const SecurityDescriptor& Default();

  /// @param descriptor self-relative. Empty if it is not, or is out of shape.
  static std::optional<SecurityDescriptor> FromNative(const void* descriptor);

  /// Takes over the parts that the information names. False, and nothing changed, if one of them is
  /// malformed.
  bool Set(SECURITY_INFORMATION information, const SID* owner, const SID* group, const ACL* dacl,
           const ACL* sacl);

  /// A self-relative descriptor of the parts that the information names.
  UINT8* Pack(Packer& packer, SECURITY_INFORMATION information) const;

 private:
  /// In the order of SECURITY_INFORMATION's bits: owner, group, DACL, SACL.
  std::array<std::vector<UINT8>, 4> parts_;
};

/// Where the parts of a self-relative descriptor begin; null for those that it lacks.
struct SecurityParts {
  void* owner;
  void* group;
  ACL* dacl;
  ACL* sacl;
};
SecurityParts PartsOf(UINT8* descriptor);

}  // namespace EngineEmulator
