/**
 * @file
 * Connections that are made in thought: what the engine holds decides, in a world of one's choice.
 */
#pragma once

#include <chrono>
#include <set>
#include <string>
#include <utility>

#include "calibrate/Network.h"
#include "policy/Assumptions.h"
#include "policy/Circumstances.h"
#include "policy/EngineCalls.h"
#include "policy/Snapshot.h"

namespace Calibrate {

/// How long a probe waits for an answer.
inline constexpr std::chrono::milliseconds kTcpDeadline{1500};
inline constexpr std::chrono::milliseconds kUdpDeadline{300};

/// A connection that was opened passes ALE_AUTH_CONNECT, then ALE_AUTH_RECV_ACCEPT, then
/// ALE_FLOW_ESTABLISHED at both ends. After a change of the filters of a layer the next packet of a
/// connection is judged there anew.
class SimulatedNetwork : public Network {
 public:
  /// @param application the bytes of the id of the program that connects and listens.
  SimulatedNetwork(const Policy::EngineCalls& engine, Policy::World world, std::string application);

  std::unique_ptr<Listener> Listen(const Path& path) override;
  Outcome Probe(const Path& path, UINT16 port) override;
  std::unique_ptr<Flow> Open(const Path& path, UINT16 port) override;

  /// How long real probes would have waited in vain so far.
  [[nodiscard]] std::chrono::milliseconds Waited() const { return waited_; }

 private:
  class SimulatedListener;
  class SimulatedFlow;

  /// One of the two ends, as the engine sees it.
  [[nodiscard]] Policy::Connection End(Policy::Direction direction, const Path& path, UINT16 port) const;

  Policy::EngineCalls engine_;
  Policy::World world_;
  std::string application_;
  Policy::Circumstances circumstances_;
  std::set<std::pair<bool, UINT16>> open_;  ///< ports that are listened on, of UDP and of TCP
  UINT16 lastPort_ = 50000;
  std::chrono::milliseconds waited_{0};
};

}  // namespace Calibrate
