#include "engine/Provider.h"

#include <utility>

namespace WfpFirewall {

Provider::Provider(GUID guid, std::wstring name, std::wstring displayName, std::wstring displayDesc)
    : guid_(guid),
      name_(std::move(name)),
      displayName_(std::move(displayName)),
      displayDesc_(std::move(displayDesc)) {}

GUID Provider::GetGuid() const { return guid_; }

std::wstring Provider::GetName() const { return name_; }

std::wstring Provider::GetDisplayName() const { return displayName_; }

std::wstring Provider::GetDisplayDesc() const { return displayDesc_; }

void Provider::MakePersistent() { persistent_ = true; }

bool Provider::IsPersistent() const { return persistent_; }

}  // namespace WfpFirewall
