/* The C interface, built as a library for the machine that runs the test. It prints its arguments, which
 * shows whether a host in another language declares the functions as the header does. */
#include <corvane/native_firewall.h>
#include <stdio.h>

/* Prints UTF-16 as UTF-8. The texts of the tests have only characters below U+0800. */
static void PrintWide(const wchar_t* text) {
  const uint16_t* units = (const uint16_t*)text;
  putchar('"');
  for (; *units != 0; ++units) {
    if (*units < 0x80) {
      putchar(*units);
    } else {
      putchar(0xC0 | (*units >> 6));
      putchar(0x80 | (*units & 0x3F));
    }
  }
  putchar('"');
}

static void PrintIdentity(const GUID* key, const wchar_t* name, const wchar_t* description) {
  printf("  %08x-%04x-%04x-%02x%02x ", (unsigned)key->Data1, key->Data2, key->Data3, key->Data4[0],
         key->Data4[7]);
  PrintWide(name);
  putchar(' ');
  PrintWide(description);
  putchar('\n');
}

static void PrintTexts(const wchar_t* const* texts, uint32_t count) {
  if (texts == NULL) {
    printf(" null/%u", count);
    return;
  }
  printf(" [");
  for (uint32_t i = 0; i < count; ++i) {
    PrintWide(texts[i]);
  }
  printf("]");
}

static void PrintAddresses(const uint32_t* addresses, uint64_t count) {
  printf(" [");
  for (uint64_t i = 0; i < count; ++i) {
    printf(" %08x", addresses[i]);
  }
  printf(" ]");
}

/* Ends the printed line, and logs a line that is not ASCII. */
static uint64_t Finish(LogCallback log) {
  printf("\n");
  fflush(stdout);
  if (log != NULL) {
    log("NATIVE: gr\xC3\xBC\xC3\x9F"
        "e");
  }
  return 0;
}

/* One identity a line. */
/* clang-format off */
void CORVANE_CALL Initialize(
    const GUID* providerKey, const wchar_t* providerName, const wchar_t* providerDescription,
    const GUID* killSwitchKey, const wchar_t* killSwitchName, const wchar_t* killSwitchDescription,
    const GUID* localNetworkKey, const wchar_t* localNetworkName, const wchar_t* localNetworkDescription,
    const GUID* dhcpKey, const wchar_t* dhcpName, const wchar_t* dhcpDescription,
    const GUID* dnsLeakKey, const wchar_t* dnsLeakName, const wchar_t* dnsLeakDescription,
    const GUID* interfaceLeakKey, const wchar_t* interfaceLeakName, const wchar_t* interfaceLeakDescription,
    const GUID* firewallCopyKey, const wchar_t* firewallCopyName, const wchar_t* firewallCopyDescription,
    const GUID* skeinKey, const wchar_t* skeinName, const wchar_t* skeinDescription,
    const wchar_t* dnsPermittedAppPath) {
  /* clang-format on */
  printf("Initialize\n");
  PrintIdentity(providerKey, providerName, providerDescription);
  PrintIdentity(killSwitchKey, killSwitchName, killSwitchDescription);
  PrintIdentity(localNetworkKey, localNetworkName, localNetworkDescription);
  PrintIdentity(dhcpKey, dhcpName, dhcpDescription);
  PrintIdentity(dnsLeakKey, dnsLeakName, dnsLeakDescription);
  PrintIdentity(interfaceLeakKey, interfaceLeakName, interfaceLeakDescription);
  PrintIdentity(firewallCopyKey, firewallCopyName, firewallCopyDescription);
  PrintIdentity(skeinKey, skeinName, skeinDescription);
  printf(" ");
  PrintWide(dnsPermittedAppPath);
  Finish(NULL);
}

const char* CORVANE_CALL GetErrorText(void) { return "Error opening \xC2\xABit\xC2\xBB."; }

uint64_t CORVANE_CALL IsInternetEnabled(void) { return 0; }
uint64_t CORVANE_CALL IsDhcpEnabled(void) { return 0; }
uint64_t CORVANE_CALL IsLeakProtectionEnabled(void) { return 1; }
uint64_t CORVANE_CALL IsLocalNetworkEnabled(void) { return 0; }

uint64_t CORVANE_CALL DisableInternet(const wchar_t* const* apps, uint32_t appCount,
                                      const wchar_t* const* interfaceNames, uint32_t interfaceCount,
                                      LogCallback log) {
  printf("DisableInternet");
  PrintTexts(apps, appCount);
  PrintTexts(interfaceNames, interfaceCount);
  return Finish(log);
}

/* The only command that fails. */
uint64_t CORVANE_CALL EnableInternet(void) {
  printf("EnableInternet");
  Finish(NULL);
  return 0x80320009;
}

uint64_t CORVANE_CALL EnableDhcp(LogCallback log) {
  printf("EnableDhcp");
  return Finish(log);
}

uint64_t CORVANE_CALL DisableDhcp(LogCallback log) {
  printf("DisableDhcp");
  return Finish(log);
}

uint64_t CORVANE_CALL EnableLeakProtection(const char* serverAddress, LogCallback log,
                                           const wchar_t* const* interfaceNames, uint32_t interfaceCount,
                                           uint64_t interfaceLuid, const uint32_t* permittedAddresses,
                                           uint64_t permittedAddressCount) {
  printf("EnableLeakProtection %s", serverAddress);
  PrintTexts(interfaceNames, interfaceCount);
  printf(" %llx", (unsigned long long)interfaceLuid);
  PrintAddresses(permittedAddresses, permittedAddressCount);
  return Finish(log);
}

uint64_t CORVANE_CALL DisableLeakProtection(void) {
  printf("DisableLeakProtection");
  return Finish(NULL);
}

uint64_t CORVANE_CALL EnableLocalNetwork(void) {
  printf("EnableLocalNetwork");
  return Finish(NULL);
}

uint64_t CORVANE_CALL DisableLocalNetwork(LogCallback log) {
  printf("DisableLocalNetwork");
  return Finish(log);
}

uint64_t CORVANE_CALL EnableSkeinFirewallRules(LogCallback log, const wchar_t* const* interfaceNames,
                                               uint32_t interfaceCount, uint64_t interfaceLuid,
                                               const uint32_t* peers, uint64_t peerCount) {
  printf("EnableSkeinFirewallRules");
  PrintTexts(interfaceNames, interfaceCount);
  printf(" %llx", (unsigned long long)interfaceLuid);
  PrintAddresses(peers, peerCount);
  return Finish(log);
}

uint64_t CORVANE_CALL DisableSkeinFirewallRules(void) {
  printf("DisableSkeinFirewallRules");
  return Finish(NULL);
}
