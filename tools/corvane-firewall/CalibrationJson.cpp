#include "CalibrationJson.h"

#include <algorithm>
#include <iterator>

namespace {

Json ResultToJson(const Calibrate::Result& result) {
  const auto& [text, answer] = result;
  const Json reading = answer.reading ? Json(text.readings[*answer.reading].name) : Json(nullptr);
  return {{"name", text.name},
          {"reading", reading},
          {"why", answer.reading ? Json(nullptr) : Json(answer.why)},
          {"evidence", answer.evidence}};
}

Json ResultsToJson(const std::vector<Calibrate::Result>& results) {
  Json json = Json::array();
  std::ranges::transform(results, std::back_inserter(json), ResultToJson);
  return json;
}

}  // namespace

Json ToJson(const ToldCalibration& told) {
  return {{"simulated", told.isSimulated},
          {"windows", told.windows},
          {"time", told.time},
          {"notTried", told.found.notTried},
          {"assumptions", ResultsToJson(told.found.assumptions)},
          {"findings", ResultsToJson(told.found.findings)}};
}
