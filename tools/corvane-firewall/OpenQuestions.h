#pragma once

#include "policy/Summary.h"

/// The options that settle what an explanation leaves open.
inline Policy::Settlers SettledByOptions() {
  return {{"user", "give --as, or --user"},
          {"package", "give --as package NAME, with its --capability"},
          {"profile", "give --profile private, public or domain"},
          {"tunnel type", "give --tunnel-type"},
          {"compartment", "give --compartment"},
          {"quarantine", "give --epoch"},
          {"re-authorisation", "give --reauthorized"}};
}
