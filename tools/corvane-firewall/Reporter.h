#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Adapters.h"
#include "Contents.h"
#include "Failure.h"
#include "ToldCalibration.h"
#include "policy/Lint.h"
#include "policy/LintText.h"
#include "policy/Map.h"
#include "policy/Owners.h"
#include "promises/Proof.h"
#include "replay/Replay.h"
#include "watch/Watcher.h"

/// The answers of the library's queries.
struct Status {
  bool internet;
  bool dhcp;
  bool leakProtection;
  bool localNetwork;
};

struct ToldCircumstance;

/// What goes with an explanation.
struct ExplanationContext {
  const Policy::Owners& owners;
  const Policy::Labels& labels;
  const std::vector<ToldCircumstance>& told;
  bool trace;  ///< whether a text has the whole way through the layers
};

/// Receives what happens while a plan runs. For each step: BeginStep, then what the step shows, then EndStep
/// or Fail. Finish comes last. Fail may also come before the first step.
class Reporter {
 public:
  virtual ~Reporter() = default;

  virtual void BeginStep(const std::string& step) = 0;
  /// A line that the library logged.
  virtual void Log(const std::string& line) = 0;
  virtual void ShowStatus(const Status& status) = 0;
  virtual void ShowAdapters(const std::vector<ListedAdapter>& adapters) = 0;
  virtual void ShowContents(const Contents& contents) = 0;
  virtual void ShowExplanation(const Policy::Explanation& explanation, const ExplanationContext& context) = 0;
  virtual void ShowMap(const Policy::Map& map, const Policy::Labels& labels) = 0;
  virtual void ShowPromises(const std::vector<Promises::PromiseResult>& promises,
                            const Policy::Owners& owners, const Policy::Labels& labels) = 0;
  virtual void ShowFindings(const std::vector<Policy::Finding>& findings, const Policy::Owners& owners,
                            Policy::Detail detail) = 0;
  virtual void ShowAgreement(const Replay::Agreement& agreement) = 0;
  /// Where to tell what is watched. Valid until the step ends.
  virtual std::unique_ptr<Watch::Audience> StartWatching() = 0;
  virtual void ShowCalibration(const ToldCalibration& calibration) = 0;
  /// A file that has been written.
  virtual void ShowFile(const std::string& path) = 0;
  virtual void EndStep() = 0;
  virtual void Fail(const Failure& failure) = 0;
  virtual void Finish() = 0;
};
