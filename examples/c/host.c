/* A host in C: cuts the machine off except for itself, protects a tunnel, and switches both off again. It
 * asks IsLeakProtectionEnabled too, because a result of 0 does not mean that all rule sets are installed. */
#include <corvane/native_firewall.h>

/* The headers of Windows come after it, to show that the interface needs none of them. */
#include <stdio.h>
#include <windows.h>

/* Made once for this product. A host keeps its keys in all releases. */
static const GUID kProvider = {0xc0c00001, 0x5e1f, 0x4c6a, {0x8e, 0x11, 0x3a, 0x52, 0x90, 0x6b, 0x77, 0x01}};
static const GUID kKillSwitch = {
    0xc0c00002, 0x5e1f, 0x4c6a, {0x8e, 0x11, 0x3a, 0x52, 0x90, 0x6b, 0x77, 0x01}};
static const GUID kLocalNetwork = {
    0xc0c00003, 0x5e1f, 0x4c6a, {0x8e, 0x11, 0x3a, 0x52, 0x90, 0x6b, 0x77, 0x01}};
static const GUID kDhcp = {0xc0c00004, 0x5e1f, 0x4c6a, {0x8e, 0x11, 0x3a, 0x52, 0x90, 0x6b, 0x77, 0x01}};
static const GUID kDnsLeak = {0xc0c00005, 0x5e1f, 0x4c6a, {0x8e, 0x11, 0x3a, 0x52, 0x90, 0x6b, 0x77, 0x01}};
static const GUID kInterfaceLeak = {
    0xc0c00006, 0x5e1f, 0x4c6a, {0x8e, 0x11, 0x3a, 0x52, 0x90, 0x6b, 0x77, 0x01}};
static const GUID kFirewallCopy = {
    0xc0c00007, 0x5e1f, 0x4c6a, {0x8e, 0x11, 0x3a, 0x52, 0x90, 0x6b, 0x77, 0x01}};
static const GUID kSkein = {0xc0c00008, 0x5e1f, 0x4c6a, {0x8e, 0x11, 0x3a, 0x52, 0x90, 0x6b, 0x77, 0x01}};

static uint64_t CORVANE_CALL Print(const char* line) {
  printf("  %s\n", line);
  return 0;
}

static const uint64_t kTunnel = 0x6000008000000;
static wchar_t self[MAX_PATH];

static void Start(void) {
  Initialize(&kProvider, L"Example", L"A host in C", &kKillSwitch, L"Kill switch", L"", &kLocalNetwork, L"",
             L"Local networks", &kDhcp, L"DHCP", L"", &kDnsLeak, L"Name look-ups", L"", &kInterfaceLeak,
             L"Tunnel", L"", &kFirewallCopy, L"Blocked applications", L"", &kSkein, L"Skein", L"", self);
}

/* Prints the result of a command. Only a failure sets the error text. */
static int Succeeded(const char* command, uint64_t code) {
  if (code == 0) {
    printf("%s: done\n", command);
    return 1;
  }
  printf("%s: code %llu, %s\n", command, (unsigned long long)code, GetErrorText());
  return 0;
}

static int CutOff(void) {
  const wchar_t* const apps[] = {self};
  return Succeeded("DisableInternet", DisableInternet(apps, 1, NULL, 0, Print));
}

/* Uses the tunnel's LUID. A name that matches no adapter would confine nothing, and one that matches several
 * would allow all of them. */
static int ProtectTunnel(void) {
  /* In host byte order: 198.51.100.7, a second server that stays reachable. */
  const uint32_t permitted[] = {0xC6336407};
  const uint64_t code = EnableLeakProtection("203.0.113.9", Print, NULL, 0, kTunnel, permitted, 1);
  /* This command sets no error text, and gives 0 even if it left out a rule set. */
  const int whole = code == 0 && IsLeakProtectionEnabled() == 1;
  printf("EnableLeakProtection: code %llu, %s\n", (unsigned long long)code, whole ? "done" : "not protected");
  return whole;
}

int main(void) {
  const DWORD length = GetModuleFileNameW(NULL, self, MAX_PATH);
  if (length == 0 || length == MAX_PATH) {
    return 1;
  }
  Start();
  /* Calling Initialize and then all commands again helps after every failure, but traffic is free in between.
   * Calling only the command again does not: after some failures it gives 0 and has no effect. */
  int protected = CutOff() && ProtectTunnel();
  for (int attempts = 1; !protected && attempts < 3; ++attempts) {
    Start();
    protected = CutOff() && ProtectTunnel();
  }
  printf("internet enabled: %d\n", (int)IsInternetEnabled());
  printf("leak protection enabled: %d\n", (int)IsLeakProtectionEnabled());

  DisableLeakProtection();
  const int connected = Succeeded("EnableInternet", EnableInternet());
  printf("internet enabled: %d\n", (int)IsInternetEnabled());
  /* Closes the session, which removes everything, so that unloading does not have to do it. */
  Start();
  return protected && connected ? 0 : 1;
}
