#include "ActiveFeatures.h"

#include "helpers/NetworkInfoException.h"

Promises::Features ActiveFeatures(std::span<const PlannedStep> steps, const std::string& dnsApp,
                                  const Policy::Snapshot& snapshot) {
  Promises::Features features;
  try {
    for (const auto& [step, options] : steps) {
      if (step->switchFeature != nullptr) {
        step->switchFeature(options, {dnsApp, snapshot}, features);
      }
    }
  } catch (const WfpFirewall::Helpers::NetworkInfoException& error) {
    throw Failure(static_cast<std::uint32_t>(error.GetErrorCode()), error.what());
  }
  return features;
}
