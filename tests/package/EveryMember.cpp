// Names every public member of each installed class, and derives from each class, so that this program links
// only if the library exports them all. It also runs, to check that the library recognises values whose
// classes are compiled into this program.
#include <WfpFirewall.h>

#include <cstdint>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

namespace {

using namespace WfpFirewall;
using namespace WfpFirewall::Filtering;
using namespace WfpFirewall::Filtering::Values;
using namespace WfpFirewall::Helpers;

constexpr GUID kKey{0xc0c00001, 0x5e1f, 0x4c6a, {0x8e, 0x11, 0x3a, 0x52, 0x90, 0x6b, 0x77, 0x04}};
const std::wstring kText = L"Text";
const std::wstring kProgram = L"C:\\windows\\system32\\notepad.exe";

/// Takes the addresses of functions, which the library must export, but does not call them.
template <class... Functions>
void Name(Functions... /*functions*/) {}

/// Makes an object of the class and one of a derived class: the two call different exported constructors.
template <class Class, class... Arguments>
void Construct(Arguments&&... arguments) {
  struct Derived : Class {
    using Class::Class;
  };
  [[maybe_unused]] const Class object(arguments...);
  [[maybe_unused]] const Derived derived(arguments...);
}

void NameAddresses() {
  Construct<IpV4Address>(1);
  Construct<IpV4Address>(std::string("192.0.2.1"));
  Name(&IpV4Address::GetAddressInt, &IpV4Address::GetAddressString, &IpV4Address::operator==);
  Name(&IpV4AddressNone, &IpV4AddressAny, &IpV4AddressLoopback, &IpV4AddressBroadcast);

  Construct<IpV6Address>(std::string("2001:db8::1"));
  Construct<IpV6Address>(in6_addr{});
  Name(&IpV6Address::GetAddressBytes, &IpV6Address::GetAddressString);
}

/// The value classes with constructors in the library. The others have all code in their headers.
void NameValues() {
  const std::string address = "192.0.2.0";
  const std::string mask = "255.255.255.0";
  const std::string prefix = "2001:db8::";
  Construct<IpAddressV4>(address);
  Construct<IpAddressV4>(IpV4Address(address));
  Construct<IpAddressAndMaskV4>(address, mask);
  Construct<IpAddressAndMaskV4>(IpV4Address(address), IpV4Address(mask));
  Construct<IpAddressAndMaskV6>(prefix, 32);
  Construct<IpAddressAndMaskV6>(IpV6Address(prefix), 32);
  Construct<AppId>(FWP_BYTE_BLOB{});
  Construct<AppId>(kProgram);
}

void NameConditions() {
  struct Derived : Condition {
    using Condition::Condition;
  };
  const Condition one(ConditionType::Equal, new RemotePort(25));
  const Derived derived(ConditionType::Equal, new RemotePort(25));
  const Condition range(ConditionType::Range, new RemotePort(25), new RemotePort(53));
  const Derived derivedRange(ConditionType::Range, new RemotePort(25), new RemotePort(53));
  Name(&Condition::IsRangeCondition, &Condition::GetConditionType, &Condition::GetConditionValue,
       &Condition::GetConditionValue2, &Condition::GetNativeConditionType, &Condition::FromNative);
  Name<FWP_MATCH_TYPE (*)(ConditionType), ConditionType (*)(FWP_MATCH_TYPE)>(MapConditionType,
                                                                             MapConditionType);
  Name(&ConditionEqual, &ConditionNotEqual, &ConditionEqualCaseInsensitive, &ConditionGreater,
       &ConditionGreaterOrEqual, &ConditionLess, &ConditionLessOrEqual, &ConditionRange);
}

void NameFilters() {
  Construct<Layer>();
  Construct<Layer>(LayerType::AleAuthConnectV4);
  Name(&Layer::GetLayerType, &Layer::GetNativeLayerType, &Layer::FromNative);
  Name<GUID (*)(LayerType), LayerType (*)(GUID)>(MapLayerType, MapLayerType);

  Construct<Filter>(Action::Block);
  Name(&Filter::GetAction, &Filter::GetLayer, &Filter::GetConditions, &Filter::SetLayer, &Filter::SetWeight,
       &Filter::OverrideOtherSublayers, &Filter::AddCondition, &Filter::ToNativeFilter,
       &Filter::BuildFromNative);

  Construct<FilterBuilder>();
  Name(&FilterBuilder::CreateFilter, &FilterBuilder::InLayer, &FilterBuilder::WithCondition,
       &FilterBuilder::SetWeight, &FilterBuilder::OverrideOtherSublayers, &FilterBuilder::Get);
}

void NameEngine() {
  Construct<FirewallException>("Text", 5U);
  Construct<FirewallException>("Text");
  // By reference, so that the library must export the constant.
  Construct<FirewallException>("Text", std::cref(kNoEngineCode));
  Name(&FirewallException::GetErrorCode);

  Construct<Provider>(kKey, kText, kText, kText);
  Name(&Provider::GetGuid, &Provider::GetName, &Provider::GetDisplayName, &Provider::GetDisplayDesc,
       &Provider::MakePersistent, &Provider::IsPersistent);

  struct RuleSet : Sublayer {
    using Sublayer::Filters;
  };
  Construct<Sublayer>(kKey, kText, kText);
  Name(&Sublayer::GetGuid, &Sublayer::AddFilter, &Sublayer::AddFilters, &Sublayer::GetFilters,
       &Sublayer::IsEmpty, &Sublayer::SetWeight, &Sublayer::SurviveRestart, &Sublayer::IsApplied,
       &Sublayer::Apply, &Sublayer::Destroy, &RuleSet::Filters);

  Construct<Firewall>(Provider(kKey, kText, kText, kText));
  Name<bool (Firewall::*)(Sublayer&) const, bool (Firewall::*)(GUID) const>(&Firewall::HasSublayer,
                                                                            &Firewall::HasSublayer);
  Name(&Firewall::AddSublayer, &Firewall::RemoveSublayer, &Firewall::Apply, &Firewall::Destroy,
       &Firewall::TransactionBegin, &Firewall::TransactionCommit);
  Name(&Engine::OpenEngine, &Engine::GetAllBlockedAppsFilters);
}

void NameRuleSets() {
  using namespace Sublayers;
  std::vector<UINT64> luids{1};
  std::vector<std::wstring> programs{kProgram};
  UINT32 address = 0x64400001;
  KillSwitch killSwitch(kKey, kText, kText);
  Construct<KillSwitch>(kKey, kText, kText);
  Construct<KillSwitchFilteredByInterface>(killSwitch, luids);
  Construct<KillSwitchWithWhitelistedApps>(killSwitch, programs);
  Name(&KillSwitch::BuildFilters, &KillSwitchFilteredByInterface::BuildFilters,
       &KillSwitchWithWhitelistedApps::BuildFilters, &KillSwitchWithWhitelistedApps::GetApps);
  Construct<LocalNetworkBlock>(kKey, kText, kText);
  Construct<EnableDhcp>(kKey, kText, kText);
  Construct<DnsLeakProtection>(kKey, kText, kText, luids, kProgram);
  Construct<InterfaceLeakProtection>(kKey, kText, kText, luids, IpV4Address("192.0.2.1"), &address, 1U);
  Construct<SkeinFirewallRules>(kKey, kText, kText, luids, &address, 1U);
  Construct<BlockAppsBlockedInWinFirewall>();
}

void NameHelpers() {
  std::vector<IpV4Address> addresses;
  std::vector<IpV6Address> addressesV6;
  Construct<NetworkInterface>(kText, kText, addresses, addressesV6, 1U);
  Name(&NetworkInterface::GetName, &NetworkInterface::GetDescription, &NetworkInterface::GetIpV4Addresses,
       &NetworkInterface::GetIpV6Addresses, &NetworkInterface::GetLuid);
  Name<void (NetworkInterface::*)(const IpV4Address&), void (NetworkInterface::*)(const IpV6Address&)>(
      &NetworkInterface::OfferAddress, &NetworkInterface::OfferAddress);
  Name(&NetworkInfo::GetInterfaces, &NetworkInfo::Filter);

  Construct<NetworkInfoException>();
  Construct<NetworkInfoException>("Text");
  Construct<NetworkInfoException>("Text", 5);
  Construct<NetworkInfoException>(std::exception());
  Name(&NetworkInfoException::GetErrorCode);
}

/// Prints the field and the type that the library recognises in a value, or why it refuses the value.
void Show(const char* name, BaseValue* value) {
  Filter filter(Action::Block);
  filter.SetLayer(LayerType::AleAuthConnectV4);
  filter.AddCondition(ConditionEqual(value));
  std::cout << name << ": ";
  try {
    const FWPM_FILTER_CONDITION0& condition = *filter.ToNativeFilter().filterCondition;
    std::cout << std::hex << condition.fieldKey.Data1 << std::dec << ", type "
              << condition.conditionValue.type << '\n';
  } catch (const FirewallException& error) {
    std::cout << error.what() << '\n';
  }
}

#define SHOW(value) Show(#value, new value)

void ShowValues() {
  SHOW(AppId(kProgram));
  SHOW(InterfaceLuid(1));
  SHOW(ArrivalInterfaceLuid(1));
  SHOW(LocalInterfaceLuid(1));
  SHOW(InterfaceIndex(1));
  SHOW(SubInterfaceIndex(1));
  SHOW(Protocol(IPPROTO_TCP));
  SHOW(IpLocalAddressType(NlatUnicast));
  SHOW(Flag(1));
  SHOW(LoopbackFlag);
  SHOW(IpAddressV4(1));
  SHOW(LocalIpAddressV4("192.0.2.1"));
  SHOW(RemoteIpAddressV4("192.0.2.1"));
  SHOW(DestinationIpAddressV4(IpV4Address("192.0.2.1")));
  SHOW(SourceIpAddressV4(IpV4Address("192.0.2.1")));
  SHOW(IpAddressAndMaskV4(FWP_V4_ADDR_AND_MASK()));
  SHOW(LocalIpAddressAndMaskV4("192.0.2.0", "255.255.255.0"));
  SHOW(RemoteIpAddressAndMaskV4("192.0.2.0", "255.255.255.0"));
  SHOW(DestinationIpAddressAndMaskV4(IpV4Address("192.0.2.0"), IpV4Address("255.255.255.0")));
  SHOW(SourceIpAddressAndMaskV4(IpV4Address("192.0.2.0"), IpV4Address("255.255.255.0")));
  SHOW(IpAddressAndMaskV6(FWP_V6_ADDR_AND_MASK()));
  SHOW(RemoteIpAddressAndMaskV6("2001:db8::", 32));
  SHOW(LocalIpAddressAndMaskV6("2001:db8::", 32));
  SHOW(DestinationIpAddressAndMaskV6(IpV6Address("2001:db8::"), 32));
  SHOW(SourceIpAddressAndMaskV6(IpV6Address("2001:db8::"), 32));
  SHOW(Port(53));
  SHOW(LocalPort(53));
  SHOW(RemotePort(53));
}

}  // namespace

int main() {
  NameAddresses();
  NameValues();
  NameConditions();
  NameFilters();
  NameEngine();
  NameRuleSets();
  NameHelpers();
  ShowValues();
}
