#include "calibrate/Observation.h"

#include <algorithm>
#include <map>
#include <utility>

namespace Calibrate {
namespace {

std::string SeenText(const std::optional<Outcome>& outcome) {
  return outcome ? std::string(OutcomeText(*outcome)) : "refused by the engine";
}

/// What was seen speaks for no reading if the engine refused the filters.
bool Agrees(const Sighting& sighting, std::size_t reading) {
  return !sighting.outcome || IsAs(*sighting.outcome, sighting.tried->predictions[reading]);
}

/// Filters that were refused prove nothing, unless something else does.
bool Proves(const Sighting& sighting) {
  return sighting.outcome ? Agrees(sighting, 0) : sighting.tried->mayBeRefused;
}

std::string Describe(const Sighting& sighting) {
  return std::string(sighting.tried->what) + " (" + Describe(sighting.path) +
         "): " + SeenText(sighting.outcome);
}

/// The cases, each once, in the order in which they were first tried.
std::vector<const Case*> CasesOf(const Observation& seen) {
  std::vector<const Case*> cases;
  for (const Sighting& sighting : seen.sightings) {
    if (std::ranges::find(cases, sighting.tried) == cases.end()) {
      cases.push_back(sighting.tried);
    }
  }
  return cases;
}

/// "a block: denied 8 times"
std::string EvidenceOf(const Case& tried, const Observation& seen) {
  std::map<std::string, std::size_t> counts;
  for (const Sighting& sighting : seen.sightings) {
    counts[SeenText(sighting.outcome)] += sighting.tried == &tried ? 1 : 0;
  }
  std::string text;
  for (const auto& [outcome, count] : counts) {
    if (count > 0) {
      text += (text.empty() ? "" : ", ") + outcome + ' ' + std::to_string(count) +
              (count == 1 ? " time" : " times");
    }
  }
  return std::string(tried.what) + ": " + text;
}

/// A control that came out wrong; empty if none.
std::string FailedControl(const Observation& seen) {
  for (const Sighting& sighting : seen.sightings) {
    if (sighting.tried->IsControl() && !Agrees(sighting, 0)) {
      return "a control failed: " + Describe(sighting) + " instead of " +
             std::string(ExpectedText(sighting.tried->predictions[0]));
    }
  }
  return {};
}

/// A case that came out in two ways; empty if none.
std::string Disagreement(const Observation& seen) {
  for (auto first = seen.sightings.begin(); first != seen.sightings.end(); ++first) {
    const auto other = std::find_if(first, seen.sightings.end(), [first](const Sighting& later) {
      return later.tried == first->tried && later.path == first->path && later.outcome != first->outcome;
    });
    if (other != seen.sightings.end()) {
      return "rounds disagreed: " + Describe(*first) + ", then " + SeenText(other->outcome);
    }
  }
  return {};
}

/// Of the cases that tell readings apart, what was seen.
std::string Puzzle(const Observation& seen) {
  std::string text;
  for (const Case* tried : CasesOf(seen)) {
    if (!tried->IsControl()) {
      text += (text.empty() ? "" : "; ") + EvidenceOf(*tried, seen);
    }
  }
  return text;
}

void Decide(std::size_t readings, const Observation& seen, Answer& answer) {
  std::vector<std::size_t> left;
  for (std::size_t reading = 0; reading < readings; ++reading) {
    if (std::ranges::all_of(seen.sightings,
                            [reading](const Sighting& sighting) { return Agrees(sighting, reading); })) {
      left.push_back(reading);
    }
  }
  const std::string puzzle = Puzzle(seen);
  if (seen.sightings.empty()) {
    answer.why = "no connections can be made";
  } else if (left.size() == 1) {
    answer.reading = left.front();
  } else if (puzzle.empty()) {
    answer.why = "no trial could show it";
    for (const std::string& lack : seen.lacks) {
      answer.why += "; " + lack;
    }
  } else {
    answer.why =
        (left.empty() ? "no reading predicts what was seen: " : "several readings predict it: ") + puzzle;
  }
}

}  // namespace

std::string_view ExpectedText(Expected expected) {
  switch (expected) {
    case Expected::Passed:
      return "passed";
    case Expected::Denied:
      return "denied";
    case Expected::Silent:
      return "silent";
    case Expected::Stopped:
      break;
  }
  return "stopped";
}

bool IsAs(Outcome outcome, Expected expected) {
  switch (expected) {
    case Expected::Passed:
      return outcome == Outcome::Passed;
    case Expected::Denied:
      return outcome == Outcome::Denied;
    case Expected::Silent:
      return outcome == Outcome::Silent;
    case Expected::Stopped:
      break;
  }
  return outcome == Outcome::Denied || outcome == Outcome::Silent || outcome == Outcome::Reset;
}

void Observer::Observe(const Trial& trial, Observation& seen) const {
  for (const Path& path : trial.paths) {
    if (std::ranges::find(paths_, path) != paths_.end()) {
      Observe(trial, path, seen);
    }
  }
}

void Observer::Observe(const Trial& trial, const Path& path, Observation& seen) const {
  const std::unique_ptr<Listener> listener = network_.Listen(path);
  std::vector<const Case*> cases;
  for (const Case& tried : trial.cases) {
    cases.push_back(&tried);
  }
  std::vector<Sighting> sightings;
  for (std::size_t round = 0; round < std::min(trial.rounds, mostRounds_); ++round) {
    for (const Case* tried : cases) {
      sightings.push_back(Try(*tried, path, listener->Port()));
      if (round == 0 && tried->isProof && !Proves(sightings.back())) {
        seen.lacks.push_back(std::string(trial.lack) + " (" + Calibrate::Describe(path) + ')');
        return;
      }
    }
    std::ranges::reverse(cases);
  }
  seen.sightings.insert(seen.sightings.end(), sightings.begin(), sightings.end());
}

Sighting Observer::Try(const Case& tried, const Path& path, UINT16 port) const {
  try {
    const Bench::Installed installed = bench_.Install(tried.rules, path, port, tried.adding);
    return {&tried, path, network_.Probe(path, port)};
  } catch (const EngineError& error) {
    if (tried.mayBeRefused || tried.isProof) {
      return {&tried, path, std::nullopt};
    }
    throw;
  }
}

Answer Judge(std::size_t readings, const Observation& seen) {
  Answer answer;
  for (const Case* tried : CasesOf(seen)) {
    answer.evidence.push_back(EvidenceOf(*tried, seen));
  }
  answer.evidence.insert(answer.evidence.end(), seen.lacks.begin(), seen.lacks.end());
  answer.why = FailedControl(seen);
  answer.why = answer.why.empty() ? Disagreement(seen) : answer.why;
  if (answer.why.empty()) {
    Decide(readings, seen, answer);
  }
  return answer;
}

}  // namespace Calibrate
