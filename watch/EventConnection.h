/**
 * @file
 * The connection that a drop is of, as policy/ asks about connections.
 */
#pragma once

#include <optional>

#include "policy/Circumstances.h"
#include "policy/Connection.h"
#include "watch/NetEvent.h"

namespace Watch {

/// The connection whose opening or acceptance a layer refused; none if the layer judges something else, or
/// the event does not tell both ends. What an event never tells, the interface, is one that no filter names.
/// @param layer where the drop was; null if that is not known.
std::optional<Policy::Connection> ConnectionOf(const NetEvent& event, const Catalog::Layer* layer);

/// Who connects, and where, as far as the event tells it; else as usual.
Policy::Circumstances CircumstancesOf(const NetEvent& event);

}  // namespace Watch
