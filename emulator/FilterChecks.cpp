#include <set>

#include "catalog/Describe.h"
#include "catalog/Flags.h"
#include "catalog/Keys.h"
#include "catalog/Names.h"
#include "emulator/Checks.h"

namespace EngineEmulator {
namespace {

constexpr UINT32 kKnownFlags = Catalog::NamedBits(Catalog::kFilterFlags);

bool NamesCallout(const FWPM_ACTION0& action) { return (action.type & FWP_ACTION_FLAG_CALLOUT) != 0; }

Refusal CheckPointers(const FWPM_FILTER0& filter, const CheckContext& context) {
  if (filter.numFilterConditions != 0 && filter.filterCondition == nullptr) {
    return {FWP_E_NULL_POINTER, "there is a number of conditions but no array of them"};
  }
  if (filter.numFilterConditions > kMostConditions) {
    return {FWP_E_INVALID_PARAMETER,
            std::to_string(filter.numFilterConditions) + " conditions are too many to be meant"};
  }
  if (filter.reserved != nullptr && context.switches.refuseReservedPointer != 0) {
    return {FWP_E_RESERVED, "the reserved pointer is not null"};
  }
  return CheckBlob(filter.providerData);
}

Refusal CheckFlags(const FWPM_FILTER0& filter, const CheckContext& context) {
  constexpr UINT32 kNeverBoth = FWPM_FILTER_FLAG_PERSISTENT | FWPM_FILTER_FLAG_BOOTTIME;
  const bool forCallouts = (filter.flags & FWPM_FILTER_FLAG_PERMIT_IF_CALLOUT_UNREGISTERED) != 0;
  const bool canBeMissing = filter.action.type == FWP_ACTION_CALLOUT_TERMINATING ||
                            filter.action.type == FWP_ACTION_CALLOUT_UNKNOWN;
  if ((filter.flags & FWPM_FILTER_FLAG_DISABLED) != 0 && context.switches.keepAsGiven == 0) {
    return {FWP_E_INVALID_FLAGS, "DISABLED is for the engine to set"};
  }
  if ((filter.flags & ~kKnownFlags) != 0 && context.switches.RefusesUnknownFlags()) {
    return {FWP_E_INVALID_FLAGS,
            "there are flags without a meaning: " + Catalog::FilterFlagNames(filter.flags & ~kKnownFlags)};
  }
  if ((filter.flags & kNeverBoth) == kNeverBoth) {
    return {FWP_E_INVALID_FLAGS, "PERSISTENT and BOOTTIME exclude each other"};
  }
  return forCallouts && !canBeMissing
             ? Refusal(FWP_E_INVALID_FLAGS, "PERMIT_IF_CALLOUT_UNREGISTERED does not go with " +
                                                Catalog::ActionName(filter.action.type))
             : Refusal();
}

Refusal CheckAction(const FWPM_FILTER0& filter, const CheckContext&) {
  switch (filter.action.type) {
    case FWP_ACTION_BLOCK:
    case FWP_ACTION_PERMIT:
    case FWP_ACTION_CALLOUT_TERMINATING:
    case FWP_ACTION_CALLOUT_INSPECTION:
    case FWP_ACTION_CALLOUT_UNKNOWN:
      return {};
    default:
      return {FWP_E_INVALID_ACTION_TYPE,
              Catalog::ActionName(filter.action.type) + " is not an action of filters"};
  }
}

Refusal CheckName(const FWPM_FILTER0& filter, const CheckContext& context) {
  return CheckDisplayData(filter.displayData, context);
}

Refusal CheckLayer(const FWPM_FILTER0& filter, const CheckContext& context) {
  const Catalog::Layer* layer = Catalog::FindLayer(filter.layerKey, context.switches.Version());
  if (layer == nullptr) {
    return {FWP_E_LAYER_NOT_FOUND, "the layer " + Catalog::FormatGuid(filter.layerKey) + " does not exist"};
  }
  if (layer->family == Catalog::LayerFamily::AleFlowEstablished && !NamesCallout(filter.action) &&
      context.switches.refuseVerdictsAtFlowEstablished != 0) {
    return {FWP_E_ACTION_INCOMPATIBLE_WITH_LAYER,
            Catalog::ActionName(filter.action.type) + " is no action for " + std::string(layer->name)};
  }
  if ((filter.flags & FWPM_FILTER_FLAG_BOOTTIME) != 0 && (layer->flags & Catalog::kKernelLayerFlag) == 0) {
    return {FWP_E_INCOMPATIBLE_LAYER, std::string(layer->name) + " is not there before the engine runs"};
  }
  return {};
}

bool IsOfAnotherProvider(const FWPM_FILTER0& filter, const Object<FWPM_SUBLAYER0>& sublayer,
                         const CheckContext& context) {
  if (context.origin.lifetime != Lifetime::Persistent || sublayer.origin.lifetime != Lifetime::Persistent) {
    return false;
  }
  const GUID* one = filter.providerKey;
  const GUID* other = sublayer.Record().providerKey;
  if (one != nullptr && other != nullptr) {
    return !(*one == *other);
  }
  return one != other && context.switches.refuseMissingProviderAsOther != 0;
}

Refusal CheckSublayer(const FWPM_FILTER0& filter, const CheckContext& context) {
  const auto sublayer = context.objects.OfKind<FWPM_SUBLAYER0>().Find(filter.subLayerKey);
  const std::string name = "the sublayer " + Catalog::SublayerName(filter.subLayerKey);
  if (sublayer == nullptr) {
    return {FWP_E_SUBLAYER_NOT_FOUND, name + " does not exist"};
  }
  if (filter.subLayerKey == Catalog::kInspectionSublayerKey && !NamesCallout(filter.action) &&
      context.switches.refuseVerdictsInInspection != 0) {
    return {FWP_E_ACTION_INCOMPATIBLE_WITH_SUBLAYER,
            Catalog::ActionName(filter.action.type) + " is no action for " + name};
  }
  if (!MayRefer(context.origin, sublayer->origin)) {
    return {FWP_E_LIFETIME_MISMATCH, name + " may end before the filter"};
  }
  return IsOfAnotherProvider(filter, *sublayer, context)
             ? Refusal(FWP_E_LIFETIME_MISMATCH,
                       name + " is persistent like the filter, but of another provider")
             : Refusal();
}

Refusal CheckProvider(const FWPM_FILTER0& filter, const CheckContext& context) {
  return CheckProviderReference(filter.providerKey, context);
}

Refusal CheckCallout(const FWPM_FILTER0& filter, const CheckContext& context) {
  if (!NamesCallout(filter.action)) {
    return {};
  }
  const auto callout = context.objects.OfKind<FWPM_CALLOUT0>().Find(filter.action.calloutKey);
  const std::string name = "the callout " + Catalog::FormatGuid(filter.action.calloutKey);
  if (callout == nullptr) {
    return {FWP_E_CALLOUT_NOT_FOUND, name + " does not exist"};
  }
  if (!MayRefer(context.origin, callout->origin)) {
    return {FWP_E_LIFETIME_MISMATCH, name + " may end before the filter"};
  }
  return callout->Record().applicableLayer == filter.layerKey
             ? Refusal()
             : Refusal(FWP_E_INCOMPATIBLE_LAYER, name + " is not for " + Catalog::LayerName(filter.layerKey));
}

Refusal CheckProviderContext(const FWPM_FILTER0& filter, const CheckContext& context) {
  if ((filter.flags & FWPM_FILTER_FLAG_HAS_PROVIDER_CONTEXT) == 0) {
    return {};
  }
  const auto found = context.objects.OfKind<FWPM_PROVIDER_CONTEXT0>().Find(filter.providerContextKey);
  const std::string name = "the provider context " + Catalog::FormatGuid(filter.providerContextKey);
  if (found == nullptr) {
    return {FWP_E_PROVIDER_CONTEXT_NOT_FOUND, name + " does not exist"};
  }
  return MayRefer(context.origin, found->origin)
             ? Refusal()
             : Refusal(FWP_E_LIFETIME_MISMATCH, name + " may end before the filter");
}

Refusal CheckWeight(const FWPM_FILTER0& filter, const CheckContext&) {
  const FWP_VALUE0& weight = filter.weight;
  switch (weight.type) {
    case FWP_EMPTY:
      return {};
    case FWP_UINT8:
      return weight.uint8 <= FWPM_WEIGHT_RANGE_MAX
                 ? Refusal()
                 : Refusal(FWP_E_INVALID_WEIGHT,
                           "the weight range " + std::to_string(weight.uint8) + " is above 15");
    case FWP_UINT64:
      return weight.uint64 != nullptr ? Refusal() : Refusal(FWP_E_NULL_POINTER, "the weight is null");
    default:
      return {FWP_E_INVALID_WEIGHT, "a weight cannot be of type " + Catalog::DataTypeName(weight.type)};
  }
}

Refusal CheckConditions(const FWPM_FILTER0& filter, const CheckContext& context) {
  const Catalog::Layer& layer = *Catalog::FindLayer(filter.layerKey, context.switches.Version());
  std::set<std::string> seen;
  for (UINT32 index = 0; index < filter.numFilterConditions; ++index) {
    const FWPM_FILTER_CONDITION0& condition = filter.filterCondition[index];
    if (Refusal refusal = CheckCondition(condition, layer, context.switches)) {
      return refusal;
    }
    if (context.switches.refuseExactDuplicates != 0 &&
        !seen.insert(Catalog::DescribeCondition(condition)).second) {
      return {FWP_E_DUPLICATE_CONDITION, Catalog::DescribeCondition(condition) + " is there twice"};
    }
  }
  return {};
}

}  // namespace

Refusal Check(const FWPM_FILTER0& filter, const CheckContext& context) {
  constexpr Refusal (*kChecks[])(const FWPM_FILTER0&, const CheckContext&){
      CheckPointers, CheckFlags,   CheckAction,          CheckName,   CheckLayer,     CheckSublayer,
      CheckProvider, CheckCallout, CheckProviderContext, CheckWeight, CheckConditions};
  for (const auto check : kChecks) {
    if (Refusal refusal = check(filter, context)) {
      return refusal;
    }
  }
  return {};
}

}  // namespace EngineEmulator
