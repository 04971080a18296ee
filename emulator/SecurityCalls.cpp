#include "emulator/SecurityCalls.h"

namespace EngineEmulator {
namespace {

template <class Part>
void Store(Part* target, Part part) {
  if (target != nullptr) {
    *target = part;
  }
}

}  // namespace

SecurityDescriptor SecurityOf(const Engine& engine, std::string_view name) {
  const auto found = engine.securities.find(name);
  return found == engine.securities.end() ? SecurityDescriptor::Default() : found->second;
}

DWORD Give(const char* function, Engine& engine, const SecurityDescriptor& security,
           SECURITY_INFORMATION information, const SecurityTargets& targets) {
  if (targets.descriptor == nullptr) {
    return kNullPointer;
  }
  UINT8* const bytes = engine.memory.HandOut(
      function, MakeBlock([&](Packer& packer) { return security.Pack(packer, information); }));
  const SecurityParts parts = PartsOf(bytes);
  Store<PSID>(targets.owner, parts.owner);
  Store<PSID>(targets.group, parts.group);
  Store(targets.dacl, parts.dacl);
  Store(targets.sacl, parts.sacl);
  *targets.descriptor = bytes;
  return ERROR_SUCCESS;
}

DWORD Change(SecurityDescriptor& security, SECURITY_INFORMATION information, const SecuritySources& sources) {
  return security.Set(information, sources.owner, sources.group, sources.dacl, sources.sacl)
             ? ERROR_SUCCESS
             : ERROR_INVALID_SECURITY_DESCR;
}

DWORD AnswerGetSecurity(const char* function, HANDLE engineHandle, std::string_view name,
                        SECURITY_INFORMATION information, const SecurityTargets& targets) {
  return AnswerSession(function, engineHandle, "", [&](Engine& engine, Session&) {
    return Give(function, engine, SecurityOf(engine, name), information, targets);
  });
}

DWORD AnswerSetSecurity(const char* function, HANDLE engineHandle, std::string_view name,
                        SECURITY_INFORMATION information, const SecuritySources& sources) {
  return AnswerOutsideTransaction(function, engineHandle, "", [&](Engine& engine, Session&) {
    SecurityDescriptor security = SecurityOf(engine, name);
    const DWORD result = Change(security, information, sources);
    engine.securities[name] = security;
    return result;
  });
}

}  // namespace EngineEmulator
