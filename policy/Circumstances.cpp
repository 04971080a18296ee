#include "policy/Circumstances.h"

#include <utility>

namespace Policy {

Circumstances UsualCircumstances(Token token) {
  Circumstances usual;
  usual.token = std::move(token);
  usual.tunnelType = 0;
  usual.compartment = 1;
  usual.quarantine = Circumstances::Quarantine::Over;
  usual.systemPort = 0;
  usual.mayUseIpsec = false;
  usual.reauthorizeReason = 0;
  return usual;
}

}  // namespace Policy
