#include "calibrate/Network.h"

namespace Calibrate {

std::string Describe(const Path& path) {
  return std::string(path.protocol == Policy::kTcp ? "TCP" : "UDP") + " over " +
         (path.ipVersion == Policy::IpVersion::V4 ? "IPv4" : "IPv6");
}

std::string_view OutcomeText(Outcome outcome) {
  switch (outcome) {
    case Outcome::Passed:
      return "passed";
    case Outcome::Denied:
      return "denied";
    case Outcome::Silent:
      return "silent";
    case Outcome::Refused:
      return "refused";
    case Outcome::Reset:
      return "reset";
    case Outcome::Unknown:
      break;
  }
  return "unknown";
}

}  // namespace Calibrate
