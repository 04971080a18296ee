#pragma once

#include <guiddef.h>

#include <string>

/// What an object of the engine is known by.
struct RuleSetIdentity {
  GUID guid{};
  std::wstring name;
  std::wstring description;
};

/// What the host handed over at Initialize; all empty before that.
struct StoredIdentities {
  RuleSetIdentity provider;
  RuleSetIdentity killSwitch;
  RuleSetIdentity localNetwork;
  RuleSetIdentity dhcp;
  RuleSetIdentity dnsLeak;
  RuleSetIdentity interfaceLeak;
  RuleSetIdentity firewallCopy;
  RuleSetIdentity skein;
  std::wstring dnsPermittedAppPath;
};

/// The identities of this process.
StoredIdentities& Identities();
