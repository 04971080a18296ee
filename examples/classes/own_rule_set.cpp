// Uses the exported classes to make a rule set of its own, install it, list its filters and remove it.
#include <WfpFirewall.h>

#include <cstdint>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace {

using WfpFirewall::Action;
using WfpFirewall::Engine;
using WfpFirewall::Filter;
using WfpFirewall::FilterBuilder;
using WfpFirewall::Firewall;
using WfpFirewall::FirewallException;
using WfpFirewall::Provider;
using WfpFirewall::Sublayer;
using WfpFirewall::Filtering::ConditionEqual;
using WfpFirewall::Filtering::ConditionNotEqual;
using WfpFirewall::Filtering::LayerType;
using WfpFirewall::Filtering::Values::AppId;
using WfpFirewall::Filtering::Values::RemoteIpAddressAndMaskV4;
using WfpFirewall::Filtering::Values::RemotePort;

constexpr GUID kProvider{0xc0c00001, 0x5e1f, 0x4c6a, {0x8e, 0x11, 0x3a, 0x52, 0x90, 0x6b, 0x77, 0x03}};
constexpr GUID kMailOnly{0xc0c00002, 0x5e1f, 0x4c6a, {0x8e, 0x11, 0x3a, 0x52, 0x90, 0x6b, 0x77, 0x03}};

/// Permits only mail to the networks that are reserved for documentation.
class MailOnly : public Sublayer {
 public:
  MailOnly() : Sublayer(kMailOnly, L"Mail only", L"Port 25 to the documentation networks") {
    for (const char* network : {"192.0.2.0", "198.51.100.0", "203.0.113.0"}) {
      AddFilter(FilterBuilder()
                    .CreateFilter(Action::Block)
                    .InLayer(LayerType::AleAuthConnectV4)
                    .WithCondition(ConditionEqual(new RemoteIpAddressAndMaskV4(network, "255.255.255.0")))
                    .WithCondition(ConditionNotEqual(new RemotePort(25)))
                    .SetWeight(14)
                    .Get());
    }
  }
};

void FreeRecords(FWPM_FILTER0** records) { FwpmFreeMemory0(reinterpret_cast<void**>(&records)); }

/// The filters of the rule set, read from the engine.
std::vector<Filter> FiltersInEngine() {
  const std::shared_ptr<void> engine = Engine::OpenEngine();
  HANDLE handle = nullptr;
  if (FwpmFilterCreateEnumHandle0(engine.get(), nullptr, &handle) != ERROR_SUCCESS) {
    return {};
  }
  const auto close = [&engine](HANDLE open) { FwpmFilterDestroyEnumHandle0(engine.get(), open); };
  const std::unique_ptr<void, decltype(close)> enumeration(handle, close);

  FWPM_FILTER0** list = nullptr;
  UINT32 count = 0;
  if (FwpmFilterEnum0(engine.get(), enumeration.get(), INFINITE, &list, &count) != ERROR_SUCCESS) {
    return {};
  }
  const std::unique_ptr<FWPM_FILTER0*, decltype(&FreeRecords)> records(list, &FreeRecords);
  std::vector<Filter> filters;
  for (UINT32 i = 0; i < count; ++i) {
    if (IsEqualGUID(list[i]->subLayerKey, kMailOnly)) {
      filters.push_back(Filter::BuildFromNative(list[i]));
    }
  }
  return filters;
}

void List() {
  const std::vector<Filter> filters = FiltersInEngine();
  std::cout << filters.size() << " filters\n";
  for (const Filter& filter : filters) {
    std::cout << "  " << (filter.GetAction() == Action::Block ? "block" : "permit") << " with "
              << filter.GetConditions().size() << " conditions\n";
  }
}

}  // namespace

int main() {
  try {
    Firewall firewall(Provider(kProvider, L"Example", L"Example", L"A program on the classes"));
    MailOnly rules;
    firewall.AddSublayer(rules).Apply();
    List();

    firewall.RemoveSublayer(kMailOnly);
    List();

    FilterBuilder()
        .CreateFilter(Action::Permit)
        .WithCondition(ConditionEqual(new AppId(L"C:\\no such program.exe")));
  } catch (const FirewallException& error) {
    std::cout << "code " << error.GetErrorCode() << ": " << error.what() << '\n';
  }
}
