/**
 * @file
 * The connections of experiments: of this program with itself, over loopback.
 */
#pragma once

#include <WfpPlatform.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "policy/Address.h"
#include "policy/Connection.h"

namespace Calibrate {

/// What kind of connection.
struct Path {
  Policy::IpVersion ipVersion;
  UINT8 protocol;  ///< TCP or UDP

  bool operator==(const Path&) const = default;
};

/// "TCP over IPv4"
std::string Describe(const Path& path);

/// What became of a connection.
enum class Outcome {
  Passed,   ///< data arrived; of TCP, and its echo came back
  Denied,   ///< the system refused to send or to connect at once
  Silent,   ///< nothing came within the time that a probe waits
  Refused,  ///< nobody listens there
  Reset,    ///< it was connected and then broken off
  Unknown,  ///< simulated only: filters decide that only the engine can judge
};

/// "passed", "denied", "silent", "refused", "reset", "unknown"
std::string_view OutcomeText(Outcome outcome);

/// The system refused something that experiments need, such as a port to listen on.
class NetworkError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A port of one's own at 127.0.0.1 or ::1. It listens as long as this object lives.
class Listener {
 public:
  Listener() = default;
  virtual ~Listener() = default;
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  [[nodiscard]] virtual UINT16 Port() const = 0;
};

/// A connection that passed and stays. It must not outlive its listener.
class Flow {
 public:
  Flow() = default;
  virtual ~Flow() = default;
  Flow(const Flow&) = delete;
  Flow& operator=(const Flow&) = delete;

  /// Sends once more from the end that connected.
  virtual Outcome Send() = 0;
};

/// Makes connections, one after the other. All of it throws NetworkError.
class Network {
 public:
  Network() = default;
  virtual ~Network() = default;
  Network(const Network&) = delete;
  Network& operator=(const Network&) = delete;

  virtual std::unique_ptr<Listener> Listen(const Path& path) = 0;
  /// Connects to a port with a new socket, and sends.
  virtual Outcome Probe(const Path& path, UINT16 port) = 0;
  /// The same, and keeps the connection.
  /// @return null unless it passed.
  virtual std::unique_ptr<Flow> Open(const Path& path, UINT16 port) = 0;
};

}  // namespace Calibrate
