/**
 * @file
 * The C interface of Corvane.Native.Firewall.dll, for hosts. Compiles as C11 and as C++20, by itself.
 *
 * Order of calls: Initialize first, once, then the commands in any order. Before Initialize the queries,
 * GetErrorText and commands that find nothing to do answer; a command that has something to install
 * fails the process.
 *
 * Threads: any thread may call, one at a time. Nothing is locked, so the host serialises its calls. Each
 * call does all its work on the caller's thread, callbacks included, and has finished when it returns.
 *
 * Arguments: the caller keeps ownership of everything that it passes; what is needed later is copied, so
 * all of it may be freed when the call returns. Null is refused nowhere and allowed only where it says
 * so. Texts are zero-terminated, wide ones UTF-16. Counts are of elements. IPv4 addresses are numbers in
 * host byte order: 10.0.0.1 is 0x0A000001. A NET_LUID is passed as the 64-bit number in its Value.
 *
 * Results: queries give 1 or 0 and cannot fail; they tell what was switched on through this library, not
 * what the filtering engine holds. Commands give 0 for success and when there was nothing to do.
 * Otherwise they give the code of the failure, a Windows or FWP_E_ code or one of the CORVANE_ codes
 * below, zero-extended to 64 bits, and leave a text for GetErrorText.
 *
 * Everything that the commands install lives in one dynamic session of the filtering engine and is gone
 * when the DLL is unloaded, the process ends in whatever way, or Initialize is called again.
 */
#ifndef CORVANE_NATIVE_FIREWALL_H
#define CORVANE_NATIVE_FIREWALL_H

#include <guiddef.h>
#include <stdint.h>  // NOLINT(modernize-deprecated-headers): C needs it so.
#ifndef __cplusplus
#include <wchar.h>
#endif

#define CORVANE_CALL __stdcall

/** A failure that no engine call reported. */
#define CORVANE_ERROR_WITHOUT_CODE 1
/** DisableInternet failed outside the filtering engine. */
#define CORVANE_ERROR_GETTING_INTERFACES 904

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Receives one line of progress. Called on the thread that called the command, before that returns; must
 * neither call the library nor let an exception out. Commands that take a callback do not accept null.
 *
 * @param line without a line end, valid during the call only: ASCII, except for names of adapters and
 *        applications, which are UTF-8.
 * @return ignored.
 */
typedef uint64_t(CORVANE_CALL* LogCallback)(const char* line);  // NOLINT(modernize-use-using): C.

/**
 * Hands over the identities of everything that the library puts into the filtering engine. Makes no
 * engine call and cannot fail. A second call starts afresh: the earlier session closes, whatever was
 * installed through it is gone, every feature is off.
 *
 * For the provider and each of the seven rule sets it takes three arguments, none of them null, all of
 * them copied:
 *   ...Key          the GUID of the object in the engine. Give each its own and keep it over releases.
 *   ...Name         what administrators see as its name; may be empty.
 *   ...Description  what administrators see as its description; may be empty.
 *
 * @param providerKey, providerName, providerDescription the owner of all filters.
 * @param killSwitchKey, killSwitchName, killSwitchDescription see DisableInternet.
 * @param localNetworkKey, localNetworkName, localNetworkDescription see DisableLocalNetwork. The rule set
 *        carries its description as its name and an empty description; the name is not used.
 * @param dhcpKey, dhcpName, dhcpDescription see EnableDhcp.
 * @param dnsLeakKey, dnsLeakName, dnsLeakDescription see EnableLeakProtection.
 * @param interfaceLeakKey, interfaceLeakName, interfaceLeakDescription see EnableLeakProtection.
 * @param firewallCopyKey, firewallCopyName, firewallCopyDescription see EnableLeakProtection.
 * @param skeinKey, skeinName, skeinDescription see EnableSkeinFirewallRules.
 * @param dnsPermittedAppPath full path of the one executable whose name look-ups may bypass the tunnel;
 *        read by EnableLeakProtection. Not null. Not checked here.
 */
// One identity a line.
// clang-format off
void CORVANE_CALL Initialize(
    const GUID* providerKey, const wchar_t* providerName, const wchar_t* providerDescription,
    const GUID* killSwitchKey, const wchar_t* killSwitchName, const wchar_t* killSwitchDescription,
    const GUID* localNetworkKey, const wchar_t* localNetworkName, const wchar_t* localNetworkDescription,
    const GUID* dhcpKey, const wchar_t* dhcpName, const wchar_t* dhcpDescription,
    const GUID* dnsLeakKey, const wchar_t* dnsLeakName, const wchar_t* dnsLeakDescription,
    const GUID* interfaceLeakKey, const wchar_t* interfaceLeakName, const wchar_t* interfaceLeakDescription,
    const GUID* firewallCopyKey, const wchar_t* firewallCopyName, const wchar_t* firewallCopyDescription,
    const GUID* skeinKey, const wchar_t* skeinName, const wchar_t* skeinDescription,
    const wchar_t* dnsPermittedAppPath);
// clang-format on

/**
 * The text of the latest failure of a command; success does not clear it. EnableLeakProtection and
 * DisableLeakProtection never set it.
 *
 * @return English, UTF-8, never null; empty before any failure. Owned by the library; valid until the
 *         next command that fails, so copy it at once.
 */
const char* CORVANE_CALL GetErrorText(void);

/** @return 1 while no kill switch is installed, also before Initialize; else 0. */
uint64_t CORVANE_CALL IsInternetEnabled(void);

/**
 * Removes the kill switch.
 *
 * @return 0, also when there is none; or the code of the failure, after which it stays installed.
 */
uint64_t CORVANE_CALL EnableInternet(void);

/**
 * Installs the kill switch: it blocks all traffic but loopback, local networks (except for name look-ups)
 * and what the arguments spare. An installed one is replaced in a single engine transaction, so that there
 * is no moment without it.
 *
 * @param apps full paths of executables that stay connected; a path may name its volume by letter. Null
 *        when appCount is 0. One that does not exist makes the command fail.
 * @param appCount how many apps; 0 for none.
 * @param interfaceNames texts to look for, in their letter case, anywhere in the descriptions of the
 *        network adapters; traffic over the adapter found stays free. When several are found, when none
 *        is, or when the adapters cannot be listed, none is spared and the result is 0 nonetheless. Null
 *        for none. Only logged when there are apps.
 * @param interfaceCount how many interfaceNames; not read when that is null.
 * @param log not null.
 * @return 0; the code of the failure; or CORVANE_ERROR_GETTING_INTERFACES for one outside the engine. A
 *         failure to install leaves the kill switch counted as installed until EnableInternet.
 */
uint64_t CORVANE_CALL DisableInternet(const wchar_t* const* apps, uint32_t appCount,
                                      const wchar_t* const* interfaceNames, uint32_t interfaceCount,
                                      LogCallback log);

/** @return 1 while the DHCP rules are installed, else 0. */
uint64_t CORVANE_CALL IsDhcpEnabled(void);

/**
 * Installs rules that permit DHCP. They do not outdo a block of another rule set.
 *
 * @param log not null.
 * @return 0, also when they are installed already; or the code of the failure, after which the rules
 *         count as installed, and a second call does nothing, until DisableDhcp.
 */
uint64_t CORVANE_CALL EnableDhcp(LogCallback log);

/**
 * Removes the DHCP rules.
 *
 * @param log not null.
 * @return 0, also when there are none; or the code of the failure, after which they stay installed.
 */
uint64_t CORVANE_CALL DisableDhcp(LogCallback log);

/** @return 1 while all three rule sets of the leak protection are installed, else 0. */
uint64_t CORVANE_CALL IsLeakProtectionEnabled(void);

/**
 * Keeps traffic inside the tunnel, by three rule sets: name look-ups leave over the allowed interfaces
 * only, outgoing connections too, and applications that Windows Firewall blocks stay blocked. Called
 * again, it only replaces the rules of outgoing connections, in a single engine transaction.
 *
 * A rule set that cannot be built is left out: the result is 0 nonetheless; the log and
 * IsLeakProtectionEnabled tell. After any other failure all three are removed. Leaves the text of
 * GetErrorText as it was. A failure to list the network adapters leaves as a C++ exception; give the
 * LUID, and none are listed.
 *
 * @param serverAddress the VPN server in dotted decimal; stays reachable over any interface. Not null.
 * @param log not null.
 * @param interfaceNames texts to look for, in their letter case, anywhere in the descriptions of the
 *        network adapters; those found are the allowed interfaces. Only logged when interfaceLuid is not
 *        0. Null when interfaceCount is 0.
 * @param interfaceCount how many interfaceNames.
 * @param interfaceLuid the NET_LUID of the one interface to allow; 0 to look for the names. When neither
 *        gives an interface, outgoing connections are not confined.
 * @param permittedAddresses IPv4 addresses that stay reachable over any interface. May be null.
 * @param permittedAddressCount how many permittedAddresses; null is the same as 0.
 * @return 0 or the code of the failure.
 */
uint64_t CORVANE_CALL EnableLeakProtection(const char* serverAddress, LogCallback log,
                                           const wchar_t* const* interfaceNames, uint32_t interfaceCount,
                                           uint64_t interfaceLuid, const uint32_t* permittedAddresses,
                                           uint64_t permittedAddressCount);

/**
 * Removes whatever is installed of the leak protection.
 *
 * @return always 0. What cannot be removed stays installed, and IsLeakProtectionEnabled tells only when
 *         that is all of it.
 */
uint64_t CORVANE_CALL DisableLeakProtection(void);

/** @return 1 while local networks are not blocked, also before Initialize; else 0. */
uint64_t CORVANE_CALL IsLocalNetworkEnabled(void);

/**
 * Removes the block of local networks.
 *
 * @return 0, also when there is none; or the code of the failure, after which it stays installed.
 */
uint64_t CORVANE_CALL EnableLocalNetwork(void);

/**
 * Blocks private IPv4 networks and IPv6 link-local and unique-local ones, except for remote port 53.
 *
 * @param log not null.
 * @return 0, also when they are blocked already; or the code of the failure, after which the block counts
 *         as installed, and a second call does nothing, until EnableLocalNetwork.
 */
uint64_t CORVANE_CALL DisableLocalNetwork(LogCallback log);

/**
 * Installs the rules of the Skein network: inbound connections from 100.64.0.0/10 over its interfaces are
 * blocked, but for those from its peers. Installed rules are removed first, without a transaction; if
 * that fails, its text stays in GetErrorText although the command may succeed. A failure to list the
 * network adapters leaves as a C++ exception; give the LUID, and none are listed.
 *
 * @param log not null.
 * @param interfaceNames texts to look for, in their letter case, anywhere in the descriptions of the
 *        network adapters; those found are its interfaces. Only logged when interfaceLuid is not 0. Null
 *        when interfaceCount is 0.
 * @param interfaceCount how many interfaceNames.
 * @param interfaceLuid the NET_LUID of its one interface; 0 to look for the names. When neither gives an
 *        interface, nothing is blocked.
 * @param peers IPv4 addresses from which connections are let in. May be null.
 * @param peerCount how many peers; null is the same as 0: then no connection from the range is let in.
 * @return 0; or the code of the failure, after which the rules count as installed until
 *         DisableSkeinFirewallRules.
 */
uint64_t CORVANE_CALL EnableSkeinFirewallRules(LogCallback log, const wchar_t* const* interfaceNames,
                                               uint32_t interfaceCount, uint64_t interfaceLuid,
                                               const uint32_t* peers, uint64_t peerCount);

/**
 * Removes the rules of the Skein network.
 *
 * @return 0, also when there are none; or the code of the failure, after which they stay installed.
 */
uint64_t CORVANE_CALL DisableSkeinFirewallRules(void);

/*
 * For hosts that load the library themselves: each function's address, as GetProcAddress gives it by the
 * function's name.
 */
// NOLINTBEGIN(modernize-use-using): C.
// clang-format off
typedef void(CORVANE_CALL* InitializeFunction)(
    const GUID* providerKey, const wchar_t* providerName, const wchar_t* providerDescription,
    const GUID* killSwitchKey, const wchar_t* killSwitchName, const wchar_t* killSwitchDescription,
    const GUID* localNetworkKey, const wchar_t* localNetworkName, const wchar_t* localNetworkDescription,
    const GUID* dhcpKey, const wchar_t* dhcpName, const wchar_t* dhcpDescription,
    const GUID* dnsLeakKey, const wchar_t* dnsLeakName, const wchar_t* dnsLeakDescription,
    const GUID* interfaceLeakKey, const wchar_t* interfaceLeakName, const wchar_t* interfaceLeakDescription,
    const GUID* firewallCopyKey, const wchar_t* firewallCopyName, const wchar_t* firewallCopyDescription,
    const GUID* skeinKey, const wchar_t* skeinName, const wchar_t* skeinDescription,
    const wchar_t* dnsPermittedAppPath);
// clang-format on
typedef const char*(CORVANE_CALL* GetErrorTextFunction)(void);
typedef uint64_t(CORVANE_CALL* IsInternetEnabledFunction)(void);
typedef uint64_t(CORVANE_CALL* EnableInternetFunction)(void);
typedef uint64_t(CORVANE_CALL* DisableInternetFunction)(const wchar_t* const* apps, uint32_t appCount,
                                                        const wchar_t* const* interfaceNames,
                                                        uint32_t interfaceCount, LogCallback log);
typedef uint64_t(CORVANE_CALL* IsDhcpEnabledFunction)(void);
typedef uint64_t(CORVANE_CALL* EnableDhcpFunction)(LogCallback log);
typedef uint64_t(CORVANE_CALL* DisableDhcpFunction)(LogCallback log);
typedef uint64_t(CORVANE_CALL* IsLeakProtectionEnabledFunction)(void);
typedef uint64_t(CORVANE_CALL* EnableLeakProtectionFunction)(const char* serverAddress, LogCallback log,
                                                             const wchar_t* const* interfaceNames,
                                                             uint32_t interfaceCount, uint64_t interfaceLuid,
                                                             const uint32_t* permittedAddresses,
                                                             uint64_t permittedAddressCount);
typedef uint64_t(CORVANE_CALL* DisableLeakProtectionFunction)(void);
typedef uint64_t(CORVANE_CALL* IsLocalNetworkEnabledFunction)(void);
typedef uint64_t(CORVANE_CALL* EnableLocalNetworkFunction)(void);
typedef uint64_t(CORVANE_CALL* DisableLocalNetworkFunction)(LogCallback log);
typedef uint64_t(CORVANE_CALL* EnableSkeinFirewallRulesFunction)(LogCallback log,
                                                                 const wchar_t* const* interfaceNames,
                                                                 uint32_t interfaceCount,
                                                                 uint64_t interfaceLuid,
                                                                 const uint32_t* peers, uint64_t peerCount);
typedef uint64_t(CORVANE_CALL* DisableSkeinFirewallRulesFunction)(void);
// NOLINTEND(modernize-use-using)

#ifdef __cplusplus
}
#endif

#endif
