/**
 * @file
 * The C interface of Corvane.Native.Firewall.dll, for hosts. Compiles as C and as C++, by itself.
 *
 * Call Initialize once, then the commands. All calls run on the caller's thread and finish before they
 * return; nothing is locked, so the host serialises them. The caller keeps ownership of everything that
 * it passes and may free it when the call returns. Strings are zero-terminated; wide ones are UTF-16.
 *
 * Commands return 0 for success and when there was nothing to do. Otherwise they return the code of the
 * failure, a Windows or FWP_E_ code or one of the CORVANE_ codes below, zero-extended to 64 bits; the
 * text is then to be had from GetErrorText.
 *
 * Everything that the commands install lives in one dynamic session of the filtering engine and is gone
 * when the DLL is unloaded, the process ends, or Initialize is called again.
 */
#ifndef CORVANE_NATIVE_FIREWALL_H
#define CORVANE_NATIVE_FIREWALL_H

#include <guiddef.h>
#include <stdint.h>  // NOLINT(modernize-deprecated-headers): C needs it so.
#ifndef __cplusplus
#include <wchar.h>
#endif

#if defined(CORVANE_NATIVE_FIREWALL_BUILDING)
#define CORVANE_API __declspec(dllexport)
#else
#define CORVANE_API
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
 * Receives one line of progress, without a line end: ASCII, except for names of adapters and
 * applications, which are UTF-8. Called on the caller's thread; the pointer is valid during the call. The
 * result is ignored. Commands that take a callback do not accept null.
 */
typedef uint64_t(CORVANE_CALL* LogCallback)(const char* line);  // NOLINT(modernize-use-using): C.

/**
 * Hands over the identities of everything that the library puts into the filtering engine: the key of an
 * object, its name and its description. Makes no engine call. A second call starts afresh: the earlier
 * session closes, and whatever was installed through it is gone.
 *
 * @param dnsPermittedAppPath full path of the one executable whose name look-ups may bypass the tunnel.
 *
 * The local-network rule set carries its description as its name and an empty description.
 */
// clang-format off: one identity a line.
CORVANE_API void CORVANE_CALL Initialize(
    const GUID* providerKey, const wchar_t* providerName, const wchar_t* providerDescription,
    const GUID* killSwitchKey, const wchar_t* killSwitchName, const wchar_t* killSwitchDescription,
    const GUID* localNetworkKey, const wchar_t* localNetworkName, const wchar_t* localNetworkDescription,
    const GUID* dhcpKey, const wchar_t* dhcpName, const wchar_t* dhcpDescription, const GUID* dnsLeakKey,
    const wchar_t* dnsLeakName, const wchar_t* dnsLeakDescription, const GUID* interfaceLeakKey,
    const wchar_t* interfaceLeakName, const wchar_t* interfaceLeakDescription, const GUID* firewallCopyKey,
    const wchar_t* firewallCopyName, const wchar_t* firewallCopyDescription, const GUID* skeinKey,
    const wchar_t* skeinName, const wchar_t* skeinDescription, const wchar_t* dnsPermittedAppPath);
// clang-format on

/**
 * The text of the latest failure, never null; empty before any. Success does not clear it. The pointer is
 * valid until the next command that fails.
 */
CORVANE_API const char* CORVANE_CALL GetErrorText(void);

/** 1 while no kill switch is installed, else 0. */
CORVANE_API uint64_t CORVANE_CALL IsInternetEnabled(void);

/** Removes the kill switch. */
CORVANE_API uint64_t CORVANE_CALL EnableInternet(void);

/**
 * Installs the kill switch, replacing an installed one in a single engine transaction.
 *
 * @param apps full paths of executables that stay connected; may be null when appCount is 0.
 * @param interfaceNames texts to look for, in their letter case, in the descriptions of the network
 *        adapters; traffic over the adapters found stays free. Null for none. Not used when there are apps.
 */
CORVANE_API uint64_t CORVANE_CALL DisableInternet(const wchar_t* const* apps, uint32_t appCount,
                                                  const wchar_t* const* interfaceNames,
                                                  uint32_t interfaceCount, LogCallback log);

/** 1 while the DHCP rules are installed, else 0. */
CORVANE_API uint64_t CORVANE_CALL IsDhcpEnabled(void);

/**
 * Installs rules that let DHCP through. After a failure the rules count as installed until DisableDhcp.
 */
CORVANE_API uint64_t CORVANE_CALL EnableDhcp(LogCallback log);

/** Removes the DHCP rules. */
CORVANE_API uint64_t CORVANE_CALL DisableDhcp(LogCallback log);

/** 1 while all three rule sets of the leak protection are installed, else 0. */
CORVANE_API uint64_t CORVANE_CALL IsLeakProtectionEnabled(void);

/**
 * Keeps traffic inside the tunnel, by three rule sets: name look-ups leave over the allowed interfaces
 * only, outgoing connections too, and what Windows Firewall blocks stays blocked. Called again, it only
 * replaces the rules of outgoing connections, in a single engine transaction.
 *
 * A rule set that cannot be built is left out: the result is 0 nonetheless, the log and
 * IsLeakProtectionEnabled tell. After any other failure all three are removed. GetErrorText keeps what it
 * had. A failure to list the network adapters leaves as a C++ exception.
 *
 * @param serverAddress the VPN server in dotted decimal; stays reachable over any interface.
 * @param interfaceNames texts to look for, in their letter case, in the descriptions of the network
 *        adapters, when interfaceLuid is 0; may be null when interfaceCount is 0.
 * @param interfaceLuid the NET_LUID of the one interface to allow, or 0.
 * @param permittedAddresses IPv4 addresses in host byte order that stay reachable over any interface; may
 *        be null.
 */
CORVANE_API uint64_t CORVANE_CALL EnableLeakProtection(const char* serverAddress, LogCallback log,
                                                       const wchar_t* const* interfaceNames,
                                                       uint32_t interfaceCount, uint64_t interfaceLuid,
                                                       const uint32_t* permittedAddresses,
                                                       uint64_t permittedAddressCount);

/** Removes the leak protection. What cannot be removed stays on; the result is 0 nonetheless. */
CORVANE_API uint64_t CORVANE_CALL DisableLeakProtection(void);

/** 1 while local networks are not blocked, else 0. */
CORVANE_API uint64_t CORVANE_CALL IsLocalNetworkEnabled(void);

/** Removes the block of local networks. */
CORVANE_API uint64_t CORVANE_CALL EnableLocalNetwork(void);

/**
 * Blocks private, link-local and unique-local networks, except for name look-ups. After a failure the
 * block counts as installed until EnableLocalNetwork.
 */
CORVANE_API uint64_t CORVANE_CALL DisableLocalNetwork(LogCallback log);

/**
 * Installs the rules of the Skein network: inbound connections from 100.64.0.0/10 over its interfaces are
 * blocked, but for those from its peers. Removes installed rules first and carries on if that fails; the
 * text of that failure then stays although the command may succeed. After a failure the rules count as
 * installed until DisableSkeinFirewallRules.
 *
 * @param interfaceNames texts to look for, in their letter case, in the descriptions of the network
 *        adapters; may be null when interfaceCount is 0. Only logged when there is a LUID.
 * @param interfaceLuid the NET_LUID of the one interface; 0 to look for the names.
 * @param peers IPv4 addresses in host byte order (10.0.0.1 is 0x0A000001). Null is the same as a peerCount
 *        of 0: then no connection from the range is let in.
 */
CORVANE_API uint64_t CORVANE_CALL EnableSkeinFirewallRules(LogCallback log,
                                                           const wchar_t* const* interfaceNames,
                                                           uint32_t interfaceCount, uint64_t interfaceLuid,
                                                           const uint32_t* peers, uint64_t peerCount);

/** Removes the rules of the Skein network. */
CORVANE_API uint64_t CORVANE_CALL DisableSkeinFirewallRules(void);

#ifdef __cplusplus
}
#endif

#endif
