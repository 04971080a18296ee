#include "helpers/tarnwell/IPHelper.h"

// clang-format off: iphlpapi.h needs winsock2.h before it.
#include <WfpPlatform.h>
#include <iphlpapi.h>
// clang-format on

#include "helpers/tarnwell/Utilities.h"

namespace Tarnwell {
namespace {

/// Part of the error text: it stays the same when the code moves to another line.
constexpr int kConvertLine = 35;

}  // namespace

std::uint32_t LuidToIndex(std::uint64_t luid) {
  NET_LUID native{};
  native.Value = luid;
  NET_IFINDEX index = 0;
  const auto result = ConvertInterfaceLuidToIndex(&native, &index);
  if (result != NO_ERROR) {
    RaiseSystemError("IPHelper.cpp", kConvertLine, static_cast<DWORD>(result), "ConvertInterfaceLuidToIndex");
  }
  return index;
}

}  // namespace Tarnwell
