#include "calibrate/SocketNetwork.h"

#include <algorithm>

namespace Calibrate {
namespace {

constexpr std::chrono::milliseconds kTcpPatience{1500};
constexpr std::chrono::milliseconds kUdpPatience{300};

/// What is sent: a number that no other packet has, so that one that comes late is not taken for it.
using Word = UINT64;

Word NextWord() {
  static Word last = 0;
  return ++last;
}

/// @return 0, or the error.
int Send(const Socket& socket, Word word) {
  return send(socket.Get(), reinterpret_cast<const char*>(&word), int{sizeof(word)}, 0) == SOCKET_ERROR
             ? WSAGetLastError()
             : 0;
}

/// What came.
struct Received {
  int error = 0;
  bool isEnd = false;  ///< the other end has closed the connection
  Word word = 0;
};

Received Receive(const Socket& socket) {
  Received received;
  const int size = recv(socket.Get(), reinterpret_cast<char*>(&received.word), int{sizeof(received.word)}, 0);
  received.error = size == SOCKET_ERROR ? WSAGetLastError() : 0;
  received.isEnd = size == 0;
  return received;
}

/// Waits until a socket has the word.
Outcome Await(const Socket& socket, Word word, Deadline deadline) {
  for (;;) {
    Waiting waiting;
    waiting.ForReading(socket);
    if (!waiting.Until(deadline)) {
      return Outcome::Silent;
    }
    const Received received = Receive(socket);
    if (received.error != 0) {
      return OutcomeOf(received.error);
    }
    if (received.isEnd) {
      return Outcome::Reset;
    }
    if (received.word == word) {
      return Outcome::Passed;
    }
  }
}

}  // namespace

class SocketNetwork::SocketListener : public Listener {
 public:
  SocketListener(SocketNetwork& network, const Path& path) : network_(network), path_(path), socket_(path) {
    socket_.BindToOwnAddress(path);
    if (path.protocol == Policy::kTcp && listen(socket_.Get(), SOMAXCONN) != 0) {
      throw NetworkError("listen failed: " + std::to_string(WSAGetLastError()));
    }
    network_.listeners_.push_back(this);
  }
  ~SocketListener() override { network_.listeners_.remove(this); }

  [[nodiscard]] UINT16 Port() const override { return socket_.Port(); }
  [[nodiscard]] bool IsAt(const Path& path, UINT16 port) const { return path_ == path && Port() == port; }
  [[nodiscard]] const Socket& Get() const { return socket_; }

 private:
  SocketNetwork& network_;
  Path path_;
  Socket socket_;
};

/// A connection, from its beginning.
class SocketNetwork::SocketFlow : public Flow {
 public:
  /// @param listener null: somebody else's, or nobody's.
  SocketFlow(const Path& path, UINT16 port, const Socket* listener)
      : path_(path), port_(port), listener_(listener), client_(path) {}

  /// Connects and sends.
  Outcome Begin() {
    const int error = client_.Connect(path_, port_);
    if (error != 0 && error != WSAEWOULDBLOCK) {
      return OutcomeOf(error);
    }
    const Outcome outcome = path_.protocol == Policy::kTcp ? FinishConnecting() : Outcome::Passed;
    return outcome == Outcome::Passed ? Send() : outcome;
  }

  Outcome Send() override { return path_.protocol == Policy::kTcp ? SendOverTcp() : SendOverUdp(); }

 private:
  /// Until both ends are connected.
  Outcome FinishConnecting() {
    const Deadline deadline = std::chrono::steady_clock::now() + kTcpPatience;
    bool isConnected = false;
    while (!isConnected || !accepted_.IsOpen()) {
      Waiting waiting;
      if (!isConnected) {
        waiting.ForConnecting(client_);
      }
      if (listener_ != nullptr) {
        waiting.ForReading(*listener_);
      }
      if (isConnected && listener_ == nullptr) {
        return Outcome::Passed;
      }
      if (!waiting.Until(deadline)) {
        return Outcome::Silent;
      }
      if (waiting.HasFailed(client_)) {
        return OutcomeOf(client_.PendingError());
      }
      isConnected = isConnected || waiting.IsConnected(client_);
      if (listener_ != nullptr && waiting.CanRead(*listener_)) {
        Accept();
      }
    }
    return Outcome::Passed;
  }

  /// A connection that another probe has given up is closed.
  void Accept() {
    sockaddr_in6 peer{};
    int size = sizeof(peer);
    const SOCKET accepted = accept(listener_->Get(), reinterpret_cast<sockaddr*>(&peer), &size);
    if (accepted == INVALID_SOCKET) {
      return;
    }
    Socket socket(accepted);
    // The ports of both IP versions are at the same place.
    if (ntohs(peer.sin6_port) == client_.Port()) {
      accepted_ = std::move(socket);
    }
  }

  Outcome SendOverTcp() {
    const Deadline deadline = std::chrono::steady_clock::now() + kTcpPatience;
    const Word word = NextWord();
    if (const int error = Calibrate::Send(client_, word); error != 0) {
      return OutcomeOf(error);
    }
    if (!accepted_.IsOpen()) {
      return Outcome::Silent;
    }
    const Outcome there = Await(accepted_, word, deadline);
    if (there != Outcome::Passed) {
      return there;
    }
    if (const int error = Calibrate::Send(accepted_, word); error != 0) {
      return OutcomeOf(error);
    }
    return Await(client_, word, deadline);
  }

  Outcome SendOverUdp() {
    const Deadline deadline = std::chrono::steady_clock::now() + kUdpPatience;
    const Word word = NextWord();
    if (const int error = Calibrate::Send(client_, word); error != 0) {
      return OutcomeOf(error);
    }
    for (;;) {
      Waiting waiting;
      waiting.ForReading(client_);
      if (listener_ != nullptr) {
        waiting.ForReading(*listener_);
      }
      if (!waiting.Until(deadline)) {
        return Outcome::Silent;
      }
      if (waiting.CanRead(client_) && Receive(client_).error == WSAECONNRESET) {
        return Outcome::Refused;
      }
      if (listener_ != nullptr && waiting.CanRead(*listener_) && Receive(*listener_).word == word) {
        return Outcome::Passed;
      }
    }
  }

  Path path_;
  UINT16 port_;
  const Socket* listener_;
  Socket client_;
  Socket accepted_;
};

SocketNetwork::SocketNetwork() {
  WSADATA data{};
  const int error = WSAStartup(MAKEWORD(2, 2), &data);
  if (error != 0) {
    throw NetworkError("WSAStartup failed: " + std::to_string(error));
  }
}

SocketNetwork::~SocketNetwork() { WSACleanup(); }

std::unique_ptr<Listener> SocketNetwork::Listen(const Path& path) {
  return std::make_unique<SocketListener>(*this, path);
}

Outcome SocketNetwork::Probe(const Path& path, UINT16 port) {
  return SocketFlow(path, port, Listening(path, port)).Begin();
}

std::unique_ptr<Flow> SocketNetwork::Open(const Path& path, UINT16 port) {
  auto flow = std::make_unique<SocketFlow>(path, port, Listening(path, port));
  if (flow->Begin() != Outcome::Passed) {
    return nullptr;
  }
  return flow;
}

const Socket* SocketNetwork::Listening(const Path& path, UINT16 port) const {
  const auto found = std::ranges::find_if(
      listeners_, [&](const SocketListener* listener) { return listener->IsAt(path, port); });
  return found == listeners_.end() ? nullptr : &(*found)->Get();
}

}  // namespace Calibrate
