#pragma once

#include "Reporter.h"

/// Writes text as soon as it is reported: results to stdout, failures to stderr.
class TextReporter : public Reporter {
 public:
  /// @param engine empty if the command line does not name one.
  explicit TextReporter(std::optional<Engine> engine) : engine_(engine) {}

  void BeginStep(const std::string& step) override;
  void Log(const std::string& line) override;
  void ShowStatus(const Status& status) override;
  void ShowAdapters(const std::vector<ListedAdapter>& adapters) override;
  void ShowContents(const Contents& contents) override;
  void ShowExplanation(const Policy::Explanation& explanation, const ExplanationContext& context) override;
  void ShowMap(const Policy::Map& map, const Policy::Labels& labels) override;
  void ShowPromises(const std::vector<Promises::PromiseResult>& promises, const Policy::Owners& owners,
                    const Policy::Labels& labels) override;
  void ShowFindings(const std::vector<Policy::Finding>& findings, const Policy::Owners& owners,
                    Policy::Detail detail) override;
  void ShowAgreement(const Replay::Agreement& agreement) override;
  std::unique_ptr<Watch::Audience> StartWatching() override;
  void ShowCalibration(const ToldCalibration& calibration) override;
  void ShowFile(const std::string& path) override;
  void EndStep() override;
  void Fail(const Failure& failure) override;
  void Finish() override {}

 private:
  std::optional<Engine> engine_;
  std::string step_;
};
