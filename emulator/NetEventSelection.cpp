#include "emulator/NetEventSelection.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>
#include <vector>

#include "catalog/Keys.h"
#include "catalog/Names.h"
#include "emulator/Checks.h"
#include "emulator/ConditionSets.h"

namespace EngineEmulator {
namespace {

using Catalog::operator""_guid;

constexpr GUID kUserIdFieldKey = "af043a0a-b34d-4f86-979c-c90371af6e66"_guid;
constexpr GUID kNetEventTypeFieldKey = "206e9996-490e-40cf-b831-b38641eb6fcb"_guid;

/// A field that templates can test, and the types of values that it is compared with.
struct EventField {
  GUID key;
  std::string_view name;
  std::array<FWP_DATA_TYPE, 2> types;     ///< a range is of these
  std::array<FWP_DATA_TYPE, 2> networks;  ///< EMPTY for none
};

constexpr EventField OfType(const GUID& key, std::string_view name, FWP_DATA_TYPE type) {
  return {key, name, {type, type}, {FWP_EMPTY, FWP_EMPTY}};
}

constexpr EventField OfAddress(const GUID& key, std::string_view name) {
  return {key, name, {FWP_UINT32, FWP_BYTE_ARRAY16_TYPE}, {FWP_V4_ADDR_MASK, FWP_V6_ADDR_MASK}};
}

constexpr EventField kEventFields[]{
    OfType(Catalog::kIpProtocolFieldKey, "IP_PROTOCOL", FWP_UINT8),
    OfAddress(Catalog::kIpLocalAddressFieldKey, "IP_LOCAL_ADDRESS"),
    OfAddress(Catalog::kIpRemoteAddressFieldKey, "IP_REMOTE_ADDRESS"),
    OfType(Catalog::kIpLocalPortFieldKey, "IP_LOCAL_PORT", FWP_UINT16),
    OfType(Catalog::kIpRemotePortFieldKey, "IP_REMOTE_PORT", FWP_UINT16),
    OfType(Catalog::kAleAppIdFieldKey, "ALE_APP_ID", FWP_BYTE_BLOB_TYPE),
    OfType(kUserIdFieldKey, "ALE_USER_ID", FWP_SID),
    OfType(kNetEventTypeFieldKey, "NET_EVENT_TYPE", FWP_UINT32),
};

UINT64 TimeOf(const FILETIME& time) { return UINT64{time.dwHighDateTime} << 32 | time.dwLowDateTime; }

UINT64 EndOf(const FWPM_NET_EVENT_ENUM_TEMPLATE0& criteria, bool mayLackEnd) {
  const UINT64 end = TimeOf(criteria.endTime);
  return end == 0 && mayLackEnd ? ~UINT64{0} : end;
}

Refusal CheckEventCondition(const FWPM_FILTER_CONDITION0& condition, const Switches& switches) {
  if (Refusal refusal = CheckSoundness(condition, switches)) {
    return refusal;
  }
  const auto* field = std::ranges::find(kEventFields, condition.fieldKey, &EventField::key);
  if (field == std::end(kEventFields)) {
    return {FWP_E_CONDITION_NOT_FOUND,
            Catalog::FieldName(condition.fieldKey) + " is not a field of net events"};
  }
  const FWP_CONDITION_VALUE0& value = condition.conditionValue;
  const bool isRange = value.type == FWP_RANGE_TYPE;
  const FWP_DATA_TYPE type = isRange ? value.rangeValue->valueLow.type : value.type;
  const bool isNetwork = !isRange && type != FWP_EMPTY && std::ranges::count(field->networks, type) != 0;
  if (!isNetwork && std::ranges::count(field->types, type) == 0) {
    return {FWP_E_TYPE_MISMATCH,
            std::string(field->name) + " of net events is not of type " + Catalog::DataTypeName(type)};
  }
  const bool isOpaque = type == FWP_BYTE_BLOB_TYPE || type == FWP_SID;
  const bool testsFlags =
      condition.matchType >= FWP_MATCH_FLAGS_ALL_SET && condition.matchType <= FWP_MATCH_FLAGS_NONE_SET;
  if (testsFlags || (isOpaque && condition.matchType != FWP_MATCH_EQUAL)) {
    return {FWP_E_MATCH_TYPE_MISMATCH,
            Catalog::MatchName(condition.matchType) + " does not go with " + std::string(field->name)};
  }
  return CheckMatch(condition, field->name, switches);
}

/// Gives the fields of an event as conditions that they alone meet, to compare them with a template's.
class EventValues {
 public:
  explicit EventValues(const FWPM_NET_EVENT3& event) : appId_(event.header.appId) {
    const FWPM_NET_EVENT_HEADER3& header = event.header;
    Add(kNetEventTypeFieldKey, FWP_UINT32).uint32 = event.type;
    if ((header.flags & FWPM_NET_EVENT_FLAG_IP_PROTOCOL_SET) != 0) {
      Add(Catalog::kIpProtocolFieldKey, FWP_UINT8).uint8 = header.ipProtocol;
    }
    if ((header.flags & FWPM_NET_EVENT_FLAG_LOCAL_PORT_SET) != 0) {
      Add(Catalog::kIpLocalPortFieldKey, FWP_UINT16).uint16 = header.localPort;
    }
    if ((header.flags & FWPM_NET_EVENT_FLAG_REMOTE_PORT_SET) != 0) {
      Add(Catalog::kIpRemotePortFieldKey, FWP_UINT16).uint16 = header.remotePort;
    }
    if ((header.flags & FWPM_NET_EVENT_FLAG_APP_ID_SET) != 0) {
      Add(Catalog::kAleAppIdFieldKey, FWP_BYTE_BLOB_TYPE).byteBlob = &appId_;
    }
    if ((header.flags & FWPM_NET_EVENT_FLAG_USER_ID_SET) != 0) {
      Add(kUserIdFieldKey, FWP_SID).sid = header.userId;
    }
    if ((header.flags & FWPM_NET_EVENT_FLAG_IP_VERSION_SET) != 0) {
      AddAddresses(header);
    }
  }

  [[nodiscard]] Conditions All() const { return conditions_; }

 private:
  FWP_CONDITION_VALUE0& Add(const GUID& field, FWP_DATA_TYPE type) {
    FWPM_FILTER_CONDITION0 condition{};
    condition.fieldKey = field;
    condition.matchType = FWP_MATCH_EQUAL;
    condition.conditionValue.type = type;
    return conditions_.emplace_back(condition).conditionValue;
  }

  void AddAddresses(const FWPM_NET_EVENT_HEADER3& header) {
    local_ = header.localAddrV6;
    remote_ = header.remoteAddrV6;
    const bool isV4 = header.ipVersion == FWP_IP_VERSION_V4;
    if ((header.flags & FWPM_NET_EVENT_FLAG_LOCAL_ADDR_SET) != 0) {
      AddAddress(Catalog::kIpLocalAddressFieldKey, isV4, header.localAddrV4, local_);
    }
    if ((header.flags & FWPM_NET_EVENT_FLAG_REMOTE_ADDR_SET) != 0) {
      AddAddress(Catalog::kIpRemoteAddressFieldKey, isV4, header.remoteAddrV4, remote_);
    }
  }

  void AddAddress(const GUID& field, bool isV4, UINT32 v4, FWP_BYTE_ARRAY16& v6) {
    if (isV4) {
      Add(field, FWP_UINT32).uint32 = v4;
    } else {
      Add(field, FWP_BYTE_ARRAY16_TYPE).byteArray16 = &v6;
    }
  }

  FWP_BYTE_BLOB appId_;
  FWP_BYTE_ARRAY16 local_{};
  FWP_BYTE_ARRAY16 remote_{};
  std::vector<FWPM_FILTER_CONDITION0> conditions_;
};

/// Whether a condition does not ask for an address of the other IP version than the event has.
bool IsOfVersion(const FWPM_FILTER_CONDITION0& condition, FWP_IP_VERSION version) {
  const FWP_CONDITION_VALUE0& value = condition.conditionValue;
  const bool isAddress = condition.fieldKey == Catalog::kIpLocalAddressFieldKey ||
                         condition.fieldKey == Catalog::kIpRemoteAddressFieldKey;
  const FWP_DATA_TYPE type = value.type == FWP_RANGE_TYPE ? value.rangeValue->valueLow.type : value.type;
  const bool isV6 = type == FWP_BYTE_ARRAY16_TYPE || type == FWP_V6_ADDR_MASK;
  return !isAddress || isV6 == (version != FWP_IP_VERSION_V4);
}

}  // namespace

UINT32 KeywordOf(const FWPM_NET_EVENT3& event) {
  switch (event.type) {
    case FWPM_NET_EVENT_TYPE_CLASSIFY_ALLOW:
      return FWPM_NET_EVENT_KEYWORD_CLASSIFY_ALLOW;
    case FWPM_NET_EVENT_TYPE_CAPABILITY_DROP:
      return FWPM_NET_EVENT_KEYWORD_CAPABILITY_DROP;
    case FWPM_NET_EVENT_TYPE_CAPABILITY_ALLOW:
      return FWPM_NET_EVENT_KEYWORD_CAPABILITY_ALLOW;
    default:
      break;
  }
  constexpr UINT32 kLocal = FWPM_NET_EVENT_FLAG_LOCAL_ADDR_SET | FWPM_NET_EVENT_FLAG_IP_VERSION_SET;
  const FWPM_NET_EVENT_HEADER3& header = event.header;
  if (event.classifyDrop->msFwpDirection != FWP_DIRECTION_IN || (header.flags & kLocal) != kLocal) {
    return 0;
  }
  if (header.ipVersion != FWP_IP_VERSION_V4) {
    constexpr UINT8 kMulticastV6 = 0xFF;
    return header.localAddrV6.byteArray16[0] == kMulticastV6 ? FWPM_NET_EVENT_KEYWORD_INBOUND_MCAST : 0;
  }
  constexpr UINT32 kBroadcast = 0xFFFFFFFF;
  constexpr UINT32 kMulticastPrefix = 0xE;
  if (header.localAddrV4 == kBroadcast) {
    return FWPM_NET_EVENT_KEYWORD_INBOUND_BCAST;
  }
  return header.localAddrV4 >> 28 == kMulticastPrefix ? FWPM_NET_EVENT_KEYWORD_INBOUND_MCAST : 0;
}

Refusal CheckTemplate(const FWPM_NET_EVENT_ENUM_TEMPLATE0* criteria, bool mayLackEnd,
                      const Switches& switches) {
  if (criteria == nullptr) {
    return {};
  }
  if (EndOf(*criteria, mayLackEnd) < TimeOf(criteria->startTime)) {
    return {FWP_E_INVALID_INTERVAL, "the template ends before its start"};
  }
  if (criteria->numFilterConditions != 0 && criteria->filterCondition == nullptr) {
    return {FWP_E_NULL_POINTER, "the template has a number of conditions but no array of them"};
  }
  if (criteria->numFilterConditions > kMostConditions) {
    return {FWP_E_INVALID_PARAMETER, "the template has too many conditions to be meant"};
  }
  std::vector<GUID> seen;
  for (const FWPM_FILTER_CONDITION0& condition :
       std::span(criteria->filterCondition, criteria->numFilterConditions)) {
    if (Refusal refusal = CheckEventCondition(condition, switches)) {
      return refusal;
    }
    if (std::ranges::count(seen, condition.fieldKey) != 0) {
      return {FWP_E_DUPLICATE_CONDITION,
              "the template tests " + Catalog::FieldName(condition.fieldKey) + " twice"};
    }
    seen.push_back(condition.fieldKey);
  }
  return {};
}

bool Selects(const FWPM_NET_EVENT_ENUM_TEMPLATE0* criteria, bool mayLackEnd, const FWPM_NET_EVENT3& event) {
  if (criteria == nullptr) {
    return true;
  }
  const UINT64 time = TimeOf(event.header.timeStamp);
  if (time < TimeOf(criteria->startTime) || time > EndOf(*criteria, mayLackEnd)) {
    return false;
  }
  const Conditions wanted(criteria->filterCondition, criteria->numFilterConditions);
  const auto isOfVersion = [&](const FWPM_FILTER_CONDITION0& condition) {
    return IsOfVersion(condition, event.header.ipVersion);
  };
  // The template is taken for a filter, and the event for the one thing that it is to match.
  return std::ranges::all_of(wanted, isOfVersion) && Contain(wanted, EventValues(event).All());
}

}  // namespace EngineEmulator
