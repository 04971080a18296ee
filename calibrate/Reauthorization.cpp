#include "calibrate/Reauthorization.h"

#include <optional>
#include <string_view>
#include <vector>

#include "catalog/Keys.h"

namespace Calibrate {
namespace {

constexpr Policy::AssumptionText::Reading kReauthorizationReadings[]{
    {"judged-anew", "a change of filters has a connection judged anew with its next packet"},
    {"left-alone", "a connection that passed goes on"},
};
constexpr Policy::AssumptionText kReauthorizationText{
    "re-authorisation", "What does a change of filters do to connections that are there?",
    kReauthorizationReadings};

constexpr Extra kJudgedAnew[]{
    {Catalog::kFlagsFieldKey, FWP_MATCH_FLAGS_ALL_SET, Operand::Number, FWP_CONDITION_FLAG_IS_REAUTHORIZE}};
constexpr Rule kNewBlock[]{{}};
constexpr Rule kNewBlockAtAccept[]{{.place = Place::Accept}};
constexpr Rule kOldBlockOfJudgedAnew[]{{.extras = kJudgedAnew}};

/// Filters before a connection and after it.
struct Change {
  std::string_view what;
  std::span<const Rule> before;
  std::span<const Rule> after;
  bool isElsewhere;  ///< those after it are for another port
  bool goesOn;       ///< by the documentation
};

constexpr Change kChanges[]{
    {"nothing changes", {}, {}, false, true},
    {"a block of what is judged anew, and nothing changes", kOldBlockOfJudgedAnew, {}, false, true},
    {"a block is added where it connected", {}, kNewBlock, false, false},
    {"a block is added where it was accepted", {}, kNewBlockAtAccept, false, false},
    {"a block of another port is added", {}, kNewBlock, true, true},
    {"a block of what is judged anew, and then one of another port is added", kOldBlockOfJudgedAnew,
     kNewBlock, true, false},
};

/// What the connection's next packet meets; none if there was no connection.
std::optional<Outcome> Try(const Change& change, const Path& path, const Bench& bench, Network& network) {
  const std::unique_ptr<Listener> listener = network.Listen(path);
  const std::unique_ptr<Listener> elsewhere = network.Listen(path);
  const Bench::Installed before = bench.Install(change.before, path, listener->Port());
  const std::unique_ptr<Flow> flow = network.Open(path, listener->Port());
  if (flow == nullptr || flow->Send() != Outcome::Passed) {
    return std::nullopt;
  }
  const UINT16 port = (change.isElsewhere ? elsewhere : listener)->Port();
  const Bench::Installed after = bench.Install(change.after, path, port);
  return flow->Send();
}

}  // namespace

Result FindReauthorization(const Bench& bench, Network& network, std::span<const Path> paths) {
  Result result{kReauthorizationText, {}};
  bool isAsDocumented = true;
  bool isLeftAlone = true;
  for (const Change& change : kChanges) {
    for (const Path& path : paths) {
      const std::optional<Outcome> outcome = Try(change, path, bench, network);
      const std::string line = std::string(change.what) + " (" + Calibrate::Describe(path) + "): ";
      result.answer.evidence.push_back(line +
                                       (outcome ? std::string(OutcomeText(*outcome)) : "no connection"));
      if (!outcome || (change.goesOn && outcome != Outcome::Passed)) {
        result.answer.why = "a control failed: " + result.answer.evidence.back();
        return result;
      }
      isAsDocumented = isAsDocumented && (change.goesOn || IsAs(*outcome, Expected::Stopped));
      isLeftAlone = isLeftAlone && outcome == Outcome::Passed;
    }
  }
  if (isAsDocumented != isLeftAlone) {
    result.answer.reading = isAsDocumented ? 0 : 1;
  } else {
    result.answer.why = "no reading predicts what was seen";
  }
  return result;
}

}  // namespace Calibrate
