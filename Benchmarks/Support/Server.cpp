#include "Benchmarks/Support/Server.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <system_error>
#include <unordered_map>
#include <unordered_set>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/epoll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

int checked(int result, const char* call) {
  if (result < 0) throw std::system_error(errno, std::generic_category(), call);
  return result;
}

/// The size of the first request in `text`, body included, or 0 while it is not whole.
std::size_t requestSize(std::string_view text) {
  constexpr std::string_view end = "\r\n\r\n";
  constexpr std::string_view lengthField = "Content-Length: ";
  const auto headSize = text.find(end);
  if (headSize == std::string_view::npos) return 0;
  std::size_t bodySize = 0;
  const auto field = text.substr(0, headSize).find(lengthField);
  if (field != std::string_view::npos) {
    std::from_chars(text.data() + field + lengthField.size(), text.data() + headSize, bodySize);
  }
  const auto size = headSize + end.size() + bodySize;
  return size <= text.size() ? size : 0;
}

class Server {
 public:
  Server(const Answers& answers, int hosts)
      : answers_(answers), epoll_(checked(epoll_create1(0), "epoll_create1")) {
    for (int host = 0; host < hosts; ++host) listen(INADDR_LOOPBACK + static_cast<in_addr_t>(host));
  }

  [[nodiscard]] int port() const { return port_; }

  [[noreturn]] void run() {
    for (std::array<epoll_event, 256> events{};;) {
      const int count = epoll_wait(epoll_, events.data(), events.size(), -1);
      for (int i = 0; i < count; ++i) {
        const int ready = events[static_cast<std::size_t>(i)].data.fd;
        if (listeners_.contains(ready)) {
          accept(ready);
        } else if (const auto then = serve(ready); then != Answer::Then::Keep) {
          hangUp(ready, then);
        }
      }
    }
  }

 private:
  void listen(in_addr_t host) {
    const int listener = checked(socket(AF_INET, SOCK_STREAM, 0), "socket");
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(host);
    address.sin_port = htons(static_cast<in_port_t>(port_));
    socklen_t size = sizeof address;
    auto* const name = static_cast<sockaddr*>(static_cast<void*>(&address));
    checked(bind(listener, name, size), "bind");
    checked(::listen(listener, SOMAXCONN), "listen");
    checked(getsockname(listener, name, &size), "getsockname");
    port_ = ntohs(address.sin_port);
    listeners_.insert(listener);
    watch(listener);
  }

  void watch(int descriptor) const {
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = descriptor;
    checked(epoll_ctl(epoll_, EPOLL_CTL_ADD, descriptor, &event), "epoll_ctl");
  }

  void accept(int listener) const {
    const int client = checked(::accept(listener, nullptr, nullptr), "accept");
    const int yes = 1;
    setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    watch(client);
  }

  void hangUp(int client, Answer::Then how) {
    const linger atOnce{how == Answer::Then::Reset ? 1 : 0, 0};
    setsockopt(client, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    close(client);
    inputs_.erase(client);
  }

  /// Reads what has come and answers a request that is whole. What is sent is small enough not to
  /// wait for the client.
  Answer::Then serve(int client) {
    std::array<char, 16384> bytes;  // NOLINT(*-member-init): filled by recv
    const auto count = recv(client, bytes.data(), bytes.size(), 0);
    if (count <= 0) return Answer::Then::Close;
    auto& input = inputs_[client];
    input.append(bytes.data(), static_cast<std::size_t>(count));
    const auto size = requestSize(input);
    if (size == 0) return Answer::Then::Keep;
    input.erase(0, size);
    const auto [answer, then] = answers_();
    send(client, answer.data(), answer.size(), MSG_NOSIGNAL);
    return then;
  }

  const Answers& answers_;
  int epoll_;
  std::unordered_set<int> listeners_;
  int port_ = 0;
  std::unordered_map<int, std::string> inputs_;  // not yet answered
};

}  // namespace

void serveHTTP(const Answers& answers, const TellPort& tellPort, int hosts) {
  Server server(answers, hosts);
  tellPort(server.port());
  server.run();
}

std::string response(std::string_view body) {
  std::string text = "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: ";
  return text.append(std::to_string(body.size())).append("\r\n\r\n").append(body);
}

ForkedServer::ForkedServer(const std::function<void(const TellPort&)>& serve) {
  std::array<int, 2> channel{};
  checked(pipe(channel.data()), "pipe");
  const pid_t parent = getpid();
  const pid_t child = checked(fork(), "fork");
  if (child == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const auto tellPort = [&channel](int port) {
      checked(write(channel[1], &port, sizeof port) == sizeof port ? 0 : -1, "write");
    };
    if (getppid() == parent) serve(tellPort);
    _exit(EXIT_FAILURE);
  }
  process_ = child;
  close(channel[1]);
  checked(read(channel[0], &port_, sizeof port_) == sizeof port_ ? 0 : -1, "a server's port");
  close(channel[0]);
}

ForkedServer::~ForkedServer() {
  kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
}
