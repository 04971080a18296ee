#pragma once

#include <guiddef.h>

#include <algorithm>

/// The key, name and description of an object of the engine.
struct Identity {
  GUID key;
  const wchar_t* name;
  const wchar_t* description;
};

/// The tool has identities of its own, so that it never touches what an installed client has put into the
/// engine.
inline constexpr Identity kProvider{
    {0xb2574836, 0xbff5, 0x4a6e, {0x9b, 0xc2, 0xdb, 0x92, 0xf1, 0x63, 0x23, 0x30}},
    L"Corvane Firewall Tool",
    L"Rules installed by corvane-firewall"};
inline constexpr Identity kKillSwitch{
    {0xd1afa5f6, 0x6c35, 0x4ca2, {0xb7, 0x60, 0x16, 0x43, 0xd9, 0xdb, 0xc9, 0x16}},
    L"Corvane Kill Switch",
    L"Blocks traffic outside the tunnel"};
inline constexpr Identity kLocalNetwork{
    {0xc65ec4fb, 0x2f21, 0x4713, {0xb3, 0x0f, 0x2e, 0x77, 0x0f, 0x8a, 0xfd, 0x47}},
    L"Corvane Local Network",
    L"Corvane Local Network"};
inline constexpr Identity kDhcp{
    {0x28c81cd0, 0xd8bf, 0x4ab0, {0x9d, 0xef, 0x9a, 0x7b, 0xf7, 0x1e, 0x46, 0x41}},
    L"Corvane DHCP",
    L"Lets address configuration through"};
inline constexpr Identity kDnsLeak{
    {0xb22d6566, 0xf522, 0x4aed, {0x9e, 0x2b, 0x1b, 0x57, 0x3a, 0xe9, 0x47, 0x81}},
    L"Corvane DNS Leak Protection",
    L"Keeps name look-ups inside the tunnel"};
inline constexpr Identity kInterfaceLeak{
    {0x9cedb32c, 0xdf7c, 0x4391, {0xba, 0x9b, 0x02, 0x22, 0x83, 0x8d, 0x23, 0x70}},
    L"Corvane Interface Leak Protection",
    L"Keeps traffic on the tunnel's interface"};
inline constexpr Identity kFirewallCopy{
    {0x486c6a8c, 0x8e2d, 0x4aa3, {0xb9, 0x70, 0x5a, 0x85, 0x4a, 0x90, 0xdb, 0x6a}},
    L"Corvane Copy of Windows Firewall",
    L"Repeats the application blocks of Windows Firewall"};
inline constexpr Identity kSkein{
    {0x114ddbf6, 0x4c1f, 0x4c27, {0xa0, 0x9c, 0xd7, 0x15, 0xac, 0x72, 0xd8, 0x07}},
    L"Corvane Skein",
    L"Rules of the Skein network"};

inline constexpr const Identity* kRuleSets[]{&kKillSwitch,    &kLocalNetwork, &kDhcp, &kDnsLeak,
                                             &kInterfaceLeak, &kFirewallCopy, &kSkein};

/// Whether the key is that of one of the sublayers above.
inline bool IsRuleSet(const GUID& key) {
  return std::any_of(std::begin(kRuleSets), std::end(kRuleSets),
                     [&](const Identity* ruleSet) { return ruleSet->key == key; });
}
