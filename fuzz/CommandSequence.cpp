// A host that gives any commands in any order, while the engine and the machine fail now and then.
#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "api/ModuleState.h"
#include "corvane/native_firewall.h"
#include "emulator/Control.h"
#include "fuzz/Input.h"
#include "helpers/NetworkInfoException.h"
#include "support/AppBlock.h"
#include "support/FakePlatform.h"

namespace {

using Fuzz::Input;
using Fuzz::Require;

constexpr int kMostCommands = 32;
constexpr std::uint64_t kDhcpFilters = 6;
constexpr std::uint64_t kKillSwitchFilters = 51;
constexpr std::uint64_t kFiltersPerApp = 6;

constexpr GUID Key(UINT32 number) { return {number, 0, 0, {}}; }
constexpr GUID kProviderKey = Key(1);
constexpr GUID kKillSwitchKey = Key(2);
constexpr GUID kDhcpKey = Key(3);
constexpr GUID kOtherKey = Key(4);
constexpr GUID kDnsLeakKey = Key(5);
constexpr GUID kFirewallCopyKey = Key(6);
constexpr GUID kInterfaceLeakKey = Key(7);
constexpr GUID kLeakKeys[]{kDnsLeakKey, kFirewallCopyKey, kInterfaceLeakKey};

constexpr const wchar_t* kExistingApps[]{L"C:\\a.exe", L"C:\\Program Files\\b.exe"};
constexpr const wchar_t* kApps[]{kExistingApps[0], kExistingApps[1], L"C:\\missing.exe", L"", L"\xD800"};
constexpr const wchar_t* kInterfaceNames[]{L"Tunnel", L"tunnel", L"", L"No such adapter", L"\xDC00"};

/// Looked up, or tried without caring, so that a failure by itself fails no command.
constexpr const char* kToleratedCalls[]{
    "FwpmProviderGetByKey0",       "FwpmSubLayerGetByKey0", "FwpmFilterDeleteById0",       "FwpmFreeMemory0",
    "FwpmFilterCreateEnumHandle0", "FwpmFilterEnum0",       "FwpmFilterDestroyEnumHandle0"};
constexpr const char* kPlatformCalls[]{"SetupDiGetClassDevsW", "SetupDiEnumDeviceInfo",
                                       "SetupDiOpenDevRegKey", "SetupDiGetDeviceRegistryPropertyW",
                                       "RegQueryValueExW",     "FormatMessageA",
                                       "GetAdaptersAddresses"};
constexpr DWORD kCodes[]{0x80320010, 0x80320005, 0x80320007, 0x80320009, 0x80320012, 1753, 5, 1};

/// The engine calls on which commands depend, and the text that each failure leaves.
struct FailureText {
  std::string_view function;
  std::string_view text;
};
constexpr FailureText kFailureTexts[]{
    {"FwpmEngineOpen0", "Error opening engine."},
    {"FwpmProviderAdd0", "Failed to add provider"},
    {"FwpmSubLayerAdd0", "Error creating sublayer."},
    {"FwpmFilterAdd0", "Failed to add filter to firewall."},
    {"FwpmSubLayerDeleteByKey0", "Failed to remove provider."},
    {"FwpmTransactionBegin0", "Failed to begin transaction."},
    {"FwpmTransactionCommit0", "Failed to commit transaction."},
    {"FwpmGetAppIdFromFileName0", "Failed to retrieve app blob"},
};

struct Failure {
  std::string_view function;
  std::string_view text;
  std::uint32_t code;
};

using Calls = std::vector<EngineEmulator::Call>;

bool IsFailedRemoval(const EngineEmulator::Call& call) {
  return call.function == "FwpmSubLayerDeleteByKey0" && call.result != ERROR_SUCCESS &&
         call.result != 0x80320005;
}

/// The first failed call that the command cannot do without.
std::optional<Failure> FirstFailure(const Calls& calls = EngineEmulator::Journal()) {
  for (const EngineEmulator::Call& call : calls) {
    const auto* rule = std::ranges::find(kFailureTexts, call.function, &FailureText::function);
    const bool sublayerWasGone = call.function == "FwpmSubLayerDeleteByKey0" && call.result == 0x80320005;
    if (call.result != ERROR_SUCCESS && rule != std::end(kFailureTexts) && !sublayerWasGone) {
      return Failure{rule->function, rule->text, call.function == "FwpmProviderAdd0" ? 1 : call.result};
    }
  }
  return std::nullopt;
}

/// The calls without which EnableLeakProtection cannot do when it does not replace anything: neither
/// those of the DNS rules, nor the session that the copy is read in, nor the removal of what failed.
Calls EssentialCallsOfFirstEnable() {
  Calls calls = EngineEmulator::Journal();
  std::erase_if(calls, [readerSeen = false](const EngineEmulator::Call& call) mutable {
    const bool isReader = call.function == "FwpmEngineOpen0" && !std::exchange(readerSeen, true);
    return isReader || call.function == "FwpmGetAppIdFromFileName0" ||
           call.function == "FwpmSubLayerDeleteByKey0";
  });
  return calls;
}

std::string& LastLine() {
  static std::string line;
  return line;
}

std::uint64_t CORVANE_CALL Log(const char* line) {
  LastLine() = line;
  return 0;
}

/// The host, and what it may expect: the two switches, the text of the last failure, and, as long as
/// nothing failed, what the engine holds.
class Host {
 public:
  explicit Host(Input& input) : input_(input) {
    Module() = {};
    EngineEmulator::Reset();
    FakePlatform::Reset();
    for (const wchar_t* app : kExistingApps) {
      EngineEmulator::PretendFileExists(app);
    }
    AppBlock(L"C:\\blocked.exe").Add();
  }

  void Run() {
    Initialize();
    for (int i = 0; i < kMostCommands && !input_.IsEmpty(); ++i) {
      constexpr void (Host::*kCommands[])(){
          &Host::DisableInternet,      &Host::EnableInternet,        &Host::EnableDhcp, &Host::DisableDhcp,
          &Host::EnableLeakProtection, &Host::DisableLeakProtection, &Host::Initialize};
      PlanFault();
      EngineEmulator::ClearJournal();
      (this->*input_.TakeOneOf(kCommands))();
      CountKeptMemory();
      RequireAnswers();
      RequireEngine();
    }
    Module() = {};
    const EngineEmulator::Outstanding outstanding = EngineEmulator::CountOutstanding();
    Require(outstanding.sessions == 0 && outstanding.openTransactions == 0 && outstanding.enumHandles == 0 &&
                outstanding.memoryBlocks == keptBlocks_,
            "everything but enumerated filters is given back in the end");
  }

 private:
  void PlanFault() {
    if (!input_.TakeFlag()) {
      return;
    }
    const std::size_t index = input_.TakeIndex(std::size(kToleratedCalls) + std::size(kFailureTexts));
    const std::string function(index < std::size(kToleratedCalls)
                                   ? kToleratedCalls[index]
                                   : kFailureTexts[index - std::size(kToleratedCalls)].function);
    EngineEmulator::FailCall(function, 1 + input_.TakeIndex(256), input_.TakeOneOf(kCodes));
    faultsPlanned_ = true;
  }

  void SetUpMachine() {
    FakePlatform::Reset();
    if (input_.TakeFlag()) {
      FakePlatform::AddDevice(FakePlatform::NetworkDevice(L"VPN", L"Tunnel #1", 7, 53));
    }
    if (input_.TakeFlag()) {
      FakePlatform::AddAdapter({L"LAN", L"Ethernet \xD800", 0x6000008000000, 6, {}});
    }
    if (input_.TakeFlag()) {
      FakePlatform::FailCall(input_.TakeOneOf(kPlatformCalls), static_cast<int>(input_.TakeIndex(4)),
                             input_.TakeOneOf(kCodes));
    }
  }

  template <class Table>
  std::vector<const wchar_t*> TakeTexts(const Table& table) {
    std::vector<const wchar_t*> texts(input_.TakeIndex(4));
    std::ranges::generate(texts, [&] { return input_.TakeOneOf(table); });
    return texts;
  }

  void Initialize() {
    const auto text = input_.TakeWideText();
    const wchar_t* const name = text.c_str();
    ::Initialize(&kProviderKey, name, name, &kKillSwitchKey, name, name, &kOtherKey, name, name, &kDhcpKey,
                 name, name, &kDnsLeakKey, name, name, &kInterfaceLeakKey, name, name, &kFirewallCopyKey,
                 name, name, &kOtherKey, name, name, input_.TakeFlag() ? name : kExistingApps[0]);
    Require(EngineEmulator::CountOutstanding().sessions == 0, "a fresh start has no session");
    killSwitch_ = dhcp_ = failed_ = false;
    apps_ = 0;
  }

  void DisableInternet() {
    SetUpMachine();
    const auto apps = TakeTexts(kApps);
    const auto interfaces = TakeTexts(kInterfaceNames);
    const auto result = ::DisableInternet(apps.data(), static_cast<std::uint32_t>(apps.size()),
                                          input_.TakeFlag() ? interfaces.data() : nullptr,
                                          static_cast<std::uint32_t>(interfaces.size()), Log);
    const auto failure = RequireResult(result);
    killSwitch_ = !failure || failure->function != "FwpmGetAppIdFromFileName0";
    apps_ = apps.size();
    const auto isMissing = [](const wchar_t* app) {
      return std::ranges::find(kExistingApps, app) == std::end(kExistingApps);
    };
    Require(failure || std::ranges::none_of(apps, isMissing), "every app must be there");
    const std::string code = failure ? std::to_string(static_cast<std::int32_t>(failure->code)) : "";
    Require(LastLine() == (failure ? code : "NATIVE: Apply firewall."), "the log ends with the outcome");
    Require(FakePlatform::GetOpenHandles() == FakePlatform::OpenHandles{},
            "the machine's handles are closed");
  }

  void EnableInternet() {
    const bool wasOn = killSwitch_;
    const auto failure = RequireResult(::EnableInternet());
    killSwitch_ = wasOn && failure.has_value();
    RequireIdleUnless(wasOn);
  }

  void EnableDhcp() {
    const bool wasOn = dhcp_;
    const auto failure = RequireResult(::EnableDhcp(Log));
    dhcp_ = true;
    RequireIdleUnless(!wasOn);
    RequireLastLine(wasOn ? "NATIVE: enabling dhcp" : "NATIVE: dhcp enabled successfully.", failure);
  }

  void DisableDhcp() {
    const bool wasOn = dhcp_;
    const auto failure = RequireResult(::DisableDhcp(Log));
    dhcp_ = wasOn && failure.has_value();
    RequireIdleUnless(wasOn);
    RequireLastLine(wasOn ? "NATIVE: dhcp disabled successfully." : "NATIVE: disabling dhcp", failure);
  }

  void EnableLeakProtection() {
    SetUpMachine();
    const auto names = TakeTexts(kInterfaceNames);
    const std::string server = input_.TakeText();
    const std::uint64_t luid = input_.TakeFlag() ? input_.Take<std::uint64_t>() : 0;
    std::vector<std::uint32_t> permitted(input_.TakeIndex(4));
    std::ranges::generate(permitted, [&] { return input_.Take<std::uint32_t>(); });
    const bool replaces = IsRegistered(kInterfaceLeakKey);
    std::uint64_t result = 0;
    try {
      result =
          ::EnableLeakProtection(server.c_str(), Log, names.data(), static_cast<std::uint32_t>(names.size()),
                                 luid, permitted.data(), permitted.size());
    } catch (const WfpFirewall::Helpers::NetworkInfoException&) {
      Require(luid == 0, "adapters are searched only without a LUID");
      RequireIdleUnless(false);
      return;
    }
    std::ranges::fill(permitted, 0U);
    const auto failure = replaces ? FirstFailure() : FirstFailure(EssentialCallsOfFirstEnable());
    Require(result == (failure ? failure->code : 0), "the result is that of the first call needed");
    Require((LastLine() == "NATIVE: LeakProtection applying finished.") == !failure,
            "the log ends with the outcome");
    Require(failure || IsRegistered(kInterfaceLeakKey), "interface rules can always be built");
    RequireRemovedIf(failure.has_value());
    filtersPerInterface_ = permitted.empty() ? 20 : 21;
    failed_ = failed_ || failure || IsLeakProtectionEnabled() == 0;
  }

  void DisableLeakProtection() {
    const bool wasOn = IsAnyLeakRuleRegistered();
    Require(::DisableLeakProtection() == 0, "switching leak protection off never fails");
    RequireIdleUnless(wasOn);
    RequireRemovedIf(true);
  }

  static bool IsAnyLeakRuleRegistered() { return std::ranges::any_of(kLeakKeys, IsRegistered); }

  static void RequireRemovedIf(bool removed) {
    Require(!removed || !IsAnyLeakRuleRegistered() ||
                std::ranges::any_of(EngineEmulator::Journal(), IsFailedRemoval),
            "only what cannot be removed stays");
  }

  void CountKeptMemory() {
    keptBlocks_ += static_cast<std::size_t>(
        std::ranges::count_if(EngineEmulator::Journal(), [](const EngineEmulator::Call& call) {
          return call.function == "FwpmFilterEnum0" && call.result == ERROR_SUCCESS;
        }));
  }

  std::optional<Failure> RequireResult(std::uint64_t result) {
    const auto failure = FirstFailure();
    Require(result == (failure ? failure->code : 0), "a command's result is that of its first failed call");
    if (failure) {
      failed_ = true;
      errorText_ = failure->text;
    }
    return failure;
  }

  static void RequireIdleUnless(bool busy) {
    Require(busy || EngineEmulator::Journal().empty(),
            "a command with nothing to do leaves the engine alone");
  }

  static void RequireLastLine(const char* line, const std::optional<Failure>& failure) {
    Require(LastLine() == (failure ? failure->text : line), "the log ends with the outcome");
  }

  void RequireAnswers() const {
    Require(IsInternetEnabled() == (killSwitch_ ? 0 : 1), "the registry says whether there is a kill switch");
    Require(IsDhcpEnabled() == (dhcp_ ? 1 : 0), "the registry says whether DHCP is let through");
    Require(IsLeakProtectionEnabled() == (std::ranges::all_of(kLeakKeys, IsRegistered) ? 1 : 0),
            "leak protection is on when all of it is");
    Require(GetErrorText() == errorText_, "the text of the last failure stays");
  }

  void RequireEngine() const {
    if (faultsPlanned_ || failed_) {
      return;
    }
    const EngineEmulator::Snapshot engine = EngineEmulator::TakeSnapshot();
    const bool leak = IsLeakProtectionEnabled() == 1;
    Require(engine.sublayers.size() == (killSwitch_ ? 1U : 0U) + (dhcp_ ? 1U : 0U) + (leak ? 3U : 0U),
            "one sublayer a rule set");
    const auto filtersOf = [&](const GUID& key) -> std::uint64_t {
      return static_cast<std::uint64_t>(
          std::ranges::count(engine.filters, key, &EngineEmulator::FilterObject::subLayerKey));
    };
    Require(filtersOf(kDhcpKey) == (dhcp_ ? kDhcpFilters : 0), "the DHCP rules are whole or gone");
    Require(filtersOf(kKillSwitchKey) == (killSwitch_ ? kKillSwitchFilters + kFiltersPerApp * apps_ : 0),
            "the kill switch is whole or gone");
    Require(filtersOf(kFirewallCopyKey) == (leak ? 1 : 0), "each application block is copied once");
    Require(
        leak ? filtersOf(kDnsLeakKey) >= 8 && filtersOf(kDnsLeakKey) % 4 == 0 : filtersOf(kDnsLeakKey) == 0,
        "the DNS rules are whole or gone");
    Require(filtersOf(kInterfaceLeakKey) % filtersPerInterface_ == 0,
            "the interface rules are whole or gone");
    Require(EngineEmulator::CountOutstanding().openTransactions == 0, "no transaction is left open");
  }

  Input& input_;
  bool killSwitch_ = false;
  bool dhcp_ = false;
  std::size_t apps_ = 0;
  std::uint64_t filtersPerInterface_ = 20;
  std::size_t keptBlocks_ = 0;
  std::string errorText_;
  bool faultsPlanned_ = false;
  bool failed_ = false;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  Host(input).Run();
  return 0;
}
