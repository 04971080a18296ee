#pragma once

#include <optional>
#include <string>

#include "policy/Connection.h"
#include "policy/Snapshot.h"

/// Reads all providers, sublayers and filters that this user may see, from the engine whose client library
/// is loaded in this process. Changes nothing.
/// @throws Failure with the engine's code, or when the engine's client library lacks a function.
Policy::Snapshot ReadPolicy();

/// The names of the network adapters; empty if they cannot be listed.
Policy::Labels ReadLabels();

/// The LUID that an option's value means: the value itself if it is a number, else the LUID of the adapter
/// with this name.
/// @throws Failure when there is no such adapter.
UINT64 FindInterface(const std::string& nameOrLuid);

/// The LUIDs of the adapters whose description contains one of the texts, found in the same way as by the
/// library.
/// @throws Failure with the system's code when the adapters cannot be listed.
std::vector<UINT64> FindInterfaces(const std::vector<std::string>& texts);

/// Whether a text is an id of an application already, and no path.
bool IsApplicationId(const std::string& text);

/// The bytes of the engine's id of an application. A path that begins with "\device\" is already an id, and
/// its file need not exist.
/// @throws Failure with the engine's code.
std::string ReadApplicationId(const std::string& path);
