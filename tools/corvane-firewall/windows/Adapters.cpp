#include "Adapters.h"

#include "Failure.h"
#include "Text.h"
#include "helpers/NetworkInfo.h"
#include "helpers/NetworkInfoException.h"

std::vector<ListedAdapter> ListAdapters() {
  std::vector<ListedAdapter> adapters;
  try {
    for (const auto& adapter : WfpFirewall::Helpers::NetworkInfo::GetInterfaces()) {
      adapters.push_back({ToUtf8(adapter.GetName()), ToUtf8(adapter.GetDescription()), adapter.GetLuid()});
    }
  } catch (const WfpFirewall::Helpers::NetworkInfoException& error) {
    throw Failure(static_cast<std::uint32_t>(error.GetErrorCode()), error.what());
  }
  return adapters;
}
