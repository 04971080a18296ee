#include "calibrate/Calibration.h"

#include <algorithm>
#include <exception>

#include "calibrate/Reauthorization.h"

namespace Calibrate {
namespace {

/// Does the work; an experiment that ends early spoils no other.
class Calibrator {
 public:
  Calibrator(const Laboratory& laboratory, Network& network)
      : bench_(laboratory.engine, laboratory.application),
        network_(network),
        mostRounds_(laboratory.mostRounds) {}

  Calibration Run(const Policy::ShowProgress& show) {
    FindPaths();
    for (std::size_t i = 0; i < Policy::kAssumptionCount; ++i) {
      const auto assumption = static_cast<Policy::Assumption>(i);
      found_.assumptions.push_back({Policy::TextOf(assumption), {{}, "it needs a driver", {}}});
    }
    const std::size_t parts = Experiments().size() + 1;
    for (const Experiment& experiment : Experiments()) {
      Result result{experiment.text, Guarded([&] { return Do(experiment); })};
      if (experiment.assumption) {
        found_.assumptions[static_cast<std::size_t>(*experiment.assumption)] = std::move(result);
      } else {
        found_.findings.push_back(std::move(result));
      }
      Show(show, parts);
    }
    DoReauthorization();
    Show(show, parts);
    return std::move(found_);
  }

 private:
  /// Which IP versions this machine has, and whether filters decide about this program's connections at all.
  void FindPaths() {
    for (const Path& path : kAllPaths) {
      try {
        network_.Listen(path);
        paths_.push_back(path);
      } catch (const NetworkError& error) {
        found_.notTried.push_back(Calibrate::Describe(path) + ": " + error.what());
      }
    }
    const Answer answer = Guarded([this] {
      Observation seen;
      ObserveControls(true, seen);
      return Judge(1, seen);
    });
    obstacle_ = answer.reading ? "" : "cannot calibrate here: " + answer.why;
  }

  void ObserveControls(bool atAccept, Observation& seen) const {
    const Observer observer(bench_, network_, paths_, mostRounds_);
    observer.Observe(Controls(), seen);
    if (atAccept) {
      observer.Observe(AcceptControls(), seen);
    }
  }

  /// @return the engine's answer, or why there is none.
  [[nodiscard]] Answer Do(const Experiment& experiment) const {
    const bool atAccept = std::ranges::any_of(experiment.trials, [](const Trial& trial) {
      return std::ranges::any_of(trial.cases, [](const Case& tried) {
        return std::ranges::find(tried.rules, Place::Accept, &Rule::place) != tried.rules.end();
      });
    });
    Observation seen;
    ObserveControls(atAccept, seen);
    for (const Trial& trial : experiment.trials) {
      Observer(bench_, network_, paths_, mostRounds_).Observe(trial, seen);
    }
    ObserveControls(atAccept, seen);
    return Judge(experiment.text.readings.size(), seen);
  }

  void DoReauthorization() {
    Result result;
    const Answer answer = Guarded([&] {
      result = FindReauthorization(bench_, network_, paths_);
      return result.answer;
    });
    result.answer = answer;
    found_.findings.push_back(std::move(result));
  }

  template <class Work>
  Answer Guarded(Work work) const {
    if (!obstacle_.empty()) {
      return {{}, obstacle_, {}};
    }
    try {
      return work();
    } catch (const std::exception& error) {
      return {{}, error.what(), {}};
    }
  }

  void Show(const Policy::ShowProgress& show, std::size_t parts) {
    ++done_;
    if (show) {
      show(done_, parts);
    }
  }

  Bench bench_;
  Network& network_;
  std::size_t mostRounds_;
  std::vector<Path> paths_;
  std::string obstacle_;  ///< why nothing can be found out; empty if nothing stands in the way
  Calibration found_;
  std::size_t done_ = 0;
};

std::string Describe(const Result& result) {
  const auto& [text, answer] = result;
  std::string words(text.name);
  if (answer.reading) {
    const auto& [name, meaning] = text.readings[*answer.reading];
    words.append(" = ").append(name).append(": ").append(meaning);
  } else {
    words += ": could not be settled: " + answer.why;
  }
  words += '\n';
  for (const std::string& line : answer.evidence) {
    words += "  " + line + '\n';
  }
  return words;
}

}  // namespace

Calibration CalibrateEngine(const Laboratory& laboratory, Network& network,
                            const Policy::ShowProgress& show) {
  return Calibrator(laboratory, network).Run(show);
}

std::string Describe(const Calibration& calibration) {
  std::string words;
  for (const std::string& path : calibration.notTried) {
    words += "not tried: " + path + '\n';
  }
  for (const Result& result : calibration.assumptions) {
    words += Describe(result);
  }
  for (const Result& result : calibration.findings) {
    words += Describe(result);
  }
  return words;
}

}  // namespace Calibrate
