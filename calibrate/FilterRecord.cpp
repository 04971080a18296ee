#include "calibrate/FilterRecord.h"

#include <algorithm>
#include <array>
#include <limits>

#include "catalog/Keys.h"
#include "catalog/Layers.h"

namespace Calibrate {

using Catalog::operator""_guid;

const GUID kProviderKey = "5b1c8f0e-3c57-4a0b-9d4b-6f0d2a7e1c01"_guid;
const GUID kUpperKey = "5b1c8f0e-3c57-4a0b-9d4b-6f0d2a7e1c02"_guid;
const GUID kLowerKey = "5b1c8f0e-3c57-4a0b-9d4b-6f0d2a7e1c03"_guid;

namespace {

/// By place, IPv4 and IPv6.
constexpr std::array<std::array<GUID, 2>, 4> kLayers{{
    {Catalog::kAleAuthConnectV4LayerKey, Catalog::kAleAuthConnectV6LayerKey},
    {Catalog::kAleAuthRecvAcceptV4LayerKey, Catalog::kAleAuthRecvAcceptV6LayerKey},
    {Catalog::kAleFlowEstablishedV4LayerKey, Catalog::kAleFlowEstablishedV6LayerKey},
    {Catalog::kAleFlowEstablishedV4LayerKey, Catalog::kAleFlowEstablishedV6LayerKey},
}};

/// Filters of a given key differ in its last byte.
constexpr GUID kFirstFilterKey = "5b1c8f0e-3c57-4a0b-9d4b-6f0d2a7e1d00"_guid;

const GUID& LayerOf(Place place, Policy::IpVersion ipVersion) {
  return kLayers[static_cast<std::size_t>(place)][ipVersion == Policy::IpVersion::V4 ? 0 : 1];
}

bool Listens(Place place) { return place == Place::Accept || place == Place::FlowIn; }
bool IsFlow(Place place) { return place == Place::FlowIn || place == Place::FlowOut; }

constexpr UINT8 kIcmp = 1;
constexpr UINT32 kOwnV4 = 0x7f000001;
// Of a flow, as the engine tells them.
constexpr UINT32 kOutbound = 0;
constexpr UINT32 kInbound = 1;

FWP_CONDITION_VALUE0 Of(FWP_DATA_TYPE type) {
  FWP_CONDITION_VALUE0 value{};
  value.type = type;
  return value;
}

/// @param wide keeps what does not fit into the value itself.
template <class Value>
void SetNumber(Value& value, FWP_DATA_TYPE type, UINT64 number, std::deque<UINT64>& wide) {
  value.type = type;
  switch (type) {
    case FWP_UINT8:
      value.uint8 = static_cast<UINT8>(number);
      break;
    case FWP_UINT16:
      value.uint16 = static_cast<UINT16>(number);
      break;
    case FWP_UINT64:
      value.uint64 = &wide.emplace_back(number);
      break;
    default:
      value.uint32 = static_cast<UINT32>(number);
      break;
  }
}

FWP_DATA_TYPE TypeOf(const GUID& field) {
  const auto* found = std::ranges::find(Catalog::kFields, field, &Catalog::Field::key);
  return found == Catalog::kFields.end() ? FWP_UINT32 : found->dataType;
}

}  // namespace

FilterRecord::FilterRecord(const Rule& rule, const Target& target, const GUID& sublayer)
    : provider_(kProviderKey), weight_(rule.weight) {
  AddConditions(rule, target);
  static wchar_t name[] = L"Experiment of corvane-firewall calibrate";
  static wchar_t description[] = L"Concerns that program's own connections only, and ends with it";
  filter_.displayData = {name, description};
  filter_.filterKey = rule.key == 0 ? GUID{} : kFirstFilterKey;
  if (rule.key != 0) {
    filter_.filterKey.Data4[7] = rule.key;
  }
  filter_.flags = rule.isHard ? FWPM_FILTER_FLAG_CLEAR_ACTION_RIGHT : 0U;
  filter_.providerKey = &provider_;
  filter_.layerKey = LayerOf(rule.place, target.path.ipVersion);
  filter_.subLayerKey = sublayer;
  filter_.weight.type = FWP_UINT64;
  filter_.weight.uint64 = &weight_;
  filter_.numFilterConditions = static_cast<UINT32>(conditions_.size());
  filter_.filterCondition = conditions_.data();
  filter_.action.type = rule.action == Policy::Action::Block ? FWP_ACTION_BLOCK : FWP_ACTION_PERMIT;
}

void FilterRecord::AddConditions(const Rule& rule, const Target& target) {
  const std::size_t first = rule.areApart ? 1 : 0;
  for (const Extra& extra : rule.extras.first(first)) {
    Add(extra.field, extra.match, ValueOf(extra, target));
  }
  AddUsual(rule, target);
  for (const Extra& extra : rule.extras.subspan(first)) {
    Add(extra.field, extra.match, ValueOf(extra, target));
  }
}

void FilterRecord::AddUsual(const Rule& rule, const Target& target) {
  const auto isFree = [&rule](const GUID& field) {
    return std::ranges::none_of(rule.extras, [&field](const Extra& extra) { return extra.field == field; });
  };
  const std::string& application = target.application;
  Add(Catalog::kAleAppIdFieldKey, FWP_MATCH_EQUAL,
      Blob(FWP_BYTE_BLOB_TYPE, reinterpret_cast<const UINT8*>(application.data()), application.size()));
  Add(Listens(rule.place) ? Catalog::kIpLocalPortFieldKey : Catalog::kIpRemotePortFieldKey, FWP_MATCH_EQUAL,
      Number(FWP_UINT16, target.port));
  if (isFree(Catalog::kIpProtocolFieldKey)) {
    Add(Catalog::kIpProtocolFieldKey, FWP_MATCH_EQUAL, Number(FWP_UINT8, target.path.protocol));
  }
  if (IsFlow(rule.place)) {
    Add(Catalog::kDirectionFieldKey, FWP_MATCH_EQUAL,
        Number(FWP_UINT32, rule.place == Place::FlowIn ? kInbound : kOutbound));
  } else if (isFree(Catalog::kIpRemoteAddressFieldKey)) {
    Add(Catalog::kIpRemoteAddressFieldKey, FWP_MATCH_EQUAL, Address(target.path.ipVersion, 0));
  }
}

void FilterRecord::Add(const GUID& field, FWP_MATCH_TYPE match, FWP_CONDITION_VALUE0 value) {
  conditions_.push_back({field, match, value});
}

FWP_CONDITION_VALUE0 FilterRecord::ValueOf(const Extra& extra, const Target& target) {
  const bool isTcp = target.path.protocol == Policy::kTcp;
  switch (extra.operand) {
    case Operand::Number:
      return Number(TypeOf(extra.field), extra.number);
    case Operand::AnyNumber:
      return All(TypeOf(extra.field));
    case Operand::Nothing:
      return Of(FWP_EMPTY);
    case Operand::OwnAddress:
      return Address(target.path.ipVersion, 0);
    case Operand::OtherAddress:
      return Address(target.path.ipVersion, 1);
    case Operand::ThirdAddress:
      return Address(target.path.ipVersion, 2);
    case Operand::OwnProtocol:
      return Number(FWP_UINT8, target.path.protocol);
    case Operand::OtherProtocol:
      return Number(FWP_UINT8, isTcp ? Policy::kUdp : Policy::kTcp);
    case Operand::ThirdProtocol:
      return Number(FWP_UINT8, kIcmp);
    case Operand::Descriptor:
      break;
  }
  return Blob(FWP_SECURITY_DESCRIPTOR_TYPE, extra.descriptor.data(), extra.descriptor.size());
}

/// The one of this machine itself, or one so much after it.
FWP_CONDITION_VALUE0 FilterRecord::Address(Policy::IpVersion ipVersion, unsigned which) {
  if (ipVersion == Policy::IpVersion::V4) {
    return Number(FWP_UINT32, kOwnV4 + which);
  }
  FWP_BYTE_ARRAY16& address = addresses_.emplace_back();
  std::ranges::fill(address.byteArray16, UINT8{0});
  address.byteArray16[15] = static_cast<UINT8>(1 + which);
  FWP_CONDITION_VALUE0 value = Of(FWP_BYTE_ARRAY16_TYPE);
  value.byteArray16 = &address;
  return value;
}

FWP_CONDITION_VALUE0 FilterRecord::Number(FWP_DATA_TYPE type, UINT64 number) {
  FWP_CONDITION_VALUE0 value{};
  SetNumber(value, type, number, numbers_);
  return value;
}

FWP_CONDITION_VALUE0 FilterRecord::All(FWP_DATA_TYPE type) {
  FWP_RANGE0& range = ranges_.emplace_back();
  SetNumber(range.valueLow, type, 0, numbers_);
  SetNumber(range.valueHigh, type, std::numeric_limits<UINT64>::max(), numbers_);
  FWP_CONDITION_VALUE0 value = Of(FWP_RANGE_TYPE);
  value.rangeValue = &range;
  return value;
}

FWP_CONDITION_VALUE0 FilterRecord::Blob(FWP_DATA_TYPE type, const UINT8* data, std::size_t size) {
  // The engine only reads it.
  blobs_.push_back({static_cast<UINT32>(size), const_cast<UINT8*>(data)});
  FWP_CONDITION_VALUE0 value = Of(type);
  value.byteBlob = &blobs_.back();
  return value;
}

}  // namespace Calibrate
