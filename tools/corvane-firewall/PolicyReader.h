#pragma once

#include <optional>
#include <string>

#include "policy/Connection.h"
#include "policy/Snapshot.h"

/// Reads all providers, sublayers and filters that this user may see from the engine that this process is
/// bound to, the system's or the emulated one. Changes nothing.
/// @throws Failure with the engine's code, or when the engine's client library lacks a function.
Policy::Snapshot ReadPolicy();

/// The names of the network adapters; none when they cannot be listed.
Policy::Labels ReadLabels();

/// The LUID of an option's value: the number itself, or that of the adapter of this name.
/// @throws Failure when there is no such adapter.
UINT64 FindInterface(const std::string& nameOrLuid);

/// The LUIDs of the adapters whose description contains one of some texts, as the library searches them.
std::vector<UINT64> FindInterfaces(const std::vector<std::string>& texts);

/// The bytes of the id by which the engine knows an application. A path that begins with "\device\" is an
/// id already, and its file need not exist.
/// @throws Failure with the engine's code.
std::string ReadApplicationId(const std::string& path);
