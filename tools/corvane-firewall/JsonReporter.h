#pragma once

#include "Json.h"
#include "Reporter.h"

/// One JSON document for machines, written to stdout by Finish. Only what is watched is written at once.
class JsonReporter : public Reporter {
 public:
  /// @param engine empty if the command line does not name one.
  explicit JsonReporter(std::optional<Engine> engine);

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
  void Finish() override;

 private:
  Json& Step() { return document_["steps"].back(); }

  std::optional<Engine> engine_;
  Json document_;
  bool hasLines_ =
      false;  ///< other objects, a line each, come before the document, which is then the last line
};
