#include "Features.h"

#include <corvane/native_firewall.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "emulator/ControlExports.h"
#include "support/EngineKeys.h"
#include "support/RuleSetKeys.h"

/* It must come after winsock2.h. */
#include <fwpmu.h>

/* The last bytes of the keys, in the order of Initialize. */
enum { Provider = 1, KillSwitch, Local, DhcpRules, DnsRules, InterfaceRules, Copy, SkeinRules };

static const wchar_t* const kApps[] = {L"C:\\app.exe"};
static const wchar_t* const kMissingApps[] = {L"C:\\missing.exe"};
static const uint32_t kAddresses[] = {0xC6336407};
static const uint64_t kTunnel = 7;

static uint64_t CORVANE_CALL Ignore(const char* line) {
  (void)line;
  return 0;
}

uint64_t InitializeLibrary(void) {
  Initialize(&kProviderKey, L"n", L"d", &kKillSwitchKey, L"n", L"d", &kLocalNetworkKey, L"n", L"d", &kDhcpKey,
             L"n", L"d", &kDnsLeakKey, L"n", L"d", &kInterfaceLeakKey, L"n", L"d", &kFirewallCopyKey, L"n",
             L"d", &kSkeinKey, L"n", L"d", L"C:\\app.exe");
  return 0;
}

static uint64_t DisableInternetForApp(void) { return DisableInternet(kApps, 1, NULL, 0, Ignore); }
static uint64_t DisableInternetForAll(void) { return DisableInternet(NULL, 0, NULL, 0, Ignore); }
uint64_t DisableInternetForMissingApp(void) { return DisableInternet(kMissingApps, 1, NULL, 0, Ignore); }
static uint64_t RemoveKillSwitch(void) { return EnableInternet(); }
static bool KillSwitchCounts(void) { return IsInternetEnabled() == 0; }

static uint64_t InstallDhcp(void) { return EnableDhcp(Ignore); }
static uint64_t RemoveDhcp(void) { return DisableDhcp(Ignore); }
static bool DhcpCounts(void) { return IsDhcpEnabled() == 1; }

static uint64_t InstallLocal(void) { return DisableLocalNetwork(Ignore); }
static uint64_t RemoveLocal(void) { return EnableLocalNetwork(); }
static bool LocalCounts(void) { return IsLocalNetworkEnabled() == 0; }

static uint64_t InstallSkein(void) {
  return EnableSkeinFirewallRules(Ignore, NULL, 0, kTunnel, kAddresses, 1);
}
static uint64_t RemoveSkein(void) { return DisableSkeinFirewallRules(); }

static uint64_t InstallLeak(void) {
  return EnableLeakProtection("203.0.113.9", Ignore, NULL, 0, kTunnel, kAddresses, 1);
}
static uint64_t InstallLeakWithoutAddresses(void) {
  return EnableLeakProtection("203.0.113.9", Ignore, NULL, 0, kTunnel, NULL, 0);
}
static uint64_t RemoveLeak(void) { return DisableLeakProtection(); }
static bool LeakCounts(void) { return IsLeakProtectionEnabled() == 1; }

const Feature kInternet = {DisableInternetForApp,
                           DisableInternetForAll,
                           RemoveKillSwitch,
                           KillSwitchCounts,
                           1,
                           {{"kill switch", KillSwitch, 57}}};
const Feature kDhcp = {InstallDhcp, InstallDhcp, RemoveDhcp, DhcpCounts, 1, {{"DHCP rules", DhcpRules, 6}}};
const Feature kLocalNetwork = {InstallLocal,          InstallLocal, RemoveLocal, LocalCounts, 1,
                               {{"block", Local, 15}}};
const Feature kSkein = {InstallSkein, InstallSkein, RemoveSkein, NULL, 1, {{"rules", SkeinRules, 2}}};
/* The last rule set is the one that a second command replaces. */
const Feature kLeakProtection = {
    InstallLeak, InstallLeakWithoutAddresses,
    RemoveLeak,  LeakCounts,
    3,           {{"DNS rules", DnsRules, 12}, {"copy", Copy, 1}, {"interface rules", InterfaceRules, 21}}};

static HANDLE observer;

static void Expect(bool good, const char* what) {
  if (!good) {
    fprintf(stderr, "The emulated engine cannot be prepared or read: %s\n", what);
    exit(2);
  }
}

/* Adds a block of an application, as Windows Firewall does. */
static void BlockApp(void) {
  wchar_t name[] = L"Block";
  FWPM_FILTER_CONDITION0 condition = {0};
  FWPM_FILTER0 filter = {0};
  condition.fieldKey = kAppId;
  condition.conditionValue.type = FWP_BYTE_BLOB_TYPE;
  Expect(FwpmGetAppIdFromFileName0(L"C:\\blocked.exe", &condition.conditionValue.byteBlob) == 0, "its id");
  filter.displayData.name = name;
  filter.layerKey = kConnectV4;
  filter.action.type = FWP_ACTION_BLOCK;
  filter.numFilterConditions = 1;
  filter.filterCondition = &condition;
  Expect(FwpmFilterAdd0(observer, &filter, NULL, NULL) == 0, "a filter");
  FwpmFreeMemory0((void**)&condition.conditionValue.byteBlob);
}

void StartAfresh(void) {
  InitializeLibrary(); /* closes the library's session */
  EngineEmulatorReset();
  EngineEmulatorPretendFileExists(L"C:\\app.exe");
  EngineEmulatorPretendFileExists(L"C:\\blocked.exe");
  Expect(FwpmEngineOpen0(NULL, RPC_C_AUTHN_WINNT, NULL, NULL, &observer) == 0, "a session");
  BlockApp();
}

enum { KeyCount = 9 };

/* Numbers of filters, by the last byte of their sublayer's key. */
typedef struct Census {
  size_t old[KeyCount];
  size_t added[KeyCount];
  UINT64 lastId;
} Census;

static Census oldRules;

/* Tells old filters by their ids: the engine gives rising ids and never uses one twice. */
static Census Count(UINT64 lastOldId) {
  Census census = {0};
  HANDLE enumeration = NULL;
  FWPM_FILTER0** filters = NULL;
  UINT32 count = 0;
  Expect(FwpmFilterCreateEnumHandle0(observer, NULL, &enumeration) == 0, "an enumeration");
  Expect(FwpmFilterEnum0(observer, enumeration, INFINITE, &filters, &count) == 0, "its filters");
  for (UINT32 i = 0; i < count; ++i) {
    const FWPM_FILTER0* filter = filters[i];
    const uint8_t key = filter->subLayerKey.Data1 == kProviderKey.Data1 ? filter->subLayerKey.Data4[7] : 0;
    Expect(key < KeyCount, "a filter of a stranger");
    ++(filter->filterId <= lastOldId ? census.old : census.added)[key];
    census.lastId = filter->filterId > census.lastId ? filter->filterId : census.lastId;
  }
  FwpmFreeMemory0((void**)&filters);
  FwpmFilterDestroyEnumHandle0(observer, enumeration);
  return census;
}

void RememberOldRules(void) { oldRules = Count(UINT64_MAX); }

/* How much of a rule set is in force. Each number is an index into the words of InForce. */
typedef enum Part { None, Some, Old, Added } Part;

static Part PartInForce(const Census* census, uint8_t key, size_t filters) {
  const size_t old = census->old[key];
  const size_t added = census->added[key];
  if (old == 0 && added == 0) {
    return None;
  }
  if (added == 0 && old == oldRules.old[key]) {
    return Old;
  }
  return old == 0 && added == filters ? Added : Some;
}

const char* InForce(const Feature* feature) {
  static const char* const kOfOne[] = {"nothing", "part", "the old rules", "all"};
  static const char* const kOfSeveral[] = {"", "part of the ", "the old ", "the "};
  static char words[100];
  const Census census = Count(oldRules.lastId);
  Part last = None;
  bool alike = true;
  bool whole = true;
  words[0] = '\0';
  for (size_t i = 0; i < feature->ruleSetCount; ++i) {
    const Part part = PartInForce(&census, feature->ruleSets[i].key, feature->ruleSets[i].filters);
    alike = alike && (i == 0 || part == last);
    whole = whole && (part == Old || part == Added);
    last = part;
    if (part != None) {
      const size_t length = strlen(words);
      snprintf(words + length, sizeof words - length, "%s%s%s", length == 0 ? "" : ", ", kOfSeveral[part],
               feature->ruleSets[i].name);
    }
  }
  if (alike || (whole && last == Added)) {
    return kOfOne[last];
  }
  return words;
}

bool IsTransactionOpen(void) {
  EngineEmulatorOutstanding outstanding;
  EngineEmulatorCountOutstanding(&outstanding);
  return outstanding.openTransactions != 0;
}
