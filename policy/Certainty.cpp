#include "policy/Certainty.h"

#include <algorithm>
#include <optional>
#include <string>
#include <variant>

#include "policy/AccessCheck.h"
#include "policy/ByteReader.h"
#include "policy/DerivedTests.h"
#include "policy/ModelledField.h"

namespace Policy {
namespace {

struct Open {};
struct Unset {};
struct WhatIsAsked {};  ///< the value that a condition tests for

/// What a field holds.
using FixedValue = std::variant<Open, Unset, WhatIsAsked, UINT64, Sid, const Token*>;

FixedValue NumberOrOpen(const std::optional<UINT32>& number) {
  return number ? FixedValue(UINT64{*number}) : FixedValue(Open());
}

FixedValue DirectionOf(Direction direction, const Circumstances&) {
  return UINT64{direction == Direction::Outbound ? 0U : 1U};
}

FixedValue TokenOf(Direction, const Circumstances& circumstances) {
  return circumstances.token ? FixedValue(&*circumstances.token) : FixedValue(Open());
}

/// A program outside of app containers has the null SID.
FixedValue PackageOf(Direction, const Circumstances& circumstances) {
  if (!circumstances.token) {
    return Open();
  }
  const auto& container = circumstances.token->appContainer;
  return container ? container->package : Sid{0, {0}};
}

FixedValue PeerOf(Direction, const Circumstances& circumstances) {
  return circumstances.mayUseIpsec ? FixedValue(Open()) : FixedValue(Unset());
}

FixedValue ProfileOf(Direction, const Circumstances& circumstances) {
  return NumberOrOpen(circumstances.profile);
}

FixedValue TunnelOf(Direction, const Circumstances& circumstances) {
  return NumberOrOpen(circumstances.tunnelType);
}

FixedValue ArrivalTunnelOf(Direction direction, const Circumstances& circumstances) {
  return direction == Direction::Inbound ? NumberOrOpen(circumstances.tunnelType) : Unset();
}

FixedValue NextHopTunnelOf(Direction direction, const Circumstances& circumstances) {
  return direction == Direction::Outbound ? NumberOrOpen(circumstances.tunnelType) : Unset();
}

FixedValue CompartmentOf(Direction, const Circumstances& circumstances) {
  return NumberOrOpen(circumstances.compartment);
}

FixedValue EpochOf(Direction, const Circumstances& circumstances) {
  switch (circumstances.quarantine) {
    case Circumstances::Quarantine::Over:
      return WhatIsAsked();
    case Circumstances::Quarantine::Epoch:
      return circumstances.epoch;
    default:
      return Open();
  }
}

FixedValue SystemPortOf(Direction, const Circumstances& circumstances) {
  return NumberOrOpen(circumstances.systemPort);
}

FixedValue ReauthorizeReasonOf(Direction, const Circumstances& circumstances) {
  return circumstances.reauthorizeReason == 0U ? FixedValue(Unset())
                                               : NumberOrOpen(circumstances.reauthorizeReason);
}

struct FixedField {
  std::string_view name;
  FixedValue (*value)(Direction, const Circumstances&);
  std::string_view decidedBy;
};

constexpr FixedField kFixedFields[]{
    {"ALE_PACKAGE_FAMILY_NAME", TokenOf, "package"},
    {"ALE_PACKAGE_ID", PackageOf, "package"},
    {"ALE_REMOTE_MACHINE_ID", PeerOf, "IPsec"},
    {"ALE_REMOTE_USER_ID", PeerOf, "IPsec"},
    {"ALE_SIO_FIREWALL_SYSTEM_PORT", SystemPortOf, "system port"},
    {"ALE_USER_ID", TokenOf, "user"},
    {"ARRIVAL_TUNNEL_TYPE", ArrivalTunnelOf, "tunnel type"},
    {"COMPARTMENT_ID", CompartmentOf, "compartment"},
    {"CURRENT_PROFILE_ID", ProfileOf, "profile"},
    {"DIRECTION", DirectionOf, "direction"},
    {"INTERFACE_QUARANTINE_EPOCH", EpochOf, "quarantine"},
    {"NEXTHOP_TUNNEL_TYPE", NextHopTunnelOf, "tunnel type"},
    {"ORIGINAL_PROFILE_ID", ProfileOf, "profile"},
    {"REAUTHORIZE_REASON", ReauthorizeReasonOf, "re-authorisation"},
    {"TUNNEL_TYPE", TunnelOf, "tunnel type"},
};

// Names that programs give to peers, what redirected connections were before, indexes beside LUIDs, and what
// only the platform itself knows.
constexpr std::string_view kNotModelled[]{
    "ALE_EFFECTIVE_NAME",
    "ALE_NAP_CONTEXT",
    "ALE_ORIGINAL_APP_ID",
    "ALE_SECURITY_ATTRIBUTE_FQBN_VALUE",
    "ARRIVAL_INTERFACE_INDEX",
    "INTERFACE_INDEX",
    "NEXTHOP_INTERFACE_INDEX",
    "NEXTHOP_SUB_INTERFACE_INDEX",
    "PEER_NAME",
    "RESERVED0",
    "RESERVED1",
    "RESERVED2",
    "RESERVED3",
    "SUB_INTERFACE_INDEX",
};

const FixedField* FindFixed(const Catalog::Field* field) {
  const auto* found = field == nullptr ? std::end(kFixedFields)
                                       : std::ranges::find(kFixedFields, field->name, &FixedField::name);
  return found == std::end(kFixedFields) ? nullptr : found;
}

std::span<const UINT8> BytesOf(const std::string& data) {
  return {reinterpret_cast<const UINT8*>(data.data()), data.size()};
}

/// Nothing if the bytes are no SID, and so are nobody's.
std::optional<Sid> SidOf(const std::string& data) {
  try {
    ByteReader bytes(BytesOf(data));
    return TakeSid(bytes);
  } catch (const MalformedError&) {
    return std::nullopt;
  }
}

Certainty Known(bool holds) { return holds ? Certainty::Holds : Certainty::Fails; }

/// Whether a condition holds of what a field holds.
struct HoldsOf {
  const Condition& condition;

  Certainty operator()(Open) const { return Certainty::InDoubt; }

  Certainty operator()(Unset) const {
    const Test& test = condition.test;
    if (test.kind == Test::Kind::Unset) {
      return Certainty::Holds;
    }
    // Of a field without a value a negation perhaps holds, and a test of flags.
    const bool isPlain = test.kind != Test::Kind::Unreadable && !test.negated && !test.TestsFlags();
    return isPlain || AsksWho() ? Certainty::Fails : Certainty::InDoubt;
  }

  Certainty operator()(WhatIsAsked) const {
    const bool isAsked = condition.test.kind == Test::Kind::InInterval && !condition.test.negated;
    return isAsked ? Certainty::Holds : Certainty::InDoubt;
  }

  Certainty operator()(UINT64 number) const {
    const Test& test = condition.test;
    const UINT64 bits = test.interval.first.low;
    switch (test.kind) {
      case Test::Kind::InInterval:
        return Known((test.interval.first <= Number(number) && Number(number) <= test.interval.last) !=
                     test.negated);
      case Test::Kind::AllSet:
        return Known((number & bits) == bits);
      case Test::Kind::AnySet:
        return Known((number & bits) != 0);
      case Test::Kind::NoneSet:
        return Known((number & bits) == 0);
      case Test::Kind::Unset:
        return Certainty::Fails;
      default:
        return Certainty::InDoubt;
    }
  }

  Certainty operator()(const Sid& sid) const {
    switch (condition.test.kind) {
      case Test::Kind::IsBytes:
        return Known((SidOf(condition.test.bytes) == sid) != condition.test.negated);
      case Test::Kind::Unset:
        return Certainty::Fails;
      default:
        return Certainty::InDoubt;
    }
  }

  Certainty operator()(const Token* token) const {
    if (condition.test.kind == Test::Kind::Unset) {
      return Certainty::Fails;
    }
    const auto* descriptor = std::get_if<std::string>(&condition.value.data);
    if (descriptor == nullptr || !AsksWho()) {
      return Certainty::InDoubt;
    }
    switch (CheckAccess(BytesOf(*descriptor), *token)) {
      case Access::Granted:
        return Certainty::Holds;
      case Access::Denied:
        return Certainty::Fails;
      default:
        return Certainty::InDoubt;
    }
  }

  /// Whether it is a condition with a security descriptor, of the one kind that is documented.
  [[nodiscard]] bool AsksWho() const {
    return condition.value.type == FWP_SECURITY_DESCRIPTOR_TYPE && condition.match == FWP_MATCH_EQUAL;
  }
};

}  // namespace

Certainty CertaintyOf(const std::vector<const Condition*>& conditions, Direction direction,
                      const Circumstances& circumstances) {
  bool inDoubt = false;
  std::size_t negations = 0;
  std::size_t failing = 0;
  for (const Condition* condition : conditions) {
    const FixedField* field = FindFixed(condition->field);
    const Certainty certainty = field != nullptr
                                    ? std::visit(HoldsOf{*condition}, field->value(direction, circumstances))
                                    : Certainty::InDoubt;
    inDoubt = inDoubt || certainty == Certainty::InDoubt;
    if (condition->test.negated) {
      ++negations;
      failing += certainty == Certainty::Fails ? 1 : 0;
    } else if (certainty == Certainty::Holds) {
      return Certainty::Holds;
    }
  }
  if (inDoubt || (failing > 0 && failing < negations)) {
    return Certainty::InDoubt;
  }
  return failing < negations ? Certainty::Holds : Certainty::Fails;
}

std::string_view DecidedBy(const Catalog::Field& field) {
  const FixedField* fixed = FindFixed(&field);
  return fixed == nullptr ? std::string_view() : fixed->decidedBy;
}

bool HasPlace(const Catalog::Field& field) {
  return FindFixed(&field) != nullptr || ModelledField(field) || IsDerived(field);
}

std::span<const std::string_view> FieldsNotModelled() { return kNotModelled; }

}  // namespace Policy
