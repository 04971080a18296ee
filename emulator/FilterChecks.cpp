#include "catalog/Layers.h"
#include "emulator/Checks.h"

namespace EngineEmulator {
namespace {

using Catalog::operator""_guid;

/// The sublayer for callouts that only look.
constexpr GUID kInspectionSublayer = "877519e1-e6a9-41a5-81b4-8c4f118e4a60"_guid;

constexpr UINT32 kFlagsOfClients =
    FWPM_FILTER_FLAG_PERSISTENT | FWPM_FILTER_FLAG_BOOTTIME | FWPM_FILTER_FLAG_HAS_PROVIDER_CONTEXT |
    FWPM_FILTER_FLAG_CLEAR_ACTION_RIGHT | FWPM_FILTER_FLAG_PERMIT_IF_CALLOUT_UNREGISTERED;

/// MinGW-w64's enumeration lacks PREFIX and NOT_PREFIX, the last ones.
constexpr int kMatchTypes = 13;

DWORD Fault(HRESULT code) { return static_cast<DWORD>(code); }

bool NamesCallout(const FWPM_ACTION0& action) { return (action.type & FWP_ACTION_FLAG_CALLOUT) != 0; }

bool IsInline(FWP_DATA_TYPE type) {
  switch (type) {
    case FWP_EMPTY:
    case FWP_UINT8:
    case FWP_UINT16:
    case FWP_UINT32:
    case FWP_INT8:
    case FWP_INT16:
    case FWP_INT32:
    case FWP_FLOAT:
      return true;
    default:
      return false;
  }
}

bool IsKnown(FWP_DATA_TYPE type) {
  return (type >= FWP_EMPTY && type <= FWP_BYTE_ARRAY6_TYPE) ||
         (type >= FWP_V4_ADDR_MASK && type <= FWP_RANGE_TYPE);
}

DWORD CheckToken(const FWP_TOKEN_INFORMATION& token) {
  const bool complete = (token.sidCount == 0 || token.sids != nullptr) &&
                        (token.restrictedSidCount == 0 || token.restrictedSids != nullptr);
  return complete ? ERROR_SUCCESS : Fault(FWP_E_NULL_POINTER);
}

/// That the data which the type promises are there.
template <class Value>
DWORD CheckData(const Value& value) {
  if (!IsKnown(value.type)) {
    return Fault(FWP_E_INVALID_ENUMERATOR);
  }
  if (IsInline(value.type)) {
    return ERROR_SUCCESS;
  }
  if (value.byteBlob == nullptr) {
    return Fault(FWP_E_NULL_POINTER);
  }
  switch (value.type) {
    case FWP_BYTE_BLOB_TYPE:
    case FWP_SECURITY_DESCRIPTOR_TYPE:
    case FWP_TOKEN_ACCESS_INFORMATION_TYPE:
      return CheckBlob(*value.byteBlob);
    case FWP_TOKEN_INFORMATION_TYPE:
      return CheckToken(*value.tokenInformation);
    default:
      return ERROR_SUCCESS;
  }
}

DWORD CheckRange(const FWP_RANGE0& range) {
  if (range.valueLow.type != range.valueHigh.type || range.valueLow.type > FWP_SINGLE_DATA_TYPE_MAX) {
    return Fault(FWP_E_INVALID_RANGE);
  }
  return FirstFault(CheckData(range.valueLow), CheckData(range.valueHigh));
}

DWORD CheckCondition(const FWPM_FILTER_CONDITION0& condition) {
  if (condition.matchType < 0 || condition.matchType >= kMatchTypes) {
    return Fault(FWP_E_INVALID_ENUMERATOR);
  }
  const DWORD fault = CheckData(condition.conditionValue);
  if (fault != ERROR_SUCCESS || condition.conditionValue.type != FWP_RANGE_TYPE) {
    return fault;
  }
  return CheckRange(*condition.conditionValue.rangeValue);
}

DWORD CheckConditions(const FWPM_FILTER0& filter) {
  for (UINT32 index = 0; index < filter.numFilterConditions; ++index) {
    if (const DWORD fault = CheckCondition(filter.filterCondition[index]); fault != ERROR_SUCCESS) {
      return fault;
    }
  }
  return ERROR_SUCCESS;
}

DWORD CheckPointers(const FWPM_FILTER0& filter) {
  if (filter.numFilterConditions != 0 && filter.filterCondition == nullptr) {
    return Fault(FWP_E_NULL_POINTER);
  }
  if (filter.reserved != nullptr) {
    return Fault(FWP_E_RESERVED);
  }
  return CheckBlob(filter.providerData);
}

DWORD CheckFlags(const FWPM_FILTER0& filter) {
  constexpr UINT32 kNeverBoth = FWPM_FILTER_FLAG_PERSISTENT | FWPM_FILTER_FLAG_BOOTTIME;
  const bool forCallouts = (filter.flags & FWPM_FILTER_FLAG_PERMIT_IF_CALLOUT_UNREGISTERED) != 0;
  const bool canBeMissing = filter.action.type == FWP_ACTION_CALLOUT_TERMINATING ||
                            filter.action.type == FWP_ACTION_CALLOUT_UNKNOWN;
  if ((filter.flags & ~kFlagsOfClients) != 0 || (filter.flags & kNeverBoth) == kNeverBoth ||
      (forCallouts && !canBeMissing)) {
    return Fault(FWP_E_INVALID_FLAGS);
  }
  return ERROR_SUCCESS;
}

DWORD CheckAction(const FWPM_ACTION0& action) {
  switch (action.type) {
    case FWP_ACTION_BLOCK:
    case FWP_ACTION_PERMIT:
    case FWP_ACTION_CALLOUT_TERMINATING:
    case FWP_ACTION_CALLOUT_INSPECTION:
    case FWP_ACTION_CALLOUT_UNKNOWN:
      return ERROR_SUCCESS;
    default:
      return Fault(FWP_E_INVALID_ACTION_TYPE);
  }
}

DWORD CheckLayer(const GUID& layerKey) {
  return Catalog::FindLayer(layerKey) != nullptr ? ERROR_SUCCESS : Fault(FWP_E_LAYER_NOT_FOUND);
}

bool SameProvider(const GUID* one, const GUID* other) {
  return one == nullptr || other == nullptr ? one == other : *one == *other;
}

DWORD CheckSublayer(const FWPM_FILTER0& filter, const Policy& policy, const Origin& origin) {
  const auto sublayer = policy.Objects<FWPM_SUBLAYER0>().Find(filter.subLayerKey);
  if (sublayer == nullptr) {
    return Fault(FWP_E_SUBLAYER_NOT_FOUND);
  }
  if (filter.subLayerKey == kInspectionSublayer && !NamesCallout(filter.action)) {
    return Fault(FWP_E_ACTION_INCOMPATIBLE_WITH_SUBLAYER);
  }
  const bool ofAnotherProvider = origin.lifetime == Lifetime::Persistent &&
                                 sublayer->origin.lifetime == Lifetime::Persistent &&
                                 !SameProvider(filter.providerKey, sublayer->Record().providerKey);
  return MayRefer(origin, sublayer->origin) && !ofAnotherProvider ? ERROR_SUCCESS
                                                                  : Fault(FWP_E_LIFETIME_MISMATCH);
}

/// There are no callouts and no provider contexts in this engine.
DWORD CheckAbsentKinds(const FWPM_FILTER0& filter) {
  if (NamesCallout(filter.action)) {
    return Fault(FWP_E_CALLOUT_NOT_FOUND);
  }
  return (filter.flags & FWPM_FILTER_FLAG_HAS_PROVIDER_CONTEXT) == 0
             ? ERROR_SUCCESS
             : Fault(FWP_E_PROVIDER_CONTEXT_NOT_FOUND);
}

DWORD CheckWeight(const FWP_VALUE0& weight) {
  switch (weight.type) {
    case FWP_EMPTY:
      return ERROR_SUCCESS;
    case FWP_UINT8:
      return weight.uint8 <= FWPM_WEIGHT_RANGE_MAX ? ERROR_SUCCESS : Fault(FWP_E_INVALID_WEIGHT);
    case FWP_UINT64:
      return weight.uint64 != nullptr ? ERROR_SUCCESS : Fault(FWP_E_NULL_POINTER);
    default:
      return Fault(FWP_E_INVALID_WEIGHT);
  }
}

}  // namespace

DWORD Check(const FWPM_FILTER0& filter, const Policy& policy, const Origin& origin) {
  if (const DWORD fault = CheckPointers(filter); fault != ERROR_SUCCESS) {
    return fault;
  }
  return FirstFault(CheckFlags(filter), CheckAction(filter.action), CheckDisplayData(filter.displayData),
                    CheckLayer(filter.layerKey), CheckSublayer(filter, policy, origin),
                    CheckProviderReference(filter.providerKey, policy, origin), CheckAbsentKinds(filter),
                    CheckWeight(filter.weight), CheckConditions(filter));
}

}  // namespace EngineEmulator
