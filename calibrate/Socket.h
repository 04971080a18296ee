/**
 * @file
 * Windows sockets that do not block, as far as experiments need them.
 */
#pragma once

#include <WfpPlatform.h>

#include <chrono>
#include <utility>

#include "calibrate/Network.h"

namespace Calibrate {

using Deadline = std::chrono::steady_clock::time_point;

/// A socket. It is closed without lingering, so that its port is free at once.
class Socket {
 public:
  Socket() = default;
  /// @throws NetworkError
  explicit Socket(const Path& path);
  /// Takes a socket over, and makes it one that does not block.
  explicit Socket(SOCKET socket);
  Socket(Socket&& other) noexcept : socket_(std::exchange(other.socket_, INVALID_SOCKET)) {}
  Socket& operator=(Socket&& other) noexcept {
    std::swap(socket_, other.socket_);
    return *this;
  }
  Socket(const Socket&) = delete;
  Socket& operator=(const Socket&) = delete;
  ~Socket();

  [[nodiscard]] SOCKET Get() const { return socket_; }
  [[nodiscard]] bool IsOpen() const { return socket_ != INVALID_SOCKET; }

  /// Binds it to a free port of this machine's own address, for nobody else.
  /// @throws NetworkError
  void BindToOwnAddress(const Path& path) const;
  /// @return 0, or the error.
  [[nodiscard]] int Connect(const Path& path, UINT16 port) const;
  /// The port at this end.
  [[nodiscard]] UINT16 Port() const;
  /// What became of a connection that was begun.
  [[nodiscard]] int PendingError() const;

 private:
  SOCKET socket_ = INVALID_SOCKET;
};

/// Waits until something happens to one of some sockets.
class Waiting {
 public:
  void ForReading(const Socket& socket) { Add(socket, reads_); }
  /// Also for the failure of a connection that was begun.
  void ForConnecting(const Socket& socket) {
    Add(socket, writes_);
    Add(socket, failures_);
  }
  /// @return false when nothing has happened until then.
  bool Until(Deadline deadline);
  [[nodiscard]] bool CanRead(const Socket& socket) const { return Has(socket, reads_); }
  [[nodiscard]] bool IsConnected(const Socket& socket) const { return Has(socket, writes_); }
  [[nodiscard]] bool HasFailed(const Socket& socket) const { return Has(socket, failures_); }

 private:
  static void Add(const Socket& socket, fd_set& set);
  static bool Has(const Socket& socket, const fd_set& set);

  fd_set reads_{};
  fd_set writes_{};
  fd_set failures_{};
};

/// What an error of a connection means.
/// @throws NetworkError for one that no filter brings about.
Outcome OutcomeOf(int error);

}  // namespace Calibrate
