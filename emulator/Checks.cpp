#include "emulator/Checks.h"

#include "catalog/Names.h"
#include "emulator/Utf8.h"

namespace EngineEmulator {
namespace {

constexpr std::size_t kMostSublayers = 1U << 16;
constexpr std::size_t kMostCallouts = 100'000;

Refusal CheckText(const wchar_t* text) {
  return text == nullptr || IsWellFormed(text)
             ? Refusal()
             : Refusal(FWP_E_INVALID_PARAMETER, "a text holds half a surrogate pair");
}

/// Persistence is the one flag that a client may set on a provider or a sublayer.
Refusal CheckFlags(UINT32 flags, const CheckContext& context) {
  static_assert(FWPM_PROVIDER_FLAG_PERSISTENT == FWPM_SUBLAYER_FLAG_PERSISTENT);
  if ((flags & FWPM_PROVIDER_FLAG_DISABLED) != 0 && context.switches.keepAsGiven == 0) {
    return {FWP_E_INVALID_FLAGS, "DISABLED is a flag that only the engine sets"};
  }
  if (context.switches.RefusesUnknownFlags() &&
      (flags & ~static_cast<UINT32>(FWPM_PROVIDER_FLAG_PERSISTENT)) != 0) {
    return {FWP_E_INVALID_FLAGS, "there is a flag other than PERSISTENT"};
  }
  return {};
}

}  // namespace

Refusal CheckDisplayData(const FWPM_DISPLAY_DATA0& data, const CheckContext& context) {
  if (data.name == nullptr) {
    return {FWP_E_NULL_DISPLAY_NAME, "the display name is null"};
  }
  if (context.switches.refuseEmptyNames != 0 && *data.name == L'\0') {
    return {FWP_E_NULL_DISPLAY_NAME, "the display name is empty"};
  }
  const Refusal refusal = CheckText(data.name);
  return refusal ? refusal : CheckText(data.description);
}

Refusal CheckBlob(const FWP_BYTE_BLOB& blob) {
  if (blob.size != 0 && blob.data == nullptr) {
    return {FWP_E_NULL_POINTER, "a blob has a size but no data"};
  }
  return blob.size <= kMostBytes
             ? Refusal()
             : Refusal(FWP_E_INVALID_PARAMETER, "a blob has " + std::to_string(blob.size) + " bytes");
}

bool MayRefer(const Origin& referrer, const Origin& target) {
  switch (target.lifetime) {
    case Lifetime::BuiltIn:
    case Lifetime::Persistent:
      return true;
    case Lifetime::Static:
      return referrer.lifetime != Lifetime::Persistent;
    case Lifetime::Dynamic:
      return referrer.lifetime == Lifetime::Dynamic && referrer.session == target.session;
  }
  return false;
}

Refusal CheckProviderReference(const GUID* providerKey, const CheckContext& context) {
  if (providerKey == nullptr) {
    return {};
  }
  const auto provider = context.objects.OfKind<FWPM_PROVIDER0>().Find(*providerKey);
  const std::string name = "the provider " + Catalog::FormatGuid(*providerKey);
  if (provider == nullptr) {
    return {FWP_E_PROVIDER_NOT_FOUND, name + " does not exist"};
  }
  return MayRefer(context.origin, provider->origin)
             ? Refusal()
             : Refusal(FWP_E_LIFETIME_MISMATCH, name + " may end before the object");
}

Refusal Check(const FWPM_PROVIDER0& provider, const CheckContext& context) {
  if (Refusal refusal = CheckBlob(provider.providerData)) {
    return refusal;
  }
  if (Refusal refusal = CheckFlags(provider.flags, context)) {
    return refusal;
  }
  if (Refusal refusal = CheckDisplayData(provider.displayData, context)) {
    return refusal;
  }
  return CheckText(provider.serviceName);
}

Refusal Check(const FWPM_SUBLAYER0& sublayer, const CheckContext& context) {
  if (Refusal refusal = CheckBlob(sublayer.providerData)) {
    return refusal;
  }
  // Only the low half of the flags is the same in every version of the platform's headers.
  if (Refusal refusal = CheckFlags(static_cast<UINT16>(sublayer.flags), context)) {
    return refusal;
  }
  if (Refusal refusal = CheckDisplayData(sublayer.displayData, context)) {
    return refusal;
  }
  if (Refusal refusal = CheckProviderReference(sublayer.providerKey, context)) {
    return refusal;
  }
  return context.objects.OfKind<FWPM_SUBLAYER0>().Count() < kMostSublayers
             ? Refusal()
             : Refusal(FWP_E_TOO_MANY_SUBLAYERS, "there are 65536 sublayers already");
}

Refusal Check(const FWPM_CALLOUT0& callout, const CheckContext& context) {
  constexpr UINT32 kPersistent = 0x10000;
  constexpr UINT32 kUsesProviderContext = 0x20000;
  if (Refusal refusal = CheckBlob(callout.providerData)) {
    return refusal;
  }
  if (context.switches.RefusesUnknownFlags() &&
      (callout.flags & ~(kPersistent | kUsesProviderContext)) != 0) {
    return {FWP_E_INVALID_FLAGS, "there is a flag that clients cannot set"};
  }
  if (Refusal refusal = CheckDisplayData(callout.displayData, context)) {
    return refusal;
  }
  if (Catalog::FindLayer(callout.applicableLayer) == nullptr) {
    return {FWP_E_LAYER_NOT_FOUND,
            "the layer " + Catalog::FormatGuid(callout.applicableLayer) + " does not exist"};
  }
  if (Refusal refusal = CheckProviderReference(callout.providerKey, context)) {
    return refusal;
  }
  return context.objects.OfKind<FWPM_CALLOUT0>().Count() < kMostCallouts
             ? Refusal()
             : Refusal(FWP_E_TOO_MANY_CALLOUTS, "there are 100000 callouts already");
}

Refusal Check(const FWPM_PROVIDER_CONTEXT0& providerContext, const CheckContext& context) {
  constexpr UINT32 kPersistent = 0x1;
  constexpr UINT32 kDownlevel = 0x2;
  constexpr int kTypes = 14;
  if (Refusal refusal = CheckBlob(providerContext.providerData)) {
    return refusal;
  }
  if (context.switches.RefusesUnknownFlags() && (providerContext.flags & ~(kPersistent | kDownlevel)) != 0) {
    return {FWP_E_INVALID_FLAGS, "there is a flag other than PERSISTENT"};
  }
  if (Refusal refusal = CheckDisplayData(providerContext.displayData, context)) {
    return refusal;
  }
  if (providerContext.type < 0 || providerContext.type >= kTypes) {
    return {FWP_E_INVALID_ENUMERATOR,
            "there is no type " + std::to_string(int{providerContext.type}) + " of provider contexts"};
  }
  if (providerContext.type == FWPM_GENERAL_CONTEXT && providerContext.dataBuffer != nullptr) {
    if (Refusal refusal = CheckBlob(*providerContext.dataBuffer)) {
      return refusal;
    }
  }
  return CheckProviderReference(providerContext.providerKey, context);
}

}  // namespace EngineEmulator
