#include <algorithm>

#include <poll.h>
#include <strings.h>
#include <sys/socket.h>
#include <unistd.h>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlSockets.h>

namespace {

/// An address that does not answer for so long is left for the next one.
constexpr auto patience = std::chrono::milliseconds(700);

/// How often libcurl is driven while it has all the time to connect.
constexpr auto often = std::chrono::milliseconds(100);

/// What is not acknowledged for so long is lost.
constexpr std::chrono::minutes acknowledgement(1);

bool isConnected(curl_socket_t socket) {
  sockaddr_storage peer{};
  socklen_t size = sizeof peer;
  return getpeername(socket, reinterpret_cast<sockaddr*>(&peer), &size) == 0;  // NOLINT(*-cast)
}

bool isReadable(curl_socket_t socket) {
  pollfd event{socket, POLLIN, 0};
  return poll(&event, 1, 0) != 0;
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
  if (made == CURL_SOCKET_BAD) return made;
  const auto first = Clock::now() + (attempt.isHasty ? patience : often);
  attempt.sockets.push_back(made);
  const auto needed = static_cast<std::size_t>(made) + 1;
  if (sockets_.size() < needed) sockets_.resize(std::max(needed, 2 * sockets_.size()));
  at(made) = {true, &attempt, looks_.emplace(first, made)};
  return made;
}

int ZLVCurlSockets::close(void* self, curl_socket_t socket) {
  auto& sockets = *static_cast<ZLVCurlSockets*>(self);
  sockets.readiness_.forget(socket);
  if (sockets.has(socket)) {
    auto& [isOpen, attempt, look, localPort, peerPort, rule] = sockets.at(socket);
    if (attempt != nullptr) {
      std::erase(attempt->sockets, socket);
      if (attempt->sockets.empty()) sockets.stranded_.push_back(attempt->transfer);
    }
    if (look != sockets.looks_.end()) sockets.looks_.erase(look);
    if (rule == Rule::OnlyItsEnd) --sockets.unused_;
    const auto [begin, end] = sockets.settled_.equal_range(localPort);
    const auto entry =
        std::find_if(begin, end, [socket](const auto& item) { return item.second == socket; });
    if (entry != end) sockets.settled_.erase(entry);
    isOpen = false;
  }
  return ::close(socket);
}

void ZLVCurlSockets::settle(Attempt& attempt, int localPort, int peerPort) {
  for (const curl_socket_t socket : attempt.sockets) {
    Socket& entry = at(socket);
    if (entry.look != looks_.end()) looks_.erase(entry.look);
    entry = {true, nullptr, looks_.end(), localPort, peerPort};
    settled_.emplace(localPort, socket);
  }
  attempt.sockets.clear();
}

ZLVCurlSockets::Clock::time_point ZLVCurlSockets::nextLook() const {
  return looks_.empty() ? Clock::time_point::max() : looks_.begin()->first;
}

curl_socket_t ZLVCurlSockets::lookAtAttempts() {
  for (const auto now = Clock::now(); nextLook() <= now;) {
    auto look = looks_.extract(looks_.begin());
    const curl_socket_t socket = look.mapped();
    Socket& entry = at(socket);
    entry.look = looks_.end();
    if (isConnected(socket)) continue;
    if (!entry.attempt->isHasty) {
      look.key() = now + often;
      entry.look = looks_.insert(std::move(look));
      return socket;
    }
    shutdown(socket, SHUT_RDWR);  // and libcurl sees the attempt fail
    entry.attempt->isGivenUp = true;
  }
  return CURL_SOCKET_BAD;
}

void ZLVCurlSockets::keep(CURL* transfer) {
  if (number(transfer, CURLINFO_NUM_CONNECTS) == 0 && unused_ == 0) return;  // noted before
  setRule(transfer, number(transfer, CURLINFO_HTTP_VERSION) >= CURL_HTTP_VERSION_2_0
                        ? Rule::None
                        : Rule::NothingToRead);
}

void ZLVCurlSockets::keepUnused(CURL* transfer) {
  char* scheme = nullptr;
  curl_easy_getinfo(transfer, CURLINFO_SCHEME, &scheme);
  const bool isSecure = scheme != nullptr && strcasecmp(scheme, "https") == 0;
  setRule(transfer, isSecure ? Rule::OnlyItsEnd : Rule::NothingToRead);
}

void ZLVCurlSockets::setRule(CURL* transfer, Rule rule) {
  const auto peerPort = number(transfer, CURLINFO_PRIMARY_PORT);
  const auto [begin, end] =
      settled_.equal_range(static_cast<int>(number(transfer, CURLINFO_LOCAL_PORT)));
  // Hosts may have the ports in common; then the strictest counts for all of them.
  for (auto item = begin; item != end; ++item) {
    Socket& entry = at(item->second);
    if (entry.peerPort != peerPort || entry.rule == Rule::NothingToRead) continue;
    unused_ += (rule == Rule::OnlyItsEnd ? 1 : 0) - (entry.rule == Rule::OnlyItsEnd ? 1 : 0);
    entry.rule = rule;
  }
}

bool ZLVCurlSockets::isSpoilt(int localPort, int peerPort) const {
  const auto [begin, end] = settled_.equal_range(localPort);
  return std::any_of(begin, end, [&](const auto& item) {
    const Socket& entry = at(item.second);
    if (entry.peerPort != peerPort) return false;
    if (entry.rule == Rule::OnlyItsEnd) return ZLVCurlSystem::hasEnded(item.second);
    return entry.rule == Rule::NothingToRead && isReadable(item.second);
  });
}
