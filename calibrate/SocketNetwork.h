/**
 * @file
 * Connections with Windows sockets.
 */
#pragma once

#include <WfpPlatform.h>

#include <list>
#include <memory>

#include "calibrate/Network.h"
#include "calibrate/Socket.h"

namespace Calibrate {

/// Real connections of this program with itself. It listens at 127.0.0.1 and ::1 only, so that no firewall
/// asks its user, and waits 1.5 seconds for TCP and 0.3 for UDP.
class SocketNetwork : public Network {
 public:
  /// @throws NetworkError
  SocketNetwork();
  ~SocketNetwork() override;

  std::unique_ptr<Listener> Listen(const Path& path) override;
  Outcome Probe(const Path& path, UINT16 port) override;
  std::unique_ptr<Flow> Open(const Path& path, UINT16 port) override;

 private:
  class SocketListener;
  class SocketFlow;

  /// The socket that listens on a port; null for somebody else's.
  [[nodiscard]] const Socket* Listening(const Path& path, UINT16 port) const;

  std::list<const SocketListener*> listeners_;
};

}  // namespace Calibrate
