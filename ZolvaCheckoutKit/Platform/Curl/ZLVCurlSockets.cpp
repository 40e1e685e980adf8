#include <algorithm>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlSockets.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlSystem.h>

namespace {

/// An address that does not answer for so long is left for the next one.
constexpr auto patience = std::chrono::milliseconds(700);

/// What is not acknowledged for so long is lost.
constexpr std::chrono::minutes acknowledgement(1);

bool isConnected(curl_socket_t socket) {
  sockaddr_storage peer{};
  socklen_t size = sizeof peer;
  return getpeername(socket, reinterpret_cast<sockaddr*>(&peer), &size) == 0;  // NOLINT(*-cast)
}

long number(CURL* transfer, CURLINFO item) {
  long value = 0;
  curl_easy_getinfo(transfer, item, &value);
  return value;
}

}  // namespace

curl_socket_t ZLVCurlSockets::open(const curl_sockaddr& address, Attempt& attempt) {
  const curl_socket_t made = ZLVCurlSystem::openSocket(address.family, address.socktype,
                                                       address.protocol, acknowledgement);
  if (made != CURL_SOCKET_BAD) sockets_.push_back({made, Clock::now(), &attempt});
  return made;
}

int ZLVCurlSockets::close(void* self, curl_socket_t socket) {
  std::erase_if(static_cast<ZLVCurlSockets*>(self)->sockets_,
                [socket](const Socket& entry) { return entry.socket == socket; });
  return ::close(socket);
}

void ZLVCurlSockets::settle(const Attempt& attempt) {
  for (Socket& entry : sockets_) {
    if (entry.attempt == &attempt) entry.attempt = nullptr;
  }
}

bool ZLVCurlSockets::hasAttempts() const {
  return std::ranges::any_of(sockets_,
                             [](const Socket& entry) { return entry.attempt != nullptr; });
}

void ZLVCurlSockets::giveUpSlow() {
  const auto latest = Clock::now() - patience;
  for (const Socket& entry : sockets_) {
    if (entry.attempt == nullptr || !entry.attempt->isHasty) continue;
    if (entry.start > latest || isConnected(entry.socket)) continue;
    shutdown(entry.socket, SHUT_RDWR);  // and libcurl sees the attempt fail
    entry.attempt->isGivenUp = true;
  }
}

void ZLVCurlSockets::keep(CURL* transfer) {
  if (number(transfer, CURLINFO_NUM_CONNECTS) == 0) return;  // noted before
  if (number(transfer, CURLINFO_HTTP_VERSION) >= CURL_HTTP_VERSION_2_0) return;
  curl_socket_t kept = CURL_SOCKET_BAD;
  curl_easy_getinfo(transfer, CURLINFO_ACTIVESOCKET, &kept);
  const auto entry = std::ranges::find(sockets_, kept, &Socket::socket);
  if (entry == sockets_.end()) return;
  entry->localPort = number(transfer, CURLINFO_LOCAL_PORT);
  entry->peerPort = number(transfer, CURLINFO_PRIMARY_PORT);
}

bool ZLVCurlSockets::isReadable(int localPort, int peerPort) const {
  // Hosts may have the ports in common; then all of them are looked at.
  return std::ranges::any_of(sockets_, [=](const Socket& entry) {
    pollfd event{entry.socket, POLLIN, 0};
    return entry.localPort == localPort && entry.peerPort == peerPort && poll(&event, 1, 0) != 0;
  });
}
