// A host in C++ that uses the C interface. Failures become exceptions. Each feature is an object whose
// destructor switches it off.
#include <corvane/native_firewall.h>

#include <cstdint>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

class FirewallError : public std::runtime_error {
 public:
  FirewallError(std::uint64_t code, const std::string& text) : std::runtime_error(text), code_(code) {}
  std::uint64_t Code() const { return code_; }

 private:
  std::uint64_t code_;
};

void Check(std::uint64_t code) {
  if (code != 0) {
    throw FirewallError(code, GetErrorText());
  }
}

std::uint64_t CORVANE_CALL Print(const char* line) {
  std::cout << "  " << line << '\n';
  return 0;
}

/// Local networks are blocked as long as this object lives.
class LocalNetworkBlock {
 public:
  LocalNetworkBlock() { Check(DisableLocalNetwork(Print)); }
  ~LocalNetworkBlock() { EnableLocalNetwork(); }
  LocalNetworkBlock(const LocalNetworkBlock&) = delete;
  LocalNetworkBlock& operator=(const LocalNetworkBlock&) = delete;
};

/// As long as this object lives, the interface lets in only the peers from the Skein network.
class SkeinRules {
 public:
  SkeinRules(std::uint64_t luid, const std::vector<std::uint32_t>& peers) {
    Check(EnableSkeinFirewallRules(Print, nullptr, 0, luid, peers.data(), peers.size()));
  }
  ~SkeinRules() { DisableSkeinFirewallRules(); }
  SkeinRules(const SkeinRules&) = delete;
  SkeinRules& operator=(const SkeinRules&) = delete;
};

/// The keys of this product differ only in their first number.
GUID Key(std::uint32_t number) {
  return {number, 0x5e1f, 0x4c6a, {0x8e, 0x11, 0x3a, 0x52, 0x90, 0x6b, 0x77, 0x02}};
}

void IntroduceHost() {
  const GUID provider = Key(1);
  const GUID killSwitch = Key(2);
  const GUID localNetwork = Key(3);
  const GUID dhcp = Key(4);
  const GUID dnsLeak = Key(5);
  const GUID interfaceLeak = Key(6);
  const GUID firewallCopy = Key(7);
  const GUID skein = Key(8);
  Initialize(&provider, L"Example", L"A host in C++", &killSwitch, L"Kill switch", L"", &localNetwork, L"",
             L"Local networks", &dhcp, L"DHCP", L"", &dnsLeak, L"Name look-ups", L"", &interfaceLeak,
             L"Tunnel", L"", &firewallCopy, L"Blocked applications", L"", &skein, L"Skein", L"",
             L"C:\\Program Files\\Example\\resolver.exe");
}

}  // namespace

int main() {
  IntroduceHost();
  try {
    const LocalNetworkBlock block;
    const SkeinRules rules(0x6000008000000, {0x64400001, 0x64400002});  // 100.64.0.1 and 100.64.0.2
    std::cout << "local network enabled: " << IsLocalNetworkEnabled() << '\n';

    const wchar_t* const apps[]{L"C:\\no such program.exe"};
    Check(DisableInternet(apps, 1, nullptr, 0, Print));
  } catch (const FirewallError& error) {
    std::cout << "code " << error.Code() << ": " << error.what() << '\n';
  }
  std::cout << "local network enabled: " << IsLocalNetworkEnabled() << '\n';
}
