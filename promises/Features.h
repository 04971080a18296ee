/**
 * @file
 * The features of this product that filters are installed for.
 */
#pragma once

#include <WfpPlatform.h>

#include <optional>
#include <string>
#include <vector>

namespace Promises {

/// Which features are on, with their arguments. Applications are the bytes of their ids, interfaces LUIDs,
/// IPv4 addresses numbers in host byte order.
struct Features {
  struct KillSwitch {
    std::vector<std::string> applications;  ///< exempt
    std::vector<UINT64> interfaces;         ///< exempt, if there are no applications
  };
  struct LeakProtection {
    std::vector<UINT64> interfaces;
    UINT32 serverAddress = 0;
    std::vector<UINT32> permittedAddresses;
    std::string nameApplication;               ///< its look-ups may go anywhere
    std::vector<std::string> blockedOutbound;  ///< applications that Windows Firewall blocks
    std::vector<std::string> blockedInbound;
  };
  struct Skein {
    std::vector<UINT64> interfaces;
    std::vector<UINT32> peers;
  };

  std::optional<KillSwitch> killSwitch;
  bool dhcp = false;
  bool localNetworkBlock = false;
  std::optional<LeakProtection> leakProtection;
  std::optional<Skein> skein;
};

}  // namespace Promises
