/**
 * @file
 * Experiments as data: filters, and what each possible reading of an open question predicts for a connection
 * that meets them.
 */
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string_view>

#include "calibrate/Bench.h"
#include "calibrate/Network.h"
#include "policy/Assumptions.h"

namespace Calibrate {

/// What is predicted of a connection.
enum class Expected {
  Passed,
  Denied,
  Silent,
  Stopped,  ///< whichever way: denied, silent or reset
};

/// "passed", "denied", "silent", "stopped"
std::string_view ExpectedText(Expected expected);
bool IsAs(Outcome outcome, Expected expected);

/// Predictions by reading.
using Predictions = std::array<Expected, 3>;

/// The same whatever the reading: a control.
constexpr Predictions Always(Expected expected) { return {expected, expected, expected}; }

/// Some filters, and a connection that meets them.
struct Case {
  std::string_view what;  ///< "a permit, then a block"
  std::span<const Rule> rules;
  Predictions predictions;
  Adding adding{};
  /// Without what it says the trial proves nothing, and is left out.
  bool isProof = false;
  /// The engine may refuse the filters; the other cases say enough.
  bool mayBeRefused = false;

  /// Whether every reading predicts the same.
  [[nodiscard]] bool IsControl() const {
    return predictions[0] == predictions[1] && predictions[0] == predictions[2];
  }
};

inline constexpr Path kTcpV4{Policy::IpVersion::V4, Policy::kTcp};
inline constexpr Path kUdpV4{Policy::IpVersion::V4, Policy::kUdp};
inline constexpr Path kTcpV6{Policy::IpVersion::V6, Policy::kTcp};
inline constexpr Path kUdpV6{Policy::IpVersion::V6, Policy::kUdp};
inline constexpr std::array kAllPaths{kTcpV4, kUdpV4, kTcpV6, kUdpV6};
inline constexpr std::array kUdpPaths{kUdpV4, kUdpV6};

/// Cases that belong together.
struct Trial {
  std::span<const Case> cases;
  std::span<const Path> paths;
  std::size_t rounds;       ///< how often; every second time from the last case to the first
  std::string_view lack{};  ///< what it means if the proofs fail: "the field has a value there"
};

/// A question about the engine with its trials.
struct Experiment {
  std::optional<Policy::Assumption> assumption;  ///< none: a finding beside the assumptions
  Policy::AssumptionText text;
  std::span<const Trial> trials;
};

/// What every experiment begins and ends with: filters of this program decide about its connections.
const Trial& Controls();
/// The same where connections are accepted.
const Trial& AcceptControls();

/// In the order in which they are done.
std::span<const Experiment> Experiments();

}  // namespace Calibrate
