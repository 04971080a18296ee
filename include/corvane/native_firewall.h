/**
 * @file
 * The C interface of Corvane.Native.Firewall.dll, for hosts. Compiles as C11 and as C++20, by itself.
 *
 * Order of calls: Initialize first, once, then the commands in any order. Before Initialize the queries,
 * GetErrorText and commands that have nothing to do work; a command that has something to install crashes
 * the process.
 *
 * Threads: any thread may call, one at a time. The library has no locks: the host serialises its calls. Each
 * call does all its work on the caller's thread, callbacks included, and has finished when it returns.
 *
 * Arguments: the caller keeps ownership of everything that it passes; what is needed later is copied, so
 * all of it may be freed when the call returns. Null is allowed only where a parameter's comment says so, and
 * no function checks for it. Texts are zero-terminated, wide ones UTF-16. Counts are of elements. IPv4
 * addresses are numbers in host byte order: 10.0.0.1 is 0x0A000001. A NET_LUID is passed as the 64-bit number
 * in its Value.
 *
 * Results: queries give 1 or 0. They tell what counts as installed, which after a failure may not be what
 * is in force. Commands give 0 for success and when there was nothing to do. Otherwise they give the code
 * of the failure, a Windows or FWP_E_ code or one of the CORVANE_ codes below, zero-extended to 64 bits,
 * and leave a text for GetErrorText.
 *
 * Exceptions: queries and GetErrorText cannot fail. Any other function may leave with std::bad_alloc when
 * there is no memory, and EnableLeakProtection and EnableSkeinFirewallRules with
 * WfpFirewall::Helpers::NetworkInfoException when Windows cannot list the network adapters; a call that
 * gives a LUID does not list them. Only a host in C++ built by the compiler that built the DLL can catch
 * them. The DLL as it is delivered was built with MinGW-w64; its exceptions end a host built with Visual
 * Studio, or written in another language.
 *
 * Stuck: some failures of a replacement leave a transaction of the engine open, which no command ends.
 * What was in force then stays in force until Initialize. Later commands have no effect: as a rule they give
 * 0 all the same, and one that replaces again gives FWP_E_TXN_IN_PROGRESS (0x8032000e). Other programs that
 * change the engine wait meanwhile. Only Initialize helps, and then all commands again; traffic is free in
 * between.
 *
 * Everything that the commands install lives in one dynamic session of the filtering engine and is gone
 * when the DLL is unloaded, the process ends in whatever way, or Initialize is called again. Unloading, or
 * ending, closes the session under the loader lock; call Initialize again first, which closes it in an
 * ordinary call.
 *
 * The page failures.md tells what each failure leaves behind; traps.md tells how a machine can be unprotected
 * without anybody noticing.
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
 * @param line without a line end, valid during the call only: ASCII, except for the names and
 *        descriptions of adapters and the texts to look for in them, which are UTF-8.
 * @return ignored.
 */
typedef uint64_t(CORVANE_CALL* LogCallback)(const char* line);  // NOLINT(modernize-use-using): C.

/**
 * Hands over the identities of everything that the library puts into the filtering engine. Opens no
 * session. A second call starts afresh: the earlier session closes, whatever was installed through it is
 * gone, every feature is off, traffic is free until the next command.
 *
 * For the provider and each of the seven rule sets it takes three arguments, none of them null, all of
 * them copied:
 *   ...Key          the GUID of the object in the engine. Give each its own and keep it over releases. No
 *                   other process may use it: a rule set whose key the engine already has counts as
 *                   installed, and is not.
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
 *        read by EnableLeakProtection, which leaves the DNS rules out when it does not lead to a file.
 *        Not null. Not checked here.
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
 * The text of the latest failure of a command. Success does not clear it, and EnableLeakProtection and
 * DisableLeakProtection never set it: log it only after another command did not give 0.
 *
 * @return English, UTF-8, never null; empty before any failure. Owned by the library; valid until the
 *         next command that fails, so copy it at once.
 */
const char* CORVANE_CALL GetErrorText(void);

/** @return 1 while no kill switch counts as installed, also before Initialize; else 0. */
uint64_t CORVANE_CALL IsInternetEnabled(void);

/**
 * Removes the kill switch.
 *
 * @return 0, also when there is none; or the code of the failure, after which it counts as installed
 *         although its filters may be gone: IsInternetEnabled gives 0 while traffic flows. Call it again.
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
 *        network adapters; traffic over the adapter found stays free. An empty text is found in every
 *        description. When none is found, or the adapters cannot be listed, none is spared and the result
 *        is 0 nonetheless. When several are found, none is spared by the engine's documented rule, that
 *        conditions on one field are alternatives; whether it holds of negations is not documented. Null
 *        for none. Only logged when there are apps.
 * @param interfaceCount how many interfaceNames; not read when that is null.
 * @param log not null.
 * @return 0; the code of the failure; or CORVANE_ERROR_GETTING_INTERFACES for one outside the engine.
 *         - None was installed: after a failure to build it, such as an application that does not exist,
 *           none counts as installed. After a failure to install it, it counts as installed although none or
 *           a part of its filters are in force: IsInternetEnabled gives 0 while traffic flows. Call it
 *           again; after the text "Failed to add provider" only Initialize helps.
 *         - One was installed: when the transaction cannot begin, nothing has changed; call it again. After
 *           a failure in between, the earlier one stays in force, and the library is stuck; after one to
 *           build the new one, none counts as installed: IsInternetEnabled gives 1 while the machine is cut
 *           off. When the commit fails, the earlier one stays in force but can no longer be removed; the
 *           transaction is over, as far as is known, or else the library is stuck. In all but the first of
 *           these only Initialize helps.
 */
uint64_t CORVANE_CALL DisableInternet(const wchar_t* const* apps, uint32_t appCount,
                                      const wchar_t* const* interfaceNames, uint32_t interfaceCount,
                                      LogCallback log);

/** @return 1 while the DHCP rules count as installed, else 0. */
uint64_t CORVANE_CALL IsDhcpEnabled(void);

/**
 * Installs rules that permit DHCP. They do not overrule the blocks of other rule sets.
 *
 * @param log not null.
 * @return 0, also when they count as installed already; or the code of the failure, after which they
 *         count as installed although none or a part of them are in force. A second call does nothing: call
 *         DisableDhcp, then it again; after the text "Failed to add provider" only Initialize helps.
 */
uint64_t CORVANE_CALL EnableDhcp(LogCallback log);

/**
 * Removes the DHCP rules.
 *
 * @param log not null.
 * @return 0, also when there are none; or the code of the failure, after which they count as installed
 *         although they may be gone. Call it again.
 */
uint64_t CORVANE_CALL DisableDhcp(LogCallback log);

/** @return 1 while all three rule sets of the leak protection count as installed, else 0. */
uint64_t CORVANE_CALL IsLeakProtectionEnabled(void);

/**
 * Keeps traffic inside the tunnel, by three rule sets: name look-ups leave over the allowed interfaces
 * only, outgoing connections too, and applications that Windows Firewall blocks stay blocked. Except for name
 * look-ups, these stay reachable over any interface: loopback, the VPN server, the permitted addresses, local
 * networks, broadcast and the multicast of service discovery. Called while it is on, it only replaces the
 * rules of outgoing connections, in a single engine transaction.
 *
 * A rule set that cannot be built is left out: the result is 0 nonetheless; the log and
 * IsLeakProtectionEnabled tell. Never call it again until IsLeakProtectionEnabled gives 1: with the rules of
 * outgoing connections installed and another rule set left out, it begins a transaction that nobody
 * commits, gives 0 and logs that it is finished, and the library is stuck. Call DisableLeakProtection first.
 *
 * Leaves the text of GetErrorText as it was.
 *
 * @param serverAddress the VPN server in dotted decimal; stays reachable over any interface. Any other text
 *        counts as 0.0.0.0, without a line in the log. Not null.
 * @param log not null.
 * @param interfaceNames texts to look for, in their letter case, anywhere in the descriptions of the
 *        network adapters; those found are the allowed interfaces. An empty text is found in every
 *        description, and so allows them all. Only logged when interfaceLuid is not 0. Null when
 *        interfaceCount is 0.
 * @param interfaceCount how many interfaceNames.
 * @param interfaceLuid the NET_LUID of the one interface to allow; 0 to look for the names. When neither
 *        gives an interface, outgoing connections are not confined, and IsLeakProtectionEnabled gives 1
 *        nonetheless.
 * @param permittedAddresses IPv4 addresses that stay reachable over any interface. May be null.
 * @param permittedAddressCount how many permittedAddresses; null is the same as 0.
 * @return 0 or the code of the failure.
 *         - It was off: all three are removed, but for what cannot be. Call DisableLeakProtection, then it
 *           again; after code 1 only Initialize helps.
 *         - It was on, and the transaction cannot begin, after a time-out for instance: no transaction is
 *           open, all three are gone, traffic is free. Call it again at once.
 *         - It was on, and a failure comes in between: the earlier rules stay in force, none counts as
 *           installed, and the library is stuck.
 *         - It was on, and the commit fails: the DNS rules and the copy of Windows Firewall are gone, so that
 *           name look-ups leave outside the tunnel, to resolvers on local networks; the earlier rules of
 *           outgoing connections are back in force, count as installed, and can no longer be removed. The
 *           transaction is over, as far as is known; else it is as after a failure in between. Only
 *           Initialize helps.
 */
uint64_t CORVANE_CALL EnableLeakProtection(const char* serverAddress, LogCallback log,
                                           const wchar_t* const* interfaceNames, uint32_t interfaceCount,
                                           uint64_t interfaceLuid, const uint32_t* permittedAddresses,
                                           uint64_t permittedAddressCount);

/**
 * Removes whatever is installed of the leak protection.
 *
 * @return always 0. What cannot be removed counts as installed, although its filters may be gone.
 *         IsLeakProtectionEnabled cannot tell: it gives 0 as soon as one of the three is gone. A second call
 *         attempts what is left; Initialize surely removes it.
 */
uint64_t CORVANE_CALL DisableLeakProtection(void);

/** @return 1 while no block of local networks counts as installed, also before Initialize; else 0. */
uint64_t CORVANE_CALL IsLocalNetworkEnabled(void);

/**
 * Removes the block of local networks.
 *
 * @return 0, also when there is none; or the code of the failure, after which it counts as installed
 *         although its filters may be gone. Call it again.
 */
uint64_t CORVANE_CALL EnableLocalNetwork(void);

/**
 * Blocks private IPv4 networks and IPv6 link-local and unique-local ones, except for remote port 53.
 *
 * @param log not null.
 * @return 0, also when the block counts as installed already; or the code of the failure, after which it
 *         counts as installed although none or a part of its filters are in force. A second call does
 *         nothing: call EnableLocalNetwork, then it again; after the text "Failed to add provider" only
 *         Initialize helps.
 */
uint64_t CORVANE_CALL DisableLocalNetwork(LogCallback log);

/**
 * Installs the rules of the Skein network: inbound connections from 100.64.0.0/10 over its interfaces are
 * blocked, except for those from its peers. Installed rules are removed first, without a transaction; when
 * the command then fails, or leaves with an exception, they are gone. When the removal itself fails, the
 * command gives 0 with nothing in the log, and the new rules are missing; only GetErrorText has "Failed to
 * remove provider." So call DisableSkeinFirewallRules first, and look at its result.
 *
 * @param log not null.
 * @param interfaceNames texts to look for, in their letter case, anywhere in the descriptions of the
 *        network adapters; those found are its interfaces. An empty text is found in every description.
 *        Only logged when interfaceLuid is not 0. Null when interfaceCount is 0.
 * @param interfaceCount how many interfaceNames.
 * @param interfaceLuid the NET_LUID of its one interface; 0 to look for the names. When neither gives an
 *        interface, nothing is blocked.
 * @param peers IPv4 addresses from which connections are let in. May be null.
 * @param peerCount how many peers; null is the same as 0: then no connection from the range is let in.
 * @return 0; or the code of the failure, after which none or a part of the rules are in force. Call it
 *         again; after the text "Failed to add provider" only Initialize helps.
 */
uint64_t CORVANE_CALL EnableSkeinFirewallRules(LogCallback log, const wchar_t* const* interfaceNames,
                                               uint32_t interfaceCount, uint64_t interfaceLuid,
                                               const uint32_t* peers, uint64_t peerCount);

/**
 * Removes the rules of the Skein network.
 *
 * @return 0, also when there are none; or the code of the failure, after which they count as installed
 *         although they may be gone. Call it again.
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
