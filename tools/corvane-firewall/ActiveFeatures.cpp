#include "ActiveFeatures.h"

Promises::Features ActiveFeatures(std::span<const PlannedStep> steps, const std::string& dnsApp,
                                  const Policy::Snapshot& snapshot) {
  Promises::Features features;
  for (const auto& [step, options] : steps) {
    if (step->switchFeature != nullptr) {
      step->switchFeature(options, {dnsApp, snapshot}, features);
    }
  }
  return features;
}
