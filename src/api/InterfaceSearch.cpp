#include "api/InterfaceSearch.h"

#include <algorithm>

#include "api/Logging.h"
#include "helpers/NetworkInfo.h"

namespace {

using WfpFirewall::Helpers::NetworkInfo;
using WfpFirewall::Helpers::NetworkInterface;

bool FilterInterfacesByDescription(const NetworkInterface& candidate,
                                   const std::vector<std::wstring>& names) {
  const std::wstring description = candidate.GetDescription();
  return std::any_of(names.begin(), names.end(),
                     [&](const std::wstring& name) { return description.find(name) != std::wstring::npos; });
}

}  // namespace

std::vector<std::uint64_t> GetInterfaceLuids(const std::vector<std::wstring>& names, LogCallback log) {
  const std::vector<NetworkInterface> available = NetworkInfo::GetInterfaces();
  const std::vector<NetworkInterface> found = NetworkInfo::Filter(
      available,
      [&](const NetworkInterface& candidate) { return FilterInterfacesByDescription(candidate, names); });

  std::vector<std::uint64_t> luids;
  for (const NetworkInterface& match : found) {
    luids.push_back(match.GetLuid());
    const std::wstring line =
        L"NATIVE: found interface: " + match.GetDescription() + L":" + std::to_wstring(match.GetLuid());
    log(ToNarrow(line).c_str());
  }
  for (const NetworkInterface& candidate : available) {
    const std::wstring line =
        L"NATIVE available interface : " + candidate.GetName() + L"-" + candidate.GetDescription();
    log(ToNarrow(line).c_str());
  }
  return luids;
}

std::vector<std::uint64_t> ChooseInterfaceLuids(const std::vector<std::wstring>& names, std::uint64_t luid,
                                                LogCallback log) {
  if (luid != 0) {
    log(("NATIVE: Allowing interface by LUID " + std::to_string(luid)).c_str());
    return {luid};
  }
  log("NATIVE: Using adapters search by name");
  return GetInterfaceLuids(names, log);
}
