#include <algorithm>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVCurlSockets.h>

namespace {

/// An address that does not answer for so long is left for the next one.
constexpr auto patience = std::chrono::milliseconds(700);

/// What is not acknowledged for so long is lost, in milliseconds.
constexpr unsigned int acknowledgement = 60'000;

bool isConnected(curl_socket_t socket) {
  sockaddr_storage peer{};
  socklen_t size = sizeof peer;
  return getpeername(socket, reinterpret_cast<sockaddr*>(&peer), &size) == 0;  // NOLINT(*-cast)
}

std::string text(CURL* transfer, CURLINFO item) {
  const char* value = nullptr;
  return curl_easy_getinfo(transfer, item, &value) == CURLE_OK && value != nullptr ? value : "";
}

long number(CURL* transfer, CURLINFO item) {
  long value = 0;
  curl_easy_getinfo(transfer, item, &value);
  return value;
}

}  // namespace

curl_socket_t ZLVCurlSockets::open(const curl_sockaddr& address, Manner& manner) {
  const auto made = socket(address.family, address.socktype | SOCK_CLOEXEC, address.protocol);
  if (made == CURL_SOCKET_BAD) return made;
  setsockopt(made, IPPROTO_TCP, TCP_USER_TIMEOUT, &acknowledgement, sizeof acknowledgement);
  attempts_.push_back({made, Clock::now(), &manner});
  return made;
}

int ZLVCurlSockets::close(void* self, curl_socket_t socket) {
  auto& sockets = *static_cast<ZLVCurlSockets*>(self);
  const auto is = [socket](const auto& entry) { return entry.socket == socket; };
  std::erase_if(sockets.attempts_, is);
  std::erase_if(sockets.kept_, is);
  return ::close(socket);
}

void ZLVCurlSockets::settle(const Manner& manner) {
  std::erase_if(attempts_, [&](const Attempt& attempt) { return attempt.manner == &manner; });
}

bool ZLVCurlSockets::checkAttempts() {
  if (attempts_.empty()) return false;
  const auto latest = Clock::now() - patience;
  for (const auto& [socket, start, manner] : attempts_) {
    if (!manner->isHasty || start > latest || isConnected(socket)) continue;
    shutdown(socket, SHUT_RDWR);  // and libcurl sees the attempt fail
    manner->hasGivenUp = true;
  }
  return true;
}

void ZLVCurlSockets::keep(CURL* transfer) {
  if (number(transfer, CURLINFO_NUM_CONNECTS) == 0) return;  // noted before
  if (number(transfer, CURLINFO_HTTP_VERSION) >= CURL_HTTP_VERSION_2_0) return;
  Kept kept{.localPort = number(transfer, CURLINFO_LOCAL_PORT),
            .peerPort = number(transfer, CURLINFO_PRIMARY_PORT),
            .local = text(transfer, CURLINFO_LOCAL_IP),
            .peer = text(transfer, CURLINFO_PRIMARY_IP)};
  curl_easy_getinfo(transfer, CURLINFO_ACTIVESOCKET, &kept.socket);
  if (kept.socket != CURL_SOCKET_BAD) kept_.push_back(std::move(kept));
}

bool ZLVCurlSockets::isReadable(const char* local, int localPort, const char* peer,
                                int peerPort) const {
  const auto found = std::ranges::find_if(kept_, [&](const Kept& kept) {
    return kept.localPort == localPort && kept.peerPort == peerPort && kept.local == local &&
           kept.peer == peer;
  });
  if (found == kept_.end()) return false;
  pollfd event{found->socket, POLLIN | POLLRDHUP, 0};
  return poll(&event, 1, 0) != 0;
}
