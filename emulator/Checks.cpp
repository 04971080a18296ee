#include "emulator/Checks.h"

#include "emulator/Texts.h"

namespace EngineEmulator {
namespace {

DWORD CheckText(const wchar_t* text) {
  return text == nullptr || IsWellFormed(text) ? ERROR_SUCCESS : static_cast<DWORD>(FWP_E_INVALID_PARAMETER);
}

/// Persistence is the one flag that a client may set on a provider or a sublayer.
DWORD CheckFlags(UINT32 flags) {
  static_assert(FWPM_PROVIDER_FLAG_PERSISTENT == FWPM_SUBLAYER_FLAG_PERSISTENT);
  return (flags & ~static_cast<UINT32>(FWPM_PROVIDER_FLAG_PERSISTENT)) == 0
             ? ERROR_SUCCESS
             : static_cast<DWORD>(FWP_E_INVALID_FLAGS);
}

}  // namespace

DWORD CheckDisplayData(const FWPM_DISPLAY_DATA0& data) {
  if (data.name == nullptr) {
    return static_cast<DWORD>(FWP_E_NULL_DISPLAY_NAME);
  }
  return FirstFault(CheckText(data.name), CheckText(data.description));
}

DWORD CheckBlob(const FWP_BYTE_BLOB& blob) {
  return blob.size == 0 || blob.data != nullptr ? ERROR_SUCCESS : static_cast<DWORD>(FWP_E_NULL_POINTER);
}

bool MayRefer(const Origin& referrer, const Origin& target) {
  switch (target.lifetime) {
    case Lifetime::BuiltIn:
      return true;
    case Lifetime::Persistent:
      return true;
    case Lifetime::Static:
      return referrer.lifetime != Lifetime::Persistent;
    case Lifetime::Dynamic:
      return referrer.lifetime == Lifetime::Dynamic && referrer.session == target.session;
  }
  return false;
}

DWORD CheckProviderReference(const GUID* providerKey, const Policy& policy, const Origin& referrer) {
  if (providerKey == nullptr) {
    return ERROR_SUCCESS;
  }
  const auto provider = policy.Objects<FWPM_PROVIDER0>().Find(*providerKey);
  if (provider == nullptr) {
    return static_cast<DWORD>(FWP_E_PROVIDER_NOT_FOUND);
  }
  return MayRefer(referrer, provider->origin) ? ERROR_SUCCESS : static_cast<DWORD>(FWP_E_LIFETIME_MISMATCH);
}

DWORD Check(const FWPM_PROVIDER0& provider, const Policy&, const Origin&) {
  return FirstFault(CheckBlob(provider.providerData), CheckFlags(provider.flags),
                    CheckDisplayData(provider.displayData), CheckText(provider.serviceName));
}

DWORD Check(const FWPM_SUBLAYER0& sublayer, const Policy& policy, const Origin& origin) {
  // Only the low half of the flags is the same in every version of the platform's headers.
  return FirstFault(CheckBlob(sublayer.providerData), CheckFlags(static_cast<UINT16>(sublayer.flags)),
                    CheckDisplayData(sublayer.displayData),
                    CheckProviderReference(sublayer.providerKey, policy, origin));
}

}  // namespace EngineEmulator
