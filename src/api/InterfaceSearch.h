#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "corvane/native_firewall.h"

/// LUIDs of the network adapters whose description contains one of the names, in their letter case; in
/// the order of the machine's list. Logs the adapters found, then all that there are.
/// @throws NetworkInfoException when the adapters cannot be listed.
std::vector<std::uint64_t> GetInterfaceLuids(const std::vector<std::wstring>& names, LogCallback log);

/// The interface of that LUID alone, or those that GetInterfaceLuids finds when it is 0. Logs which.
/// @throws NetworkInfoException as GetInterfaceLuids.
std::vector<std::uint64_t> ChooseInterfaceLuids(const std::vector<std::wstring>& names, std::uint64_t luid,
                                                LogCallback log);
