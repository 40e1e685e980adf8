#include "Tests/Fuzz/AnswerServer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <ZolvaCheckoutKit/ZLVExport.h>

// These stand in for the C library's, for libcurl as well.

extern "C" ZLV_EXPORT int connect(int fd, const sockaddr* addr, socklen_t len) {
  const auto* internet = reinterpret_cast<const sockaddr_in*>(addr);  // NOLINT(*-reinterpret-cast)
  if (addr->sa_family != AF_INET || ntohl(internet->sin_addr.s_addr) != INADDR_LOOPBACK ||
      ntohs(internet->sin_port) != AnswerServer::shared().port()) {
    errno = ECONNREFUSED;
    return -1;
  }
  AnswerServer::shared().expectConnection();
  return static_cast<int>(syscall(SYS_connect, fd, addr, len));
}

extern "C" ZLV_EXPORT int getaddrinfo(const char* /*node*/, const char* /*service*/,
                                      const addrinfo* /*hints*/, addrinfo** /*result*/) {
  return EAI_FAIL;
}

namespace {

/// Reads up to the end of a request's header, or the first words of a TLS client.
void readRequest(int socket) {
  constexpr char handshake = 0x16;
  std::string request;
  for (std::array<char, 16384> bytes{}; !request.ends_with("\r\n\r\n");) {
    const auto count = recv(socket, bytes.data(), bytes.size(), 0);
    if (count <= 0) return;
    request.append(bytes.data(), static_cast<std::size_t>(count));
    if (request.starts_with(handshake)) return;
  }
}

void writeAnswer(int socket, std::string_view answer, std::size_t pieceSize) {
  while (!answer.empty()) {
    const auto piece = answer.substr(0, pieceSize);
    const auto sent = send(socket, piece.data(), piece.size(), MSG_NOSIGNAL);
    if (sent <= 0) return;
    answer.remove_prefix(static_cast<std::size_t>(sent));
    std::this_thread::yield();  // the client is to see the piece by itself
  }
}

}  // namespace

AnswerServer& AnswerServer::shared() {
  static auto& server = *new AnswerServer;
  return server;
}

AnswerServer::AnswerServer()
    : thread_([this] {
        for (int socket = -1;
             (socket = accept4(listener_.socket(), nullptr, nullptr, SOCK_CLOEXEC)) >= 0;)
          serve(socket);
      }) {}

void AnswerServer::prepare(std::vector<std::string> answers, std::size_t pieceSize) {
  const std::lock_guard lock(mutex_);
  answers_ = std::move(answers);
  pieceSize_ = pieceSize;
  next_ = 0;
}

void AnswerServer::finish() {
  std::unique_lock lock(mutex_);
  isIdle_.wait(lock, [this] { return expected_ == 0; });
}

void AnswerServer::expectConnection() {
  const std::lock_guard lock(mutex_);
  ++expected_;
}

void AnswerServer::serve(int socket) {
  std::unique_lock lock(mutex_);
  const auto answer = answers_[std::min(next_++, answers_.size() - 1)];
  const auto pieceSize = pieceSize_ == 0 ? std::string::npos : pieceSize_;
  lock.unlock();

  const int on = 1;
  setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  readRequest(socket);
  writeAnswer(socket, answer, pieceSize);
  close(socket);

  lock.lock();
  --expected_;
  isIdle_.notify_all();
}
