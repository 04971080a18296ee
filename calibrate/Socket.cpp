#include "calibrate/Socket.h"

#include <algorithm>

namespace Calibrate {
namespace {

/// An address of either IP version.
union AnyAddress {
  sockaddr any;
  sockaddr_in v4;
  sockaddr_in6 v6;
};

int SizeOf(const Path& path) {
  return path.ipVersion == Policy::IpVersion::V4 ? int{sizeof(sockaddr_in)} : int{sizeof(sockaddr_in6)};
}

/// A port at 127.0.0.1 or ::1.
AnyAddress OwnAddress(const Path& path, UINT16 port) {
  AnyAddress address{};
  if (path.ipVersion == Policy::IpVersion::V4) {
    address.v4 = {};
    address.v4.sin_family = AF_INET;
    address.v4.sin_port = htons(port);
    address.v4.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  } else {
    address.v6 = {};
    address.v6.sin6_family = AF_INET6;
    address.v6.sin6_port = htons(port);
    address.v6.sin6_addr.s6_addr[15] = 1;
  }
  return address;
}

[[noreturn]] void Fail(const std::string& function, int error) {
  throw NetworkError(function + " failed: " + std::to_string(error));
}

void Check(int result, const char* function) {
  if (result != 0) {
    Fail(function, WSAGetLastError());
  }
}

SOCKET Open(const Path& path) {
  const int family = path.ipVersion == Policy::IpVersion::V4 ? AF_INET : AF_INET6;
  return path.protocol == Policy::kTcp ? socket(family, SOCK_STREAM, IPPROTO_TCP)
                                       : socket(family, SOCK_DGRAM, IPPROTO_UDP);
}

}  // namespace

Socket::Socket(const Path& path) : Socket(Open(path)) {
  if (path.protocol == Policy::kTcp) {
    const linger none{1, 0};
    setsockopt(socket_, SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&none), int{sizeof(none)});
  }
}

Socket::Socket(SOCKET socket) : socket_(socket) {
  if (!IsOpen()) {
    Fail("socket", WSAGetLastError());
  }
  u_long isNonBlocking = 1;
  // The destructor does not run for a constructor that throws.
  if (ioctlsocket(socket_, static_cast<long>(FIONBIO), &isNonBlocking) != 0) {
    const int error = WSAGetLastError();
    closesocket(socket_);
    Fail("ioctlsocket", error);
  }
}

Socket::~Socket() {
  if (IsOpen()) {
    closesocket(socket_);
  }
}

void Socket::BindToOwnAddress(const Path& path) const {
  const BOOL isExclusive = TRUE;
  Check(setsockopt(socket_, SOL_SOCKET, SO_EXCLUSIVEADDRUSE, reinterpret_cast<const char*>(&isExclusive),
                   int{sizeof(isExclusive)}),
        "setsockopt");
  const AnyAddress address = OwnAddress(path, 0);
  Check(bind(socket_, &address.any, SizeOf(path)), "bind");
}

int Socket::Connect(const Path& path, UINT16 port) const {
  const AnyAddress address = OwnAddress(path, port);
  return connect(socket_, &address.any, SizeOf(path)) == 0 ? 0 : WSAGetLastError();
}

UINT16 Socket::Port() const {
  AnyAddress address{};
  int size = sizeof(address);
  Check(getsockname(socket_, &address.any, &size), "getsockname");
  // The ports of both versions are at the same place.
  return ntohs(address.v4.sin_port);
}

int Socket::PendingError() const {
  int error = 0;
  int size = sizeof(error);
  Check(getsockopt(socket_, SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&error), &size), "getsockopt");
  return error;
}

bool Waiting::Until(Deadline deadline) {
  const auto left = std::chrono::duration_cast<std::chrono::microseconds>(
      std::max(deadline - std::chrono::steady_clock::now(), std::chrono::steady_clock::duration::zero()));
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
  timeval time{};
  time.tv_sec = static_cast<long>(seconds.count());
  time.tv_usec = static_cast<long>((left - seconds).count());
  const int ready = select(0, &reads_, &writes_, &failures_, &time);
  if (ready == SOCKET_ERROR) {
    Fail("select", WSAGetLastError());
  }
  return ready > 0;
}

void Waiting::Add(const Socket& socket, fd_set& set) {
  if (socket.IsOpen()) {
    set.fd_array[set.fd_count++] = socket.Get();
  }
}

bool Waiting::Has(const Socket& socket, const fd_set& set) {
  return std::find(set.fd_array, set.fd_array + set.fd_count, socket.Get()) != set.fd_array + set.fd_count;
}

Outcome OutcomeOf(int error) {
  switch (error) {
    case WSAEACCES:
      return Outcome::Denied;
    case WSAETIMEDOUT:
      return Outcome::Silent;
    case WSAECONNREFUSED:
      return Outcome::Refused;
    case WSAECONNRESET:
    case WSAECONNABORTED:
      return Outcome::Reset;
    default:
      Fail("connecting", error);
  }
}

}  // namespace Calibrate
