#include "support/InstalledFeatures.h"

#include <algorithm>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "catalog/Format.h"
#include "catalog/Layers.h"
#include "corvane/native_firewall.h"
#include "emulator/Control.h"
#include "support/AppBlock.h"
#include "support/FakePlatform.h"
#include "support/RuleSetKeys.h"

namespace {

using Promises::Features;

constexpr std::string_view kVolume = "\\device\\harddiskvolume1";

std::uint64_t CORVANE_CALL Ignore(const char*) { return 0; }

void Check(std::uint64_t result, const std::string& command) {
  if (result != 0) {
    throw std::runtime_error(command + ": " + GetErrorText());
  }
}

/// The sublayer of the local network gets its description as its name, so only the description is given.
void InitializeModule(const std::wstring& nameApplication) {
  Initialize(&kProviderKey, L"Corvane", L"",            //
             &kKillSwitchKey, L"Kill switch", L"",      //
             &kLocalNetworkKey, L"", L"Local network",  //
             &kDhcpKey, L"DHCP", L"",                   //
             &kDnsLeakKey, L"Name look-ups", L"",       //
             &kInterfaceLeakKey, L"Tunnel", L"",        //
             &kFirewallCopyKey, L"App blocks", L"",     //
             &kSkeinKey, L"Skein", L"",                 //
             nameApplication.c_str());
}

/// The path of an application id.
std::wstring PathOf(const std::string& id) {
  std::wstring path;
  for (std::size_t i = 0; i + 2 < id.size(); i += 2) {
    path += static_cast<wchar_t>(static_cast<UINT8>(id[i]) | static_cast<UINT8>(id[i + 1]) << 8);
  }
  return L"C:" + path.substr(kVolume.size());
}

std::vector<std::wstring> PathsOf(const std::vector<std::string>& ids) {
  std::vector<std::wstring> paths;
  for (const std::string& id : ids) {
    paths.push_back(PathOf(id));
    EngineEmulator::PretendFileExists(paths.back());
  }
  return paths;
}

/// A description that does not contain that of another adapter; hence the full stop.
std::wstring DescriptionOf(UINT64 luid) { return L"Adapter " + std::to_wstring(luid) + L"."; }

std::vector<std::wstring> DescriptionsOf(const std::vector<UINT64>& luids) {
  std::vector<std::wstring> descriptions;
  std::ranges::transform(luids, std::back_inserter(descriptions), DescriptionOf);
  return descriptions;
}

/// A list of texts as the exported functions take it.
class TextList {
 public:
  explicit TextList(std::vector<std::wstring> texts) : texts_(std::move(texts)) {
    for (const std::wstring& text : texts_) {
      pointers_.push_back(text.c_str());
    }
  }
  TextList(const TextList&) = delete;
  TextList& operator=(const TextList&) = delete;

  [[nodiscard]] const wchar_t* const* Data() const { return pointers_.data(); }
  [[nodiscard]] std::uint32_t Count() const { return static_cast<std::uint32_t>(pointers_.size()); }

 private:
  std::vector<std::wstring> texts_;
  std::vector<const wchar_t*> pointers_;
};

void AddAdapters(const Features& features) {
  std::set<UINT64> luids;
  if (features.killSwitch) {
    luids.insert(features.killSwitch->interfaces.begin(), features.killSwitch->interfaces.end());
  }
  if (features.leakProtection) {
    luids.insert(features.leakProtection->interfaces.begin(), features.leakProtection->interfaces.end());
  }
  if (features.skein) {
    luids.insert(features.skein->interfaces.begin(), features.skein->interfaces.end());
  }
  FakePlatform::Reset();
  for (const UINT64 luid : luids) {
    FakePlatform::AddAdapter({L"Network", DescriptionOf(luid), luid, 6, {}});
  }
}

void SwitchOn(const Features::KillSwitch& killSwitch) {
  const TextList applications(PathsOf(killSwitch.applications));
  const TextList interfaces(DescriptionsOf(killSwitch.interfaces));
  Check(DisableInternet(applications.Data(), applications.Count(), interfaces.Data(), interfaces.Count(),
                        Ignore),
        "DisableInternet");
}

/// Blocks of applications that the library does not own. The destructor removes them.
class ForeignBlocks {
 public:
  explicit ForeignBlocks(const Features::LeakProtection& protection) {
    FwpmEngineOpen0(nullptr, RPC_C_AUTHN_WINNT, nullptr, nullptr, &engine_);
    for (const char* layer : {"ALE_AUTH_CONNECT_V4", "ALE_AUTH_CONNECT_V6"}) {
      Add(layer, protection.blockedOutbound);
    }
    for (const char* layer : {"ALE_AUTH_RECV_ACCEPT_V4", "ALE_AUTH_RECV_ACCEPT_V6"}) {
      Add(layer, protection.blockedInbound);
    }
  }
  ForeignBlocks(const ForeignBlocks&) = delete;
  ForeignBlocks& operator=(const ForeignBlocks&) = delete;
  ~ForeignBlocks() {
    for (const UINT64 id : ids_) {
      FwpmFilterDeleteById0(engine_, id);
    }
    FwpmEngineClose0(engine_);
  }

 private:
  void Add(std::string_view layer, const std::vector<std::string>& applications) {
    for (const std::string& application : applications) {
      AppBlock block(PathOf(application));
      block.filter.layerKey = std::ranges::find(Catalog::AllLayers(), layer, &Catalog::Layer::name)->key;
      ids_.push_back(block.Add());
    }
  }

  HANDLE engine_ = nullptr;
  std::vector<UINT64> ids_;
};

void SwitchOn(const Features::LeakProtection& protection) {
  const ForeignBlocks blocks(protection);
  const TextList interfaces(DescriptionsOf(protection.interfaces));
  Check(EnableLeakProtection(Catalog::FormatIpV4(protection.serverAddress).c_str(), Ignore, interfaces.Data(),
                             interfaces.Count(), 0, protection.permittedAddresses.data(),
                             protection.permittedAddresses.size()),
        "EnableLeakProtection");
  if (IsLeakProtectionEnabled() != 1) {
    throw std::runtime_error("EnableLeakProtection left a rule set out.");
  }
}

void SwitchOn(const Features::Skein& skein) {
  const TextList interfaces(DescriptionsOf(skein.interfaces));
  Check(EnableSkeinFirewallRules(Ignore, interfaces.Data(), interfaces.Count(), 0, skein.peers.data(),
                                 skein.peers.size()),
        "EnableSkeinFirewallRules");
}

std::wstring NameApplicationOf(const Features& features) {
  return features.leakProtection ? PathsOf({features.leakProtection->nameApplication}).front() : L"";
}

}  // namespace

InstalledFeatures::InstalledFeatures(const Features& features) {
  AddAdapters(features);
  InitializeModule(NameApplicationOf(features));
  if (features.killSwitch) {
    SwitchOn(*features.killSwitch);
  }
  if (features.dhcp) {
    Check(EnableDhcp(Ignore), "EnableDhcp");
  }
  if (features.localNetworkBlock) {
    Check(DisableLocalNetwork(Ignore), "DisableLocalNetwork");
  }
  if (features.leakProtection) {
    SwitchOn(*features.leakProtection);
  }
  if (features.skein) {
    SwitchOn(*features.skein);
  }
}

// A second Initialize switches everything off.
InstalledFeatures::~InstalledFeatures() { InitializeModule(L""); }
