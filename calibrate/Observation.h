/**
 * @file
 * What is seen of experiments, and which reading it speaks for.
 */
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "calibrate/Experiment.h"

namespace Calibrate {

/// A case that was tried once.
struct Sighting {
  const Case* tried;
  Path path;
  std::optional<Outcome> outcome;  ///< none: the engine refused the filters, as the case allows
};

/// What was seen of some trials.
struct Observation {
  std::vector<Sighting> sightings;
  std::vector<std::string> lacks;  ///< of trials that prove nothing, why
};

/// Does trials.
class Observer {
 public:
  /// @param paths those that can be used here.
  /// @param mostRounds trials are done no more often.
  Observer(const Bench& bench, Network& network, std::span<const Path> paths, std::size_t mostRounds)
      : bench_(bench), network_(network), paths_(paths), mostRounds_(mostRounds) {}

  /// @throws EngineError, NetworkError
  void Observe(const Trial& trial, Observation& seen) const;

 private:
  void Observe(const Trial& trial, const Path& path, Observation& seen) const;
  [[nodiscard]] Sighting Try(const Case& tried, const Path& path, UINT16 port) const;

  const Bench& bench_;
  Network& network_;
  std::span<const Path> paths_;
  std::size_t mostRounds_;
};

/// The answer to a question about the engine.
struct Answer {
  std::optional<std::size_t> reading;
  std::string why{};                    ///< unless it is settled
  std::vector<std::string> evidence{};  ///< what was there and what was seen, a line each
};

/// @param readings how many there are.
Answer Judge(std::size_t readings, const Observation& seen);

}  // namespace Calibrate
