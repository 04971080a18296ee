/**
 * @file
 * Who connects, and where: what many connections have in common.
 */
#pragma once

#include <WfpPlatform.h>

#include <optional>

#include "policy/Token.h"

namespace Policy {

/// What holds for all connections that are asked about together. Of what has no value nothing is known, so
/// conditions on it are in doubt.
struct Circumstances {
  /// Of the socket. It decides conditions on users, package families and packages.
  std::optional<Token> token;
  /// Of the network: 1 public, 2 private, 3 domain.
  std::optional<UINT32> profile;
  /// Of the interface: 0 none, 11 6to4, 13 ISATAP, 14 Teredo, 15 IP-HTTPS.
  std::optional<UINT32> tunnelType;
  /// The routing compartment; 1 is the one that all machines have.
  std::optional<UINT32> compartment;
  /// After a change of networks the platform keeps an interface in quarantine until its rules are in place.
  enum class Quarantine {
    Unknown,
    Over,   ///< whatever filters let an interface out of quarantine, they do so for the connection's
    Epoch,  ///< `epoch` decides
  };
  Quarantine quarantine = Quarantine::Unknown;
  UINT64 epoch = 0;
  /// What a program has told of a port that it listens on: 0x1 port of dynamic RPC, 0x2 takes traffic from
  /// behind a NAT device, 0x4 does not.
  std::optional<UINT32> systemPort;
  /// False: it is known that IPsec does not protect connections, so their peers are nobody in particular.
  bool mayUseIpsec = true;
  /// Why a connection is judged anew, 0x1 for a change of filters; 0: it is judged for the first time.
  std::optional<UINT32> reauthorizeReason;
};

/// A program at a settled network: no tunnel, the first compartment, quarantine over, no special port, no
/// IPsec, judged for the first time. The profile is left open.
Circumstances UsualCircumstances(Token token);

}  // namespace Policy
