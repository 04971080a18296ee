#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "corvane/native_firewall.h"

/// LUIDs of the network adapters whose description contains one of the names; letter case counts. In the
/// order of the machine's list. Logs the adapters found, then all that there are.
/// @throws NetworkInfoException when the adapters cannot be listed.
std::vector<std::uint64_t> GetInterfaceLuids(const std::vector<std::wstring>& names, LogCallback log);

/// The interfaces that a command's arguments choose: the one of the LUID unless that is 0, else those that
/// GetInterfaceLuids finds. Logs which way it takes.
/// @throws NetworkInfoException as GetInterfaceLuids.
std::vector<std::uint64_t> ChooseInterfaceLuids(const std::vector<std::wstring>& names, std::uint64_t luid,
                                                LogCallback log);
