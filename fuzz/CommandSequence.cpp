// A host that calls random commands in random order, while some calls of the engine and of Windows fail.
#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "api/ModuleState.h"
#include "corvane/native_firewall.h"
#include "emulator/Control.h"
#include "fuzz/Failure.h"
#include "fuzz/Input.h"
#include "helpers/NetworkInfoException.h"
#include "support/AppBlock.h"
#include "support/FakePlatform.h"

namespace {

using Fuzz::Calls;
using Fuzz::CallsBesides;
using Fuzz::EssentialCallsOfFirstEnable;
using Fuzz::Failure;
using Fuzz::FirstFailure;
using Fuzz::Input;
using Fuzz::IsFailedRemoval;
using Fuzz::kFailureTexts;
using Fuzz::LoggedCode;
using Fuzz::Require;

constexpr int kMostCommands = 32;
constexpr std::uint64_t kDhcpFilters = 6;
constexpr std::uint64_t kKillSwitchFilters = 51;
constexpr std::uint64_t kFiltersPerApp = 6;
constexpr std::uint64_t kLocalNetworkFilters = 15;

constexpr GUID Key(UINT32 number) { return {number, 0, 0, {}}; }
constexpr GUID kProviderKey = Key(1);
constexpr GUID kKillSwitchKey = Key(2);
constexpr GUID kDhcpKey = Key(3);
constexpr GUID kDnsLeakKey = Key(4);
constexpr GUID kFirewallCopyKey = Key(5);
constexpr GUID kInterfaceLeakKey = Key(6);
constexpr GUID kLeakKeys[]{kDnsLeakKey, kFirewallCopyKey, kInterfaceLeakKey};
constexpr GUID kLocalNetworkKey = Key(7);
constexpr GUID kSkeinKey = Key(8);

constexpr const wchar_t* kExistingApps[]{L"C:\\a.exe", L"C:\\Program Files\\b.exe"};
constexpr const wchar_t* kApps[]{kExistingApps[0], kExistingApps[1], L"C:\\missing.exe", L"", L"\xD800"};
constexpr const wchar_t* kInterfaceNames[]{L"Tunnel", L"tunnel", L"", L"No such adapter", L"\xDC00"};

/// Calls that may fail without making a command fail.
constexpr const char* kToleratedCalls[]{
    "FwpmProviderGetByKey0",       "FwpmSubLayerGetByKey0", "FwpmFilterDeleteById0",       "FwpmFreeMemory0",
    "FwpmFilterCreateEnumHandle0", "FwpmFilterEnum0",       "FwpmFilterDestroyEnumHandle0"};
constexpr const char* kPlatformCalls[]{"SetupDiGetClassDevsW", "SetupDiEnumDeviceInfo",
                                       "SetupDiOpenDevRegKey", "SetupDiGetDeviceRegistryPropertyW",
                                       "RegQueryValueExW",     "FormatMessageA",
                                       "GetAdaptersAddresses"};
constexpr DWORD kCodes[]{0x80320010, 0x80320005, 0x80320007, 0x80320009, 0x80320012, 1753, 5, 1};

std::vector<std::string>& Lines() {
  static std::vector<std::string> lines;
  return lines;
}

std::string LastLine() { return Lines().empty() ? "" : Lines().back(); }

std::uint64_t CORVANE_CALL Log(const char* line) {
  Lines().emplace_back(line);
  return 0;
}

/// The host, with the state that it expects: which features are on, the text of the last failure, and, as
/// long as nothing has failed, the content of the engine.
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
          &Host::DisableInternet, &Host::EnableInternet,       &Host::EnableDhcp,
          &Host::DisableDhcp,     &Host::EnableLeakProtection, &Host::DisableLeakProtection,
          &Host::Initialize,      &Host::DisableLocalNetwork,  &Host::EnableLocalNetwork,
          &Host::EnableSkein,     &Host::DisableSkein};
      PlanFault();
      EngineEmulator::ClearJournal();
      Lines().clear();
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
    ::Initialize(&kProviderKey, name, name, &kKillSwitchKey, name, name, &kLocalNetworkKey, name, name,
                 &kDhcpKey, name, name, &kDnsLeakKey, name, name, &kInterfaceLeakKey, name, name,
                 &kFirewallCopyKey, name, name, &kSkeinKey, name, name,
                 input_.TakeFlag() ? name : kExistingApps[0]);
    Require(EngineEmulator::CountOutstanding().sessions == 0, "a fresh start has no session");
    killSwitch_ = dhcp_ = localNetwork_ = skein_ = failed_ = false;
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
    RequireLastLine("NATIVE: Apply firewall.", failure ? LoggedCode(*failure) : "");
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
    RequireLastLine(wasOn ? "NATIVE: enabling dhcp" : "NATIVE: dhcp enabled successfully.",
                    failure ? failure->text : "");
  }

  void DisableDhcp() {
    const bool wasOn = dhcp_;
    const auto failure = RequireResult(::DisableDhcp(Log));
    dhcp_ = wasOn && failure.has_value();
    RequireIdleUnless(wasOn);
    RequireLastLine(wasOn ? "NATIVE: dhcp disabled successfully." : "NATIVE: disabling dhcp",
                    failure ? failure->text : "");
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

  void EnableLocalNetwork() {
    const bool wasOn = localNetwork_;
    const auto failure = RequireResult(::EnableLocalNetwork());
    localNetwork_ = wasOn && failure.has_value();
    RequireIdleUnless(wasOn);
  }

  void DisableLocalNetwork() {
    const bool wasOn = localNetwork_;
    const auto failure = RequireResult(::DisableLocalNetwork(Log));
    localNetwork_ = true;
    RequireIdleUnless(!wasOn);
    RequireLastLine(wasOn ? "" : "NATIVE: Apply firewall.", failure ? LoggedCode(*failure) : "");
  }

  void EnableSkein() {
    SetUpMachine();
    const auto names = TakeTexts(kInterfaceNames);
    const std::uint64_t luid = input_.TakeFlag() ? input_.Take<std::uint64_t>() : 0;
    std::vector<std::uint32_t> peers(input_.TakeIndex(4));
    std::ranges::generate(peers, [&] { return input_.Take<std::uint32_t>(); });
    try {
      const auto result = EnableSkeinFirewallRules(
          Log, names.data(), static_cast<std::uint32_t>(names.size()), luid, peers.data(), peers.size());
      LeaveOldSkein();
      const auto failure = RequireResult(result, CallsBesides("FwpmSubLayerDeleteByKey0"));
      skein_ = true;
      RequireLastLine("NATIVE: Apply skein firewall rules.", failure ? LoggedCode(*failure) : "");
    } catch (const WfpFirewall::Helpers::NetworkInfoException&) {
      Require(luid == 0, "an interface that is given is not searched");
      LeaveOldSkein();
    }
    const auto isFound = [](const std::string& line) {
      return line.starts_with("NATIVE: found interface: ");
    };
    const auto interfaces = luid == 0 ? std::ranges::count_if(Lines(), isFound) : 1;
    skeinFilters_ = static_cast<std::uint64_t>(interfaces) * (peers.empty() ? 1 : 2);
  }

  /// The removal at the beginning of EnableSkein. A failure of it only sets the error text.
  void LeaveOldSkein() {
    if (const auto failure = FirstFailure(); failure && failure->function == "FwpmSubLayerDeleteByKey0") {
      failed_ = true;
      errorText_ = failure->text;
    } else {
      skein_ = false;
    }
  }

  void DisableSkein() {
    const bool wasOn = skein_;
    const auto failure = RequireResult(DisableSkeinFirewallRules());
    skein_ = wasOn && failure.has_value();
    RequireIdleUnless(wasOn);
  }

  void CountKeptMemory() {
    keptBlocks_ += static_cast<std::size_t>(
        std::ranges::count_if(EngineEmulator::Journal(), [](const EngineEmulator::Call& call) {
          return call.function == "FwpmFilterEnum0" && call.result == ERROR_SUCCESS;
        }));
  }

  std::optional<Failure> RequireResult(std::uint64_t result, const Calls& calls = EngineEmulator::Journal()) {
    const auto failure = FirstFailure(calls);
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

  /// @param failureLine empty after a success.
  static void RequireLastLine(std::string_view line, std::string_view failureLine) {
    Require(LastLine() == (failureLine.empty() ? line : failureLine), "the log ends with the outcome");
  }

  void RequireAnswers() const {
    Require(IsInternetEnabled() == (killSwitch_ ? 0 : 1), "the registry says whether there is a kill switch");
    Require(IsDhcpEnabled() == (dhcp_ ? 1 : 0), "the registry says whether DHCP is let through");
    Require(IsLeakProtectionEnabled() == (std::ranges::all_of(kLeakKeys, IsRegistered) ? 1 : 0),
            "leak protection is on when all of it is");
    Require(IsLocalNetworkEnabled() == (localNetwork_ ? 0 : 1), "the registry says whether there is a block");
    Require(IsRegistered(kSkeinKey) == skein_, "the registry says whether there are rules for the network");
    Require(GetErrorText() == errorText_, "the text of the last failure stays");
  }

  void RequireEngine() const {
    if (faultsPlanned_ || failed_) {
      return;
    }
    const EngineEmulator::Snapshot engine = EngineEmulator::TakeSnapshot();
    const bool leak = IsLeakProtectionEnabled() == 1;
    const auto sublayers =
        std::ranges::count(std::array{killSwitch_, dhcp_, leak, leak, leak, localNetwork_, skein_}, true);
    Require(engine.sublayers.size() == static_cast<std::size_t>(sublayers), "one sublayer a rule set");
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
    Require(filtersOf(kLocalNetworkKey) == (localNetwork_ ? kLocalNetworkFilters : 0),
            "the block of local networks is whole or gone");
    Require(filtersOf(kSkeinKey) == (skein_ ? skeinFilters_ : 0), "the network's rules are whole or gone");
    Require(EngineEmulator::CountOutstanding().openTransactions == 0, "no transaction is left open");
  }

  Input& input_;
  bool killSwitch_ = false;
  bool dhcp_ = false;
  bool localNetwork_ = false;
  bool skein_ = false;
  std::size_t apps_ = 0;
  std::uint64_t filtersPerInterface_ = 20;
  std::uint64_t skeinFilters_ = 0;
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
