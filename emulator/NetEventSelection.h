/**
 * @file
 * Which net events the engine records, and which of them a client asks for.
 */
#pragma once

#include <NetEvents.h>

#include "emulator/Refusal.h"
#include "emulator/Switches.h"

namespace EngineEmulator {

/// The keyword without which the engine does not record an event; 0 for what it always records.
UINT32 KeywordOf(const FWPM_NET_EVENT3& event);

/// What is wrong with a template. Null is no template.
/// @param mayLackEnd the end may be zero, and then there is none.
Refusal CheckTemplate(const FWPM_NET_EVENT_ENUM_TEMPLATE0* criteria, bool mayLackEnd,
                      const Switches& switches);

/// Whether a sound template selects an event. Null selects all.
/// @param mayLackEnd the end may be zero, and then there is none.
bool Selects(const FWPM_NET_EVENT_ENUM_TEMPLATE0* criteria, bool mayLackEnd, const FWPM_NET_EVENT3& event);

}  // namespace EngineEmulator
