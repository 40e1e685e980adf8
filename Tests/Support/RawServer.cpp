#include "RawServer.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <utility>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

struct RawServer::Connection {
  int socket = -1;
  std::thread thread = {};
  std::unique_ptr<SSL, decltype(&SSL_free)> tls{nullptr, &SSL_free};

  int read(char* bytes, int size) const {
    if (tls) return SSL_read(tls.get(), bytes, size);
    return static_cast<int>(recv(socket, bytes, static_cast<std::size_t>(size), 0));
  }

  bool write(const std::string& bytes) const {
    for (std::size_t done = 0; done < bytes.size();) {
      const auto left = bytes.size() - done;
      const auto sent = tls ? SSL_write(tls.get(), &bytes[done], static_cast<int>(left))
                            : send(socket, &bytes[done], left, MSG_NOSIGNAL);
      if (sent <= 0) return false;
      done += static_cast<std::size_t>(sent);
    }
    return true;
  }

  /// Waits for the client to hang up; whether it has not.
  bool isWanted(std::chrono::milliseconds patience) const {
    pollfd event{socket, POLLRDHUP, 0};
    return poll(&event, 1, static_cast<int>(patience.count())) == 0;
  }

  /// Moves one request from `buffer`, filled from the connection, to `request`.
  bool readRequest(std::string& buffer, std::string& request) const {
    constexpr char handshake = 0x16;
    for (char bytes[4096];;) {
      if (buffer.starts_with(handshake)) {
        request = std::exchange(buffer, {});
        return true;
      }
      const auto head = buffer.find("\r\n\r\n");
      if (head != std::string::npos) {
        const auto field = buffer.find("Content-Length: ");
        const auto body = field < head ? std::strtoul(&buffer[field + 16], nullptr, 10) : 0;
        if (const auto size = head + 4 + body; buffer.size() >= size) {
          request = buffer.substr(0, size);
          buffer.erase(0, size);
          return true;
        }
      }
      const int count = read(bytes, sizeof bytes);
      if (count <= 0) return false;
      buffer.append(bytes, static_cast<std::size_t>(count));
    }
  }
};

SilentListener::SilentListener() : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  auto* name = reinterpret_cast<sockaddr*>(&address);  // NOLINT(*-reinterpret-cast)
  socklen_t size = sizeof address;
  if (bind(socket_, name, size) != 0 || listen(socket_, SOMAXCONN) != 0 ||
      getsockname(socket_, name, &size) != 0) {
    throw std::runtime_error("cannot listen on 127.0.0.1");
  }
  port_ = ntohs(address.sin_port);
}

SilentListener::~SilentListener() { close(socket_); }

RawServer::RawServer(Script script, std::shared_ptr<SSL_CTX> context)
    : script_(std::move(script)), context_(std::move(context)), acceptor_([this] { accept(); }) {}

RawServer::~RawServer() {
  stopListening();
  acceptor_.join();
  {
    const std::lock_guard lock(mutex_);
    for (const auto& connection : open_) shutdown(connection.socket, SHUT_RDWR);
  }
  for (auto& connection : open_) {
    connection.thread.join();
    close(connection.socket);
  }
}

std::string RawServer::url(const std::string& path) const {
  return (context_ ? "https" : "http") + ("://127.0.0.1:" + std::to_string(port())) + path;
}

std::vector<std::string> RawServer::requests() const {
  const std::lock_guard lock(mutex_);
  return requests_;
}

std::vector<int> RawServer::clients() const {
  std::vector<int> sockets;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    const int descriptor = std::stoi(entry.path().filename());
    sockaddr_in peer{};
    socklen_t size = sizeof peer;
    // NOLINTNEXTLINE(*-reinterpret-cast)
    if (getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &size) == 0 &&
        peer.sin_family == AF_INET && ntohs(peer.sin_port) == port()) {
      sockets.push_back(descriptor);
    }
  }
  return sockets;
}

void RawServer::stopListening() { shutdown(listener_.socket(), SHUT_RDWR); }

void RawServer::accept() {
  for (int socket = 0;
       (socket = accept4(listener_.socket(), nullptr, nullptr, SOCK_CLOEXEC)) >= 0;) {
    ++connections_;
    const std::lock_guard lock(mutex_);
    auto& connection = open_.emplace_back();
    connection.socket = socket;
    connection.thread = std::thread([this, &connection] { serve(connection); });
  }
}

void RawServer::serve(Connection& connection) {
  sigset_t brokenPipe;  // from a write below TLS
  sigemptyset(&brokenPipe);
  sigaddset(&brokenPipe, SIGPIPE);
  pthread_sigmask(SIG_BLOCK, &brokenPipe, nullptr);

  // The connection's socket stays open until the server goes, so that its number is not reused;
  // ending it is a matter of shutting it down.
  if (context_) {
    connection.tls.reset(SSL_new(context_.get()));
    SSL_set_fd(connection.tls.get(), connection.socket);
    if (SSL_accept(connection.tls.get()) != 1) {
      shutdown(connection.socket, SHUT_RDWR);
      return;
    }
  }
  Then then = Then::Keep;
  std::string buffer;
  std::string request;
  while (then == Then::Keep && connection.readRequest(buffer, request)) {
    {
      const std::lock_guard lock(mutex_);
      requests_.push_back(request);
    }
    const Reply reply = script_(request);
    connection.write(reply.bytes);
    while (!reply.repeated.empty() && connection.write(reply.repeated) &&
           connection.isWanted(reply.pause)) {
    }
    if (reply.gate) reply.gate();
    connection.write(reply.late);
    then = reply.then;
  }
  if (then == Then::Stall) return;
  if (then == Then::Reset) {
    // Dissolving the association resets the connection; see connect(2).
    sockaddr unspecified{};
    unspecified.sa_family = AF_UNSPEC;
    (void)connect(connection.socket, &unspecified, sizeof unspecified);
  }
  shutdown(connection.socket, SHUT_RDWR);
}

std::string RawServer::response(const std::string& body, const std::string& status,
                                const std::string& headers) {
  return "HTTP/1.1 " + status + "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" +
         headers + "\r\n" + body;
}

std::string RawServer::redirect(int status, const std::string& location) {
  return response("moved", std::to_string(status) + " Elsewhere", "Location: " + location + "\r\n");
}
