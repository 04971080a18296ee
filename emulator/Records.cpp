#include "emulator/Records.h"

namespace EngineEmulator {
namespace {

FWPM_DISPLAY_DATA0 PackDisplayData(Packer& packer, FWPM_DISPLAY_DATA0 data) {
  return {PackString(packer, data.name), PackString(packer, data.description)};
}

FWP_BYTE_BLOB* PackBlob(Packer& packer, const FWP_BYTE_BLOB* blob) {
  return blob == nullptr ? nullptr : PackRecord(packer, *blob);
}

SID_AND_ATTRIBUTES* PackSids(Packer& packer, const SID_AND_ATTRIBUTES* sids, ULONG count) {
  std::vector<SID_AND_ATTRIBUTES> packed(sids, sids + count);
  for (SID_AND_ATTRIBUTES& entry : packed) {
    entry.Sid = PackSid(packer, entry.Sid);
  }
  return packer.Copy(packed.data(), packed.size());
}

FWP_TOKEN_INFORMATION* PackToken(Packer& packer, const FWP_TOKEN_INFORMATION* token) {
  if (token == nullptr) {
    return nullptr;
  }
  FWP_TOKEN_INFORMATION packed = *token;
  packed.sids = PackSids(packer, token->sids, token->sidCount);
  packed.restrictedSids = PackSids(packer, token->restrictedSids, token->restrictedSidCount);
  return packer.Copy(&packed);
}

/// The types that plain values and condition values have in common.
template <class Value>
Value PackSingleValue(Packer& packer, Value value) {
  switch (value.type) {
    case FWP_UINT64:
      value.uint64 = packer.Copy(value.uint64);
      break;
    case FWP_INT64:
      value.int64 = packer.Copy(value.int64);
      break;
    case FWP_DOUBLE:
      value.double64 = packer.Copy(value.double64);
      break;
    case FWP_BYTE_ARRAY16_TYPE:
      value.byteArray16 = packer.Copy(value.byteArray16);
      break;
    case FWP_BYTE_ARRAY6_TYPE:
      value.byteArray6 = packer.Copy(value.byteArray6);
      break;
    case FWP_BYTE_BLOB_TYPE:
      value.byteBlob = PackBlob(packer, value.byteBlob);
      break;
    case FWP_SECURITY_DESCRIPTOR_TYPE:
      value.sd = PackBlob(packer, value.sd);
      break;
    case FWP_TOKEN_ACCESS_INFORMATION_TYPE:
      value.tokenAccessInformation = PackBlob(packer, value.tokenAccessInformation);
      break;
    case FWP_TOKEN_INFORMATION_TYPE:
      value.tokenInformation = PackToken(packer, value.tokenInformation);
      break;
    case FWP_SID:
      value.sid = PackSid(packer, value.sid);
      break;
    case FWP_UNICODE_STRING_TYPE:
      value.unicodeString = PackString(packer, value.unicodeString);
      break;
    default:
      break;
  }
  return value;
}

FWP_RANGE0* PackRange(Packer& packer, const FWP_RANGE0* range) {
  if (range == nullptr) {
    return nullptr;
  }
  const FWP_RANGE0 packed{PackSingleValue(packer, range->valueLow),
                          PackSingleValue(packer, range->valueHigh)};
  return packer.Copy(&packed);
}

FWP_CONDITION_VALUE0 PackConditionValue(Packer& packer, FWP_CONDITION_VALUE0 value) {
  switch (value.type) {
    case FWP_V4_ADDR_MASK:
      value.v4AddrMask = packer.Copy(value.v4AddrMask);
      return value;
    case FWP_V6_ADDR_MASK:
      value.v6AddrMask = packer.Copy(value.v6AddrMask);
      return value;
    case FWP_RANGE_TYPE:
      value.rangeValue = PackRange(packer, value.rangeValue);
      return value;
    default:
      return PackSingleValue(packer, value);
  }
}

FWPM_FILTER_CONDITION0* PackConditions(Packer& packer, const FWPM_FILTER_CONDITION0* conditions,
                                       UINT32 count) {
  if (conditions == nullptr) {
    return nullptr;
  }
  std::vector<FWPM_FILTER_CONDITION0> packed(conditions, conditions + count);
  for (FWPM_FILTER_CONDITION0& condition : packed) {
    condition.conditionValue = PackConditionValue(packer, condition.conditionValue);
  }
  return packer.Copy(packed.data(), packed.size());
}

FWPM_PROVIDER_ENUM_TEMPLATE0 Pack(Packer&, FWPM_PROVIDER_ENUM_TEMPLATE0 criteria) { return criteria; }

FWPM_SUBLAYER_ENUM_TEMPLATE0 Pack(Packer& packer, FWPM_SUBLAYER_ENUM_TEMPLATE0 criteria) {
  criteria.providerKey = packer.Copy(criteria.providerKey);
  return criteria;
}

FWPM_CALLOUT_ENUM_TEMPLATE0 Pack(Packer& packer, FWPM_CALLOUT_ENUM_TEMPLATE0 criteria) {
  criteria.providerKey = packer.Copy(criteria.providerKey);
  return criteria;
}

FWPM_PROVIDER_CONTEXT_ENUM_TEMPLATE0 Pack(Packer& packer, FWPM_PROVIDER_CONTEXT_ENUM_TEMPLATE0 criteria) {
  criteria.providerKey = packer.Copy(criteria.providerKey);
  return criteria;
}

FWPM_FILTER_ENUM_TEMPLATE0 Pack(Packer& packer, FWPM_FILTER_ENUM_TEMPLATE0 criteria) {
  criteria.providerKey = packer.Copy(criteria.providerKey);
  criteria.providerContextTemplate = nullptr;
  criteria.filterCondition = PackConditions(packer, criteria.filterCondition, criteria.numFilterConditions);
  criteria.calloutKey = packer.Copy(criteria.calloutKey);
  return criteria;
}

FWPM_NET_EVENT_ENUM_TEMPLATE0 Pack(Packer& packer, FWPM_NET_EVENT_ENUM_TEMPLATE0 criteria) {
  criteria.filterCondition = PackConditions(packer, criteria.filterCondition, criteria.numFilterConditions);
  return criteria;
}

template <class Subscription>
Subscription PackSubscription(Packer& packer, Subscription subscription) {
  if (subscription.enumTemplate != nullptr) {
    const auto criteria = Pack(packer, *subscription.enumTemplate);
    subscription.enumTemplate = packer.Copy(&criteria);
  }
  return subscription;
}

}  // namespace

void* Packer::CopyBytes(const void* source, std::size_t size, std::size_t alignment) {
  size_ = (size_ + alignment - 1) / alignment * alignment;
  std::byte* const target = block_ == nullptr ? nullptr : block_ + size_;
  size_ += size;
  return target == nullptr ? nullptr : std::memcpy(target, source, size);
}

/// A SID is longer than its declaration: the sub-authorities follow each other.
SID* PackSid(Packer& packer, const void* sid) {
  if (sid == nullptr) {
    return nullptr;
  }
  const auto* bytes = static_cast<const UINT8*>(sid);
  const std::size_t count = static_cast<const SID*>(sid)->SubAuthorityCount;
  return reinterpret_cast<SID*>(packer.Copy(bytes, offsetof(SID, SubAuthority) + count * sizeof(DWORD)));
}

FWP_BYTE_BLOB Pack(Packer& packer, FWP_BYTE_BLOB blob) {
  blob.data = packer.Copy(blob.data, blob.size);
  return blob;
}

FWPM_PROVIDER0 Pack(Packer& packer, FWPM_PROVIDER0 provider) {
  provider.displayData = PackDisplayData(packer, provider.displayData);
  provider.providerData = Pack(packer, provider.providerData);
  provider.serviceName = PackString(packer, provider.serviceName);
  return provider;
}

FWPM_SUBLAYER0 Pack(Packer& packer, FWPM_SUBLAYER0 sublayer) {
  sublayer.displayData = PackDisplayData(packer, sublayer.displayData);
  sublayer.providerKey = packer.Copy(sublayer.providerKey);
  sublayer.providerData = Pack(packer, sublayer.providerData);
  return sublayer;
}

FWPM_FILTER0 Pack(Packer& packer, FWPM_FILTER0 filter) {
  filter.displayData = PackDisplayData(packer, filter.displayData);
  filter.providerKey = packer.Copy(filter.providerKey);
  filter.providerData = Pack(packer, filter.providerData);
  filter.weight = PackSingleValue(packer, filter.weight);
  filter.filterCondition = PackConditions(packer, filter.filterCondition, filter.numFilterConditions);
  filter.effectiveWeight = PackSingleValue(packer, filter.effectiveWeight);
  return filter;
}

FWPM_CALLOUT0 Pack(Packer& packer, FWPM_CALLOUT0 callout) {
  callout.displayData = PackDisplayData(packer, callout.displayData);
  callout.providerKey = packer.Copy(callout.providerKey);
  callout.providerData = Pack(packer, callout.providerData);
  return callout;
}

FWPM_PROVIDER_CONTEXT0 Pack(Packer& packer, FWPM_PROVIDER_CONTEXT0 context) {
  context.displayData = PackDisplayData(packer, context.displayData);
  context.providerKey = packer.Copy(context.providerKey);
  context.providerData = Pack(packer, context.providerData);
  context.dataBuffer = context.type == FWPM_GENERAL_CONTEXT ? PackBlob(packer, context.dataBuffer) : nullptr;
  return context;
}

FWPM_LAYER0 Pack(Packer& packer, FWPM_LAYER0 layer) {
  layer.displayData = PackDisplayData(packer, layer.displayData);
  std::vector<FWPM_FIELD0> fields(layer.field, layer.field + layer.numFields);
  for (FWPM_FIELD0& field : fields) {
    field.fieldKey = packer.Copy(field.fieldKey);
  }
  layer.field = packer.Copy(fields.data(), fields.size());
  return layer;
}

FWPM_SESSION0 Pack(Packer& packer, FWPM_SESSION0 session) {
  session.displayData = PackDisplayData(packer, session.displayData);
  session.sid = PackSid(packer, session.sid);
  session.username = PackString(packer, session.username);
  return session;
}

FWPM_PROVIDER_SUBSCRIPTION0 Pack(Packer& packer, FWPM_PROVIDER_SUBSCRIPTION0 subscription) {
  return PackSubscription(packer, subscription);
}

FWPM_SUBLAYER_SUBSCRIPTION0 Pack(Packer& packer, FWPM_SUBLAYER_SUBSCRIPTION0 subscription) {
  return PackSubscription(packer, subscription);
}

FWPM_CALLOUT_SUBSCRIPTION0 Pack(Packer& packer, FWPM_CALLOUT_SUBSCRIPTION0 subscription) {
  return PackSubscription(packer, subscription);
}

FWPM_PROVIDER_CONTEXT_SUBSCRIPTION0 Pack(Packer& packer, FWPM_PROVIDER_CONTEXT_SUBSCRIPTION0 subscription) {
  return PackSubscription(packer, subscription);
}

FWPM_FILTER_SUBSCRIPTION0 Pack(Packer& packer, FWPM_FILTER_SUBSCRIPTION0 subscription) {
  return PackSubscription(packer, subscription);
}

FWPM_NET_EVENT_SUBSCRIPTION0 Pack(Packer& packer, FWPM_NET_EVENT_SUBSCRIPTION0 subscription) {
  return PackSubscription(packer, subscription);
}

FWP_VALUE0 Pack(Packer& packer, FWP_VALUE0 value) { return PackSingleValue(packer, value); }

}  // namespace EngineEmulator
