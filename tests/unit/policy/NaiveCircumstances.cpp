#include "unit/policy/NaiveCircumstances.h"

#include <array>
#include <vector>

namespace {

using Policy::Direction;

Policy::Sid Sid(const char* text) { return Policy::ParseSid(text).value(); }

const std::string kDomainUser = "S-1-5-21-1-2-3-1001";
const std::string kService = "S-1-5-80-1-2-3-4-5";
const std::string kPackage = "S-1-15-2-1-2-3-4-5-6-7";
const std::string kFamily = "Example.App_0123456789abc";

const std::set<std::string> kUsers{kDomainUser, "S-1-1-0", "S-1-5-4", "S-1-5-11", "S-1-5-32-545"};
const std::set<std::string> kServices{"S-1-1-0", "S-1-5-6", "S-1-5-11", "S-1-5-80-0", kService};

std::set<std::string> With(std::set<std::string> all, std::initializer_list<const char*> more) {
  all.insert(more.begin(), more.end());
  return all;
}

std::vector<NaivePerson> People() {
  const Policy::Token user = Policy::UserProgram(Sid("S-1-5-21-1-2-3-1001"));
  const Policy::AppContainer container{Sid("S-1-15-2-1-2-3-4-5-6-7"), {Sid("S-1-15-3-1")}};
  return {
      {user, kUsers, {}, "S-1-0-0", ""},
      {Policy::WithPackageFamily(user, kFamily), kUsers, {}, "S-1-0-0", kFamily},
      {Policy::SystemProgram(), {"S-1-5-18", "S-1-1-0", "S-1-5-11", "S-1-5-32-544"}, {}, "S-1-0-0", ""},
      {Policy::ServiceProgram(Sid("S-1-5-80-1-2-3-4-5"), Policy::ServiceAccount::NetworkService),
       With(kServices, {"S-1-5-20", "S-1-5-32-545"}),
       {},
       "S-1-0-0",
       ""},
      {Policy::ServiceProgram(Sid("S-1-5-80-1-2-3-4-5"), Policy::ServiceAccount::System),
       With(kServices, {"S-1-5-18", "S-1-5-32-544"}),
       {},
       "S-1-0-0",
       ""},
      {Policy::WithPackageFamily(Policy::AppContainerProgram(container, Sid("S-1-5-21-1-2-3-1001")), kFamily),
       kUsers,
       {"S-1-15-2-1", "S-1-15-2-2", kPackage, "S-1-15-3-1"},
       kPackage,
       kFamily},
  };
}

UINT32 Word(const UINT8* bytes) {
  return UINT32{bytes[0]} | UINT32{bytes[1]} << 8 | UINT32{bytes[2]} << 16 | UINT32{bytes[3]} << 24;
}

std::string SidText(const UINT8* sid) {
  std::string text = "S-1-" + std::to_string(sid[7]);
  for (int i = 0; i < sid[1]; ++i) {
    text += '-' + std::to_string(Word(sid + 8 + 4 * i));
  }
  return text;
}

/// Whether an entry's condition, which asks for a package family, is true.
bool IsFamily(const UINT8* ace, const std::string& family) {
  std::string bytes;
  for (const char character : family) {
    bytes += character;
    bytes += '\0';
  }
  const std::string all(ace, ace + (ace[2] | ace[3] << 8));
  return !family.empty() && all.find(bytes) != std::string::npos;
}

/// Goes through the entries once for one set of SIDs.
bool Passes(const UINT8* list, const std::set<std::string>& sids, const NaivePerson& person) {
  const UINT8* ace = list + 8;
  for (int left = list[4] | list[5] << 8; left > 0; --left, ace += ace[2] | ace[3] << 8) {
    const std::string sid = SidText(ace + 8);
    const bool isConditional = ace[0] == 9;
    if ((Word(ace + 4) & 1) == 0 || !sids.contains(sid) || (isConditional && !IsFamily(ace, person.family))) {
      continue;
    }
    return ace[0] != 1;
  }
  return false;
}

bool Grants(const FWP_BYTE_BLOB& blob, const NaivePerson& person) {
  const UINT32 list = Word(blob.data + 16);
  if (list == 0) {
    return true;
  }
  return Passes(blob.data + list, person.groups, person) &&
         (person.ofPackage.empty() || Passes(blob.data + list, person.ofPackage, person));
}

Matching Answer(bool yes) { return yes ? Yes : No; }

/// Compares a number, for the matches that the tests use.
Matching Compare(UINT64 number, const FWPM_FILTER_CONDITION0& condition) {
  const FWP_CONDITION_VALUE0& value = condition.conditionValue;
  if (value.type == FWP_EMPTY) {
    return No;
  }
  UINT64 other = value.type == FWP_UINT64 ? *value.uint64 : value.uint32;
  if (value.type == FWP_UINT8) {
    other = value.uint8;
  } else if (value.type == FWP_UINT16) {
    other = value.uint16;
  }
  switch (condition.matchType) {
    case FWP_MATCH_EQUAL:
      return Answer(number == other);
    case FWP_MATCH_NOT_EQUAL:
      return Answer(number != other);
    case FWP_MATCH_FLAGS_ALL_SET:
      return Answer((number & other) == other);
    case FWP_MATCH_FLAGS_ANY_SET:
      return Answer((number & other) != 0);
    default:
      return Answer((number & other) == 0);
  }
}

/// A field without a value.
Matching CompareUnset(const FWPM_FILTER_CONDITION0& condition) {
  if (condition.conditionValue.type == FWP_EMPTY) {
    return Yes;
  }
  return condition.matchType == FWP_MATCH_EQUAL ? No : Perhaps;
}

Matching CompareKnown(std::optional<UINT32> number, const FWPM_FILTER_CONDITION0& condition) {
  return number ? Compare(*number, condition) : Perhaps;
}

Matching AskWho(const FWPM_FILTER_CONDITION0& condition, const NaivePerson& person) {
  return condition.conditionValue.type == FWP_EMPTY ? No
                                                    : Answer(Grants(*condition.conditionValue.sd, person));
}

Matching AskPackage(const FWPM_FILTER_CONDITION0& condition, const NaivePerson& person) {
  if (condition.conditionValue.type == FWP_EMPTY) {
    return No;
  }
  const bool same = SidText(reinterpret_cast<const UINT8*>(condition.conditionValue.sid)) == person.package;
  return Answer(same == (condition.matchType == FWP_MATCH_EQUAL));
}

}  // namespace

const NaivePerson& PersonOf(std::size_t index) {
  static const std::vector<NaivePerson> kPeople = People();
  return kPeople.at(index);
}

Policy::Circumstances NaiveCircumstances::ToCircumstances() const {
  Policy::Circumstances all;
  all.token = person->token;
  all.profile = profile;
  all.tunnelType = tunnelType;
  all.compartment = compartment;
  all.quarantine = epoch ? Policy::Circumstances::Quarantine::Epoch : Policy::Circumstances::Quarantine::Over;
  all.epoch = epoch.value_or(0);
  all.systemPort = systemPort;
  all.mayUseIpsec = false;
  all.reauthorizeReason = reauthorizeReason;
  return all;
}

std::optional<Matching> Ask(const std::string& field, const FWPM_FILTER_CONDITION0& condition,
                            const Policy::Connection& connection, const NaiveCircumstances& circumstances) {
  const bool isOutbound = connection.direction == Direction::Outbound;
  if (field == "ALE_USER_ID" || field == "ALE_PACKAGE_FAMILY_NAME") {
    return AskWho(condition, *circumstances.person);
  }
  if (field == "ALE_PACKAGE_ID") {
    return AskPackage(condition, *circumstances.person);
  }
  if (field == "ALE_REMOTE_USER_ID") {
    return CompareUnset(condition);
  }
  if (field == "ORIGINAL_PROFILE_ID" || field == "CURRENT_PROFILE_ID") {
    return CompareKnown(circumstances.profile, condition);
  }
  if (field == "TUNNEL_TYPE") {
    return Compare(circumstances.tunnelType, condition);
  }
  if (field == "ARRIVAL_TUNNEL_TYPE") {
    return isOutbound ? CompareUnset(condition) : Compare(circumstances.tunnelType, condition);
  }
  if (field == "NEXTHOP_TUNNEL_TYPE") {
    return isOutbound ? Compare(circumstances.tunnelType, condition) : CompareUnset(condition);
  }
  if (field == "COMPARTMENT_ID") {
    return Compare(circumstances.compartment, condition);
  }
  if (field == "INTERFACE_QUARANTINE_EPOCH") {
    return circumstances.epoch ? Compare(*circumstances.epoch, condition) : Yes;
  }
  if (field == "ALE_SIO_FIREWALL_SYSTEM_PORT") {
    return Compare(circumstances.systemPort, condition);
  }
  if (field == "REAUTHORIZE_REASON") {
    return circumstances.reauthorizeReason == 0 ? CompareUnset(condition)
                                                : Compare(circumstances.reauthorizeReason, condition);
  }
  return std::nullopt;
}
