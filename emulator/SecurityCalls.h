/**
 * @file
 * The calls that read and write security descriptors.
 */
#pragma once

#include "emulator/EntryPoint.h"

namespace EngineEmulator {

/// Where a caller wants a descriptor and its parts. All but the descriptor may be null.
struct SecurityTargets {
  PSID* owner;
  PSID* group;
  PACL* dacl;
  PACL* sacl;
  PSECURITY_DESCRIPTOR* descriptor;
};

/// The parts of a descriptor as a caller gives them.
struct SecuritySources {
  const SID* owner;
  const SID* group;
  const ACL* dacl;
  const ACL* sacl;
};

/// The descriptor of what has no key, such as "engine".
SecurityDescriptor SecurityOf(const Engine& engine, std::string_view name);

/// Hands a descriptor out.
DWORD Give(const char* function, Engine& engine, const SecurityDescriptor& security,
           SECURITY_INFORMATION information, const SecurityTargets& targets);

/// Changes a descriptor. ERROR_INVALID_SECURITY_DESCR for parts that are none.
DWORD Change(SecurityDescriptor& security, SECURITY_INFORMATION information, const SecuritySources& sources);

/// For what has no key and no part in transactions.
DWORD AnswerGetSecurity(const char* function, HANDLE engineHandle, std::string_view name,
                        SECURITY_INFORMATION information, const SecurityTargets& targets);
DWORD AnswerSetSecurity(const char* function, HANDLE engineHandle, std::string_view name,
                        SECURITY_INFORMATION information, const SecuritySources& sources);

/// No key stands for the container of all objects of a kind.
inline bool IsContainer(const GUID* key) { return key == nullptr || *key == GUID{}; }

/// What is known of a descriptor: its object's, or the default one.
template <class Native>
SecurityDescriptor SecurityOf(const Object<Native>& object) {
  return object.security == nullptr ? SecurityDescriptor::Default()
                                    : *SecurityDescriptor::FromNative(object.security);
}

template <class Native>
DWORD AnswerGetSecurityByKey(const char* function, HANDLE engineHandle, const GUID* key,
                             SECURITY_INFORMATION information, const SecurityTargets& targets) {
  return AnswerSession(function, engineHandle, Describe(key), [&](Engine& engine, Session& session) -> DWORD {
    if (IsContainer(key)) {
      return Give(function, engine, SecurityOf(engine, Kind<Native>::kName), information, targets);
    }
    const auto object = engine.ObjectsOf(session).template OfKind<Native>().Find(*key);
    return object == nullptr ? static_cast<DWORD>(Kind<Native>::kNotFound)
                             : Give(function, engine, SecurityOf(*object), information, targets);
  });
}

template <class Native>
DWORD AnswerSetSecurityByKey(const char* function, HANDLE engineHandle, const GUID* key,
                             SECURITY_INFORMATION information, const SecuritySources& sources) {
  return AnswerChange(function, engineHandle, Describe(key), [&](Engine& engine, Session& session) -> DWORD {
    if (IsContainer(key)) {
      SecurityDescriptor security = SecurityOf(engine, Kind<Native>::kName);
      const DWORD result = Change(security, information, sources);
      engine.securities[Kind<Native>::kName] = security;
      return result;
    }
    const auto object = engine.ObjectsOf(session).template OfKind<Native>().Find(*key);
    if (object == nullptr) {
      return static_cast<DWORD>(Kind<Native>::kNotFound);
    }
    SecurityDescriptor security = SecurityOf(*object);
    const DWORD result = Change(security, information, sources);
    return result != ERROR_SUCCESS ? result : engine.SetSecurity<Native>(session, *key, security);
  });
}

}  // namespace EngineEmulator
