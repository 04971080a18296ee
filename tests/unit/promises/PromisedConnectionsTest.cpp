// Exactly which connections the promises are about: engines that permit only one connection, or block only
// one, and the promises that they break.
#include <algorithm>

#include "promises/Proof.h"
#include "unit/policy/PolicyTest.h"

namespace {

using Promises::Features;
using Promises::Keeping;

/// The kind of an address, seen from this machine.
enum class Place {
  Elsewhere,
  Loopback,
  LocalNetwork,
  LocalService,  ///< service discovery or limited broadcast
};

struct Border {
  const char* address;
  Place place;
};

/// The addresses on both sides of every border between kinds.
constexpr Border kBorders[]{
    {"9.255.255.255", Place::Elsewhere},
    {"10.0.0.0", Place::LocalNetwork},
    {"10.255.255.255", Place::LocalNetwork},
    {"11.0.0.0", Place::Elsewhere},
    {"126.255.255.255", Place::Elsewhere},
    {"127.0.0.0", Place::Loopback},
    {"127.255.255.255", Place::Loopback},
    {"128.0.0.0", Place::Elsewhere},
    {"172.15.255.255", Place::Elsewhere},
    {"172.16.0.0", Place::LocalNetwork},
    {"172.31.255.255", Place::LocalNetwork},
    {"172.32.0.0", Place::Elsewhere},
    {"192.167.255.255", Place::Elsewhere},
    {"192.168.0.0", Place::LocalNetwork},
    {"192.168.255.255", Place::LocalNetwork},
    {"192.169.0.0", Place::Elsewhere},
    {"239.255.255.249", Place::Elsewhere},
    {"239.255.255.250", Place::LocalService},
    {"239.255.255.251", Place::Elsewhere},
    {"255.255.255.254", Place::Elsewhere},
    {"255.255.255.255", Place::LocalService},
    {"::", Place::Elsewhere},
    {"::1", Place::Loopback},
    {"::2", Place::Elsewhere},
    {"fbff:ffff:ffff:ffff:ffff:ffff:ffff:ffff", Place::Elsewhere},
    {"fc00::", Place::LocalNetwork},
    {"fdff:ffff:ffff:ffff:ffff:ffff:ffff:ffff", Place::LocalNetwork},
    {"fe00::", Place::Elsewhere},
    {"fe7f:ffff:ffff:ffff:ffff:ffff:ffff:ffff", Place::Elsewhere},
    {"fe80::", Place::LocalNetwork},
    {"febf:ffff:ffff:ffff:ffff:ffff:ffff:ffff", Place::LocalNetwork},
    {"fec0::", Place::Elsewhere},
    {"ff02::b", Place::Elsewhere},
    {"ff02::c", Place::LocalService},
    {"ff02::d", Place::Elsewhere},
    {"ff05::b", Place::Elsewhere},
    {"ff05::c", Place::LocalService},
    {"ff05::d", Place::Elsewhere},
    {"ff08::b", Place::Elsewhere},
    {"ff08::c", Place::LocalService},
    {"ff08::d", Place::Elsewhere},
    {"ff0e::b", Place::Elsewhere},
    {"ff0e::c", Place::LocalService},
    {"ff0e::d", Place::Elsewhere},
};

bool IsV6(const std::string& address) { return address.find(':') != std::string::npos; }

/// A condition on one remote address, followed by `others`.
std::string At(const std::string& address, const std::string& others = {}) {
  return "IP_REMOTE_ADDRESS EQUAL " +
         (IsV6(address) ? "BYTE_ARRAY16 " + address : "V4_ADDR_MASK " + address + "/255.255.255.255") +
         (others.empty() ? "" : " & " + others);
}

class PromisedConnections : public PolicyTest {
 protected:
  PromisedConnections() {
    killSwitch_.killSwitch.emplace();
    localNetworkBlock_.localNetworkBlock = true;
    leakProtection_.leakProtection =
        Features::LeakProtection{{7}, 0xCB007101, {0xCB007104}, Policy::ApplicationBytes("dns.exe"), {}, {}};
    skein_.skein = Features::Skein{{11}, {0x64400001}};
  }

  /// Whether a promise is broken by an engine that permits only the connections at `layer` that meet
  /// `conditions`.
  bool BreaksClosed(const Features& features, const std::string& promise, const std::string& layer,
                    const std::string& conditions) {
    std::string filters = layer + " | PERMIT | UINT8 2 | - | " + conditions;
    for (const char* every : {"ALE_AUTH_CONNECT_V4", "ALE_AUTH_CONNECT_V6", "ALE_AUTH_RECV_ACCEPT_V4",
                              "ALE_AUTH_RECV_ACCEPT_V6"}) {
      filters += std::string("\n") + every + " | BLOCK | UINT8 1 | - | -";
    }
    return Breaks(features, promise, filters);
  }

  /// The same for an engine that blocks only these connections.
  bool BreaksOpen(const Features& features, const std::string& promise, const std::string& layer,
                  const std::string& conditions) {
    return Breaks(features, promise, layer + " | BLOCK | UINT8 1 | - | " + conditions);
  }

  static std::string ConnectLayer(const std::string& address) {
    return IsV6(address) ? "ALE_AUTH_CONNECT_V6" : "ALE_AUTH_CONNECT_V4";
  }
  static std::string AcceptLayer(const std::string& address) {
    return IsV6(address) ? "ALE_AUTH_RECV_ACCEPT_V6" : "ALE_AUTH_RECV_ACCEPT_V4";
  }

  Features killSwitch_;
  Features localNetworkBlock_;
  Features leakProtection_;
  Features skein_;

 private:
  bool Breaks(const Features& features, const std::string& promise, const std::string& filters) {
    SetUpAgain();
    Install(1, filters);
    const Policy::Snapshot snapshot = Read();
    const auto results = Promises::Prove(snapshot, features);
    return std::ranges::find(results, promise, &Promises::PromiseResult::name)->keeping == Keeping::Broken;
  }
};

TEST_F(PromisedConnections, NothingLeavesTheKillSwitchButToLocalAddresses) {
  for (const auto& [address, place] : kBorders) {
    EXPECT_EQ(BreaksClosed(killSwitch_, "kill-switch-closes-outbound", ConnectLayer(address), At(address)),
              place == Place::Elsewhere)
        << address;
    EXPECT_EQ(BreaksClosed(killSwitch_, "kill-switch-closes-inbound", AcceptLayer(address), At(address)),
              place == Place::Elsewhere)
        << address;
  }
}

TEST_F(PromisedConnections, LocalAddressesStayReachable) {
  for (const auto& [address, place] : kBorders) {
    const bool isLocal = place == Place::LocalNetwork || place == Place::LocalService;
    EXPECT_EQ(BreaksOpen(killSwitch_, "kill-switch-local-network", ConnectLayer(address), At(address)),
              isLocal)
        << address;
    EXPECT_EQ(BreaksOpen(leakProtection_, "leak-local-network", ConnectLayer(address), At(address)), isLocal)
        << address;
  }
}

TEST_F(PromisedConnections, LookUpsGoToNoLocalAddress) {
  for (const auto& [address, place] : kBorders) {
    EXPECT_EQ(BreaksClosed(killSwitch_, "kill-switch-no-look-ups", ConnectLayer(address),
                           At(address, "IP_REMOTE_PORT EQUAL UINT16 53")),
              place == Place::LocalNetwork || place == Place::LocalService)
        << address;
    EXPECT_EQ(BreaksClosed(leakProtection_, "leak-no-look-ups", ConnectLayer(address),
                           At(address, "IP_REMOTE_PORT EQUAL UINT16 53")),
              place != Place::Loopback)
        << address;
  }
}

TEST_F(PromisedConnections, OnlyPortFiftyThreeIsALookUp) {
  for (const auto& [port, isLookUp] :
       {std::pair("52", false), std::pair("53", true), std::pair("54", false)}) {
    const std::string conditions = At("10.0.0.1", std::string("IP_REMOTE_PORT EQUAL UINT16 ") + port);
    EXPECT_EQ(BreaksClosed(killSwitch_, "kill-switch-no-look-ups", "ALE_AUTH_CONNECT_V4", conditions),
              isLookUp)
        << port;
    EXPECT_EQ(BreaksOpen(killSwitch_, "kill-switch-local-network", "ALE_AUTH_CONNECT_V4", conditions),
              !isLookUp)
        << port;
  }
}

TEST_F(PromisedConnections, TheLocalNetworkBlockIsOfNetworks) {
  for (const auto& [address, place] : kBorders) {
    const bool isNetwork = place == Place::LocalNetwork;
    EXPECT_EQ(BreaksClosed(localNetworkBlock_, "local-network-closed", ConnectLayer(address), At(address)),
              isNetwork)
        << address;
    EXPECT_EQ(BreaksClosed(localNetworkBlock_, "local-network-closed", AcceptLayer(address), At(address)),
              isNetwork)
        << address;
    EXPECT_EQ(BreaksOpen(localNetworkBlock_, "local-network-look-ups", ConnectLayer(address), At(address)),
              isNetwork)
        << address;
  }
}

TEST_F(PromisedConnections, LeakProtectionLeavesLocalAddressesTheServerAndThePermittedOpen) {
  for (const auto& [address, place] : kBorders) {
    EXPECT_EQ(BreaksClosed(leakProtection_, "leak-closes", ConnectLayer(address), At(address)),
              place == Place::Elsewhere)
        << address;
  }
  struct Reachable {
    const char* address;
    bool isServer;
    bool isPermitted;
  };
  for (const auto& [address, isServer, isPermitted] :
       {Reachable{"203.0.113.0", false, false}, Reachable{"203.0.113.1", true, false},
        Reachable{"203.0.113.2", false, false}, Reachable{"203.0.113.3", false, false},
        Reachable{"203.0.113.4", false, true}, Reachable{"203.0.113.5", false, false}}) {
    EXPECT_EQ(BreaksClosed(leakProtection_, "leak-closes", "ALE_AUTH_CONNECT_V4", At(address)),
              !isServer && !isPermitted)
        << address;
    EXPECT_EQ(BreaksOpen(leakProtection_, "leak-server", "ALE_AUTH_CONNECT_V4", At(address)), isServer)
        << address;
    EXPECT_EQ(BreaksOpen(leakProtection_, "leak-permitted-addresses", "ALE_AUTH_CONNECT_V4", At(address)),
              isPermitted)
        << address;
  }
}

TEST_F(PromisedConnections, SkeinIsForItsPeersAlone) {
  struct Sender {
    const char* address;
    bool isPeer;
    bool isOfSkein;
  };
  const std::string onSkein = "IP_LOCAL_INTERFACE EQUAL UINT64 11";
  for (const auto& [address, isPeer, isOfSkein] :
       {Sender{"100.63.255.255", false, false}, Sender{"100.64.0.0", false, true},
        Sender{"100.64.0.1", true, true}, Sender{"100.64.0.2", false, true},
        Sender{"100.127.255.255", false, true}, Sender{"100.128.0.0", false, false}}) {
    EXPECT_EQ(BreaksOpen(skein_, "skein-peers", "ALE_AUTH_RECV_ACCEPT_V4", At(address, onSkein)), isPeer)
        << address;
    EXPECT_EQ(BreaksClosed(skein_, "skein-closed", "ALE_AUTH_RECV_ACCEPT_V4", At(address, onSkein)),
              isOfSkein && !isPeer)
        << address;
  }
}

/// An exchange between two ports: whether it is a DHCP client's, and whether the DHCP feature allows it.
struct Exchange {
  const char* layer;
  const char* conditions;
  bool isClients;
  bool isAllowed;
};

constexpr Exchange kExchanges[]{
    {"ALE_AUTH_CONNECT_V4",
     "IP_PROTOCOL EQUAL UINT8 17 & IP_LOCAL_PORT EQUAL UINT16 68 & IP_REMOTE_PORT EQUAL UINT16 67", true,
     true},
    {"ALE_AUTH_CONNECT_V4",
     "IP_PROTOCOL EQUAL UINT8 17 & IP_LOCAL_PORT EQUAL UINT16 67 & IP_REMOTE_PORT EQUAL UINT16 68", false,
     true},
    {"ALE_AUTH_CONNECT_V4",
     "IP_PROTOCOL EQUAL UINT8 17 & IP_LOCAL_PORT EQUAL UINT16 68 & IP_REMOTE_PORT EQUAL UINT16 68", false,
     false},
    {"ALE_AUTH_CONNECT_V4",
     "IP_PROTOCOL EQUAL UINT8 17 & IP_LOCAL_PORT EQUAL UINT16 67 & IP_REMOTE_PORT EQUAL UINT16 67", false,
     false},
    {"ALE_AUTH_CONNECT_V4",
     "IP_PROTOCOL EQUAL UINT8 6 & IP_LOCAL_PORT EQUAL UINT16 68 & IP_REMOTE_PORT EQUAL UINT16 67", false,
     false},
    {"ALE_AUTH_CONNECT_V4",
     "IP_PROTOCOL EQUAL UINT8 17 & IP_LOCAL_PORT EQUAL UINT16 546 & IP_REMOTE_PORT EQUAL UINT16 547", false,
     false},
    {"ALE_AUTH_CONNECT_V6",
     "IP_PROTOCOL EQUAL UINT8 17 & IP_LOCAL_PORT EQUAL UINT16 546 & IP_REMOTE_PORT EQUAL UINT16 547", true,
     true},
    {"ALE_AUTH_CONNECT_V6",
     "IP_PROTOCOL EQUAL UINT8 17 & IP_LOCAL_PORT EQUAL UINT16 547 & IP_REMOTE_PORT EQUAL UINT16 546", false,
     true},
    {"ALE_AUTH_CONNECT_V6",
     "IP_PROTOCOL EQUAL UINT8 17 & IP_LOCAL_PORT EQUAL UINT16 546 & IP_REMOTE_PORT EQUAL UINT16 546", false,
     false},
    {"ALE_AUTH_CONNECT_V6",
     "IP_PROTOCOL EQUAL UINT8 17 & IP_LOCAL_PORT EQUAL UINT16 547 & IP_REMOTE_PORT EQUAL UINT16 547", false,
     false},
    {"ALE_AUTH_CONNECT_V6",
     "IP_PROTOCOL EQUAL UINT8 17 & IP_LOCAL_PORT EQUAL UINT16 68 & IP_REMOTE_PORT EQUAL UINT16 67", false,
     false},
};

TEST_F(PromisedConnections, TheDhcpClientsExchangeIsPromised) {
  Features dhcp;
  dhcp.dhcp = true;
  for (const Exchange& exchange : kExchanges) {
    EXPECT_EQ(BreaksOpen(dhcp, "dhcp-client", exchange.layer, exchange.conditions), exchange.isClients)
        << exchange.layer << ' ' << exchange.conditions;
  }
}

TEST_F(PromisedConnections, BothSidesOfDhcpAreNoLeakWhereItIsOn) {
  for (const Exchange& exchange : kExchanges) {
    for (const bool dhcp : {false, true}) {
      killSwitch_.dhcp = leakProtection_.dhcp = dhcp;
      EXPECT_EQ(BreaksClosed(killSwitch_, "kill-switch-closes-outbound", exchange.layer, exchange.conditions),
                !(dhcp && exchange.isAllowed))
          << exchange.layer << ' ' << exchange.conditions;
      EXPECT_EQ(BreaksClosed(leakProtection_, "leak-closes", exchange.layer, exchange.conditions),
                !(dhcp && exchange.isAllowed))
          << exchange.layer << ' ' << exchange.conditions;
    }
  }
}

}  // namespace
