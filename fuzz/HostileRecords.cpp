#include "fuzz/HostileRecords.h"

#include "catalog/Fields.h"
#include "catalog/Keys.h"
#include "catalog/Layers.h"

namespace Fuzz {
namespace {

constexpr GUID NumberedKey(UINT32 number) { return {number, 0, 0, {}}; }
constexpr GUID kKeys[]{NumberedKey(0),
                       NumberedKey(1),
                       NumberedKey(2),
                       NumberedKey(3),
                       Catalog::kUniversalSublayerKey,
                       Catalog::kInspectionSublayerKey};

/// Enough for the largest count that fits the byte in a SID, and for the largest size that fits the word in a
/// list.
constexpr std::size_t kSidRoom = 8 + 255 * sizeof(DWORD);
constexpr std::size_t kListRoom = 0x10000;
constexpr std::size_t kFurthestPart = 0x100;

constexpr FWP_DATA_TYPE kTypes[]{
    FWP_EMPTY,
    FWP_UINT8,
    FWP_UINT16,
    FWP_UINT32,
    FWP_UINT64,
    FWP_INT64,
    FWP_FLOAT,
    FWP_DOUBLE,
    FWP_BYTE_ARRAY16_TYPE,
    FWP_BYTE_BLOB_TYPE,
    FWP_SID,
    FWP_SECURITY_DESCRIPTOR_TYPE,
    FWP_TOKEN_INFORMATION_TYPE,
    FWP_TOKEN_ACCESS_INFORMATION_TYPE,
    FWP_UNICODE_STRING_TYPE,
    FWP_BYTE_ARRAY6_TYPE,
    FWP_V4_ADDR_MASK,
    FWP_V6_ADDR_MASK,
    FWP_RANGE_TYPE,
    static_cast<FWP_DATA_TYPE>(19),
    static_cast<FWP_DATA_TYPE>(-1),
};

}  // namespace

GUID HostileRecords::Key() { return input_.TakeOneOf(kKeys); }

GUID* HostileRecords::KeyPointer() { return input_.TakeFlag() ? Keep(Key()) : nullptr; }

GUID HostileRecords::LayerKey() {
  const auto layers = Catalog::AllLayers();
  const std::size_t index = input_.TakeIndex(layers.size() + 1);
  return index < layers.size() ? layers[index].key : Key();
}

wchar_t* HostileRecords::Text() {
  return input_.TakeFlag() ? Keep(std::wstring(input_.TakeWideText()))->data() : nullptr;
}

FWPM_DISPLAY_DATA0 HostileRecords::DisplayData() {
  wchar_t* const name = Text();
  return {name, Text()};
}

FWP_BYTE_BLOB HostileRecords::Blob() {
  const auto bytes = input_.TakeBytes(input_.TakeIndex(64));
  auto* kept = Keep(std::vector<UINT8>(bytes.begin(), bytes.end()));
  const UINT32 size = Count(kept->size());
  return {size, input_.TakeFlag() ? kept->data() : nullptr};
}

FWP_BYTE_BLOB* HostileRecords::BlobPointer() { return input_.TakeFlag() ? Keep(Blob()) : nullptr; }

SID* HostileRecords::Sid() {
  if (!input_.TakeFlag()) {
    return nullptr;
  }
  auto* room = Keep(std::vector<DWORD>(kSidRoom / sizeof(DWORD)));
  const auto head = input_.TakeBytes(sizeof(SID));
  std::memcpy(room->data(), head.data(), head.size());
  return reinterpret_cast<SID*>(room->data());
}

ACL* HostileRecords::AccessList() {
  if (!input_.TakeFlag()) {
    return nullptr;
  }
  auto* room = Keep(std::vector<DWORD>(kListRoom / sizeof(DWORD)));
  const auto head = input_.TakeBytes(sizeof(ACL) + sizeof(ACCESS_ALLOWED_ACE));
  std::memcpy(room->data(), head.data(), head.size());
  return reinterpret_cast<ACL*>(room->data());
}

PSECURITY_DESCRIPTOR HostileRecords::SecurityDescriptor() {
  if (!input_.TakeFlag()) {
    return nullptr;
  }
  auto* room = Keep(std::vector<DWORD>((kFurthestPart + kListRoom) / sizeof(DWORD)));
  auto header = input_.Take<SECURITY_DESCRIPTOR_RELATIVE>();
  header.Control |= SE_SELF_RELATIVE;
  for (DWORD* offset : {&header.Owner, &header.Group, &header.Sacl, &header.Dacl}) {
    *offset %= kFurthestPart;
  }
  std::memcpy(room->data(), &header, sizeof(header));
  const auto parts = input_.TakeBytes(sizeof(SID));
  std::memcpy(room->data() + sizeof(header) / sizeof(DWORD), parts.data(), parts.size());
  return room->data();
}

FWP_TOKEN_INFORMATION* HostileRecords::Token() {
  if (!input_.TakeFlag()) {
    return nullptr;
  }
  FWP_TOKEN_INFORMATION token{};
  auto* sids = Keep(std::vector<SID_AND_ATTRIBUTES>(input_.TakeIndex(4)));
  for (SID_AND_ATTRIBUTES& entry : *sids) {
    entry.Sid = Sid();
  }
  token.sidCount = Count(sids->size());
  token.sids = input_.TakeFlag() ? sids->data() : nullptr;
  token.restrictedSidCount = Count(0);
  return Keep(token);
}

template <class NativeValue>
void HostileRecords::FillData(NativeValue& value) {
  switch (value.type) {
    case FWP_UINT64:
      value.uint64 = PlainPointer<UINT64>();
      break;
    case FWP_INT64:
      value.int64 = PlainPointer<INT64>();
      break;
    case FWP_DOUBLE:
      value.double64 = PlainPointer<double>();
      break;
    case FWP_BYTE_ARRAY16_TYPE:
      value.byteArray16 = PlainPointer<FWP_BYTE_ARRAY16>();
      break;
    case FWP_BYTE_ARRAY6_TYPE:
      value.byteArray6 = PlainPointer<FWP_BYTE_ARRAY6>();
      break;
    case FWP_BYTE_BLOB_TYPE:
    case FWP_SECURITY_DESCRIPTOR_TYPE:
    case FWP_TOKEN_ACCESS_INFORMATION_TYPE:
      value.byteBlob = BlobPointer();
      break;
    case FWP_SID:
      value.sid = Sid();
      break;
    case FWP_TOKEN_INFORMATION_TYPE:
      value.tokenInformation = Token();
      break;
    case FWP_UNICODE_STRING_TYPE:
      value.unicodeString = Text();
      break;
    default:
      value.uint32 = input_.Take<UINT32>();
  }
}

FWP_VALUE0 HostileRecords::Value() {
  FWP_VALUE0 value{};
  value.type = input_.TakeOneOf(kTypes);
  FillData(value);
  return value;
}

FWP_CONDITION_VALUE0 HostileRecords::ConditionValue() {
  FWP_CONDITION_VALUE0 value{};
  value.type = input_.TakeOneOf(kTypes);
  switch (value.type) {
    case FWP_V4_ADDR_MASK:
      value.v4AddrMask = PlainPointer<FWP_V4_ADDR_AND_MASK>();
      break;
    case FWP_V6_ADDR_MASK:
      value.v6AddrMask = PlainPointer<FWP_V6_ADDR_AND_MASK>();
      break;
    case FWP_RANGE_TYPE:
      if (input_.TakeFlag()) {
        const FWP_VALUE0 low = Value();
        value.rangeValue = Keep(FWP_RANGE0{low, Value()});
      }
      break;
    default:
      FillData(value);
  }
  return value;
}

std::vector<FWPM_FILTER_CONDITION0>& HostileRecords::Conditions() {
  auto* conditions = Keep(std::vector<FWPM_FILTER_CONDITION0>(input_.TakeIndex(6)));
  for (FWPM_FILTER_CONDITION0& condition : *conditions) {
    const std::size_t field = input_.TakeIndex(Catalog::kFields.size() + 1);
    condition.fieldKey = field < Catalog::kFields.size() ? Catalog::kFields[field].key : Key();
    condition.matchType = static_cast<FWP_MATCH_TYPE>(input_.Take<INT8>());
    condition.conditionValue = ConditionValue();
  }
  return *conditions;
}

void HostileRecords::Fill(FWPM_SESSION0& session) {
  session.sessionKey = Key();
  session.displayData = DisplayData();
  session.flags = input_.Take<UINT8>();
  session.txnWaitTimeoutInMSec = input_.TakeFlag() ? 1 : 0;
  session.sid = Sid();
  session.username = Text();
  session.kernelMode = input_.TakeFlag();
}

void HostileRecords::Fill(FWPM_PROVIDER0& provider) {
  provider.providerKey = Key();
  provider.displayData = DisplayData();
  provider.flags = input_.Take<UINT8>();
  provider.providerData = Blob();
  provider.serviceName = Text();
}

void HostileRecords::Fill(FWPM_SUBLAYER0& sublayer) {
  sublayer.subLayerKey = Key();
  sublayer.displayData = DisplayData();
  sublayer.flags = input_.Take<UINT8>();
  sublayer.providerKey = KeyPointer();
  sublayer.providerData = Blob();
  sublayer.weight = input_.Take<UINT16>();
}

void HostileRecords::Fill(FWPM_CALLOUT0& callout) {
  callout.calloutKey = Key();
  callout.displayData = DisplayData();
  callout.flags = input_.Take<UINT32>();
  callout.providerKey = KeyPointer();
  callout.providerData = Blob();
  callout.applicableLayer = LayerKey();
}

void HostileRecords::Fill(FWPM_PROVIDER_CONTEXT0& context) {
  context.providerContextKey = Key();
  context.displayData = DisplayData();
  context.flags = input_.Take<UINT8>();
  context.providerKey = KeyPointer();
  context.providerData = Blob();
  context.type = static_cast<FWPM_PROVIDER_CONTEXT_TYPE>(input_.Take<INT8>());
  // The engine knows nothing of what other types point to.
  context.dataBuffer = context.type == FWPM_GENERAL_CONTEXT
                           ? BlobPointer()
                           : reinterpret_cast<FWP_BYTE_BLOB*>(std::uintptr_t{1});
}

void HostileRecords::Fill(FWPM_FILTER0& filter) {
  filter.filterKey = Key();
  filter.displayData = DisplayData();
  filter.flags = input_.Take<UINT8>();
  filter.providerKey = KeyPointer();
  filter.providerData = Blob();
  filter.layerKey = LayerKey();
  filter.subLayerKey = Key();
  filter.weight = Value();
  auto& conditions = Conditions();
  filter.numFilterConditions = Count(conditions.size());
  filter.filterCondition = input_.TakeFlag() ? conditions.data() : nullptr;
  filter.action.type = FWP_ACTION_BLOCK + (input_.TakeFlag() ? 0 : input_.Take<UINT16>());
  filter.action.calloutKey = Key();
  filter.providerContextKey = Key();
  filter.reserved = input_.TakeIndex(8) == 7 ? Keep(Key()) : nullptr;
}

void HostileRecords::Fill(FWPM_PROVIDER_ENUM_TEMPLATE0& criteria) {
  criteria.reserved = input_.Take<UINT64>();
}

void HostileRecords::Fill(FWPM_SUBLAYER_ENUM_TEMPLATE0& criteria) { criteria.providerKey = KeyPointer(); }

void HostileRecords::Fill(FWPM_CALLOUT_ENUM_TEMPLATE0& criteria) {
  criteria.providerKey = KeyPointer();
  criteria.layerKey = LayerKey();
}

void HostileRecords::Fill(FWPM_PROVIDER_CONTEXT_ENUM_TEMPLATE0& criteria) {
  criteria.providerKey = KeyPointer();
  criteria.providerContextType = static_cast<FWPM_PROVIDER_CONTEXT_TYPE>(input_.Take<INT8>());
}

void HostileRecords::Fill(FWPM_FILTER_ENUM_TEMPLATE0& criteria) {
  criteria.providerKey = KeyPointer();
  criteria.layerKey = LayerKey();
  criteria.enumType = static_cast<FWP_FILTER_ENUM_TYPE>(input_.TakeIndex(4));
  criteria.flags = input_.Take<UINT8>();
  auto& conditions = Conditions();
  criteria.numFilterConditions = Count(conditions.size());
  criteria.filterCondition = input_.TakeFlag() ? conditions.data() : nullptr;
  criteria.actionMask = input_.TakeFlag() ? 0xFFFFFFFF : input_.Take<UINT16>();
  criteria.calloutKey = KeyPointer();
}

void HostileRecords::Fill(FWPM_SESSION_ENUM_TEMPLATE0& criteria) {
  criteria.reserved = input_.Take<UINT64>();
}

void HostileRecords::Fill(FWPM_LAYER_ENUM_TEMPLATE0& criteria) { criteria.reserved = input_.Take<UINT64>(); }

void HostileRecords::Fill(FWPM_NET_EVENT_ENUM_TEMPLATE0& criteria) {
  auto& conditions = Conditions();
  criteria.startTime.dwLowDateTime = input_.Take<UINT8>();
  criteria.endTime.dwLowDateTime = input_.Take<UINT8>();
  criteria.numFilterConditions = Count(conditions.size());
  criteria.filterCondition = input_.TakeFlag() ? conditions.data() : nullptr;
}

void HostileRecords::Fill(FWPM_NET_EVENT3& event) {
  FWPM_NET_EVENT_HEADER3& header = event.header;
  header.timeStamp.dwLowDateTime = input_.Take<UINT8>();
  header.flags = input_.Take<UINT16>();
  header.ipVersion = static_cast<FWP_IP_VERSION>(input_.TakeIndex(4));
  header.ipProtocol = input_.Take<UINT8>();
  header.localAddrV6 = input_.Take<FWP_BYTE_ARRAY16>();
  header.remotePort = input_.Take<UINT16>();
  header.appId = Blob();
  header.userId = Sid();
  header.packageSid = Sid();
  header.enterpriseId = Text();
  header.effectiveName = Blob();
  // Smaller data of other types are read from the same memory.
  FWPM_NET_EVENT_CLASSIFY_DROP2 drop{};
  drop.filterId = input_.Take<UINT8>();
  drop.vSwitchId = Blob();
  event.type = static_cast<decltype(event.type)>(input_.TakeIndex(10));
  event.classifyDrop = input_.TakeFlag() ? Keep(drop) : nullptr;
}

void HostileRecords::Fill(FWPM_NET_EVENT_SUBSCRIPTION0& subscription) { FillSubscription(subscription); }
void HostileRecords::Fill(FWPM_PROVIDER_SUBSCRIPTION0& subscription) { FillSubscription(subscription); }
void HostileRecords::Fill(FWPM_SUBLAYER_SUBSCRIPTION0& subscription) { FillSubscription(subscription); }
void HostileRecords::Fill(FWPM_CALLOUT_SUBSCRIPTION0& subscription) { FillSubscription(subscription); }
void HostileRecords::Fill(FWPM_PROVIDER_CONTEXT_SUBSCRIPTION0& subscription) {
  FillSubscription(subscription);
}
void HostileRecords::Fill(FWPM_FILTER_SUBSCRIPTION0& subscription) { FillSubscription(subscription); }

}  // namespace Fuzz
