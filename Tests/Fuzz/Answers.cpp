// A raw HTTP answer through the real session. The first byte of the input tells the method and the
// size of the pieces that the rest is written in; form feeds part the answers that the hops of a
// redirected call get.

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <condition_variable>
#include <cstdlib>
#include <future>
#include <memory>
#include <mutex>
#include <thread>

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <ZolvaCheckoutKit/Platform/Linux/ZLVLinuxPlatform.h>

#include "Tests/Fuzz/Fuzz.h"
#include "Tests/Support/RawServer.h"

namespace {

constexpr std::size_t maximumAnswerSize = std::size_t{64} * 1024;

/// A server on 127.0.0.1 that reads a request of any kind without a body, writes an answer, and
/// closes. It is the whole network of its process: a connection to any other address is refused,
/// and no name is looked up.
class AnswerServer {
 public:
  /// The one server, made on the first call and kept until the process ends.
  static AnswerServer& shared() {
    static auto& server = *new AnswerServer;
    return server;
  }

  [[nodiscard]] int port() const { return listener_.port(); }
  [[nodiscard]] std::string url() const { return "http://127.0.0.1:" + std::to_string(port()); }

  /// What the next connections get, one after the other; the last answer also serves those behind
  /// it. An answer is written in pieces of that many bytes.
  void prepare(std::vector<std::string> answers, std::size_t pieceSize) {
    const std::lock_guard lock(mutex_);
    answers_ = std::move(answers);
    pieceSize_ = pieceSize;
    next_ = 0;
  }

  /// Notes that somebody has begun to connect.
  void expectConnection() {
    const std::lock_guard lock(mutex_);
    ++expected_;
  }

  /// Waits until every connection made has been closed.
  void finish() {
    std::unique_lock lock(mutex_);
    isIdle_.wait(lock, [this] { return expected_ == 0; });
  }

 private:
  void serve() {
    const int socket = accept4(listener_.socket(), nullptr, nullptr, SOCK_CLOEXEC);
    std::unique_lock lock(mutex_);
    const auto text = answers_[std::min(next_++, answers_.size() - 1)];
    const auto pieceSize = pieceSize_;
    lock.unlock();

    const int on = 1;
    setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    readRequest(socket);
    for (std::string_view answer = text; !answer.empty();) {
      const auto piece = answer.substr(0, pieceSize);
      const auto sent = send(socket, piece.data(), piece.size(), MSG_NOSIGNAL);
      if (sent <= 0) break;
      answer.remove_prefix(static_cast<std::size_t>(sent));
      std::this_thread::yield();  // the client is to see the piece by itself
    }
    close(socket);

    lock.lock();
    --expected_;
    isIdle_.notify_all();
  }

  /// Reads up to the end of a request's header, or the first words of a TLS client.
  static void readRequest(int socket) {
    constexpr char handshake = 0x16;
    std::string request;
    std::array<char, 16384> bytes{};
    while (!request.ends_with("\r\n\r\n") && !request.starts_with(handshake)) {
      const auto count = recv(socket, bytes.data(), bytes.size(), 0);
      if (count <= 0) return;
      request.append(bytes.data(), static_cast<std::size_t>(count));
    }
  }

  SilentListener listener_;
  std::mutex mutex_;
  std::condition_variable isIdle_;
  std::vector<std::string> answers_;
  std::size_t pieceSize_ = 0, next_ = 0, expected_ = 0;
  std::thread thread_{[this] {
    for (;;) serve();
  }};
};

std::unique_ptr<ZLVURLSession> makeSession() {
  // What is not for this machine goes to the server as well, as to a proxy.
  setenv("https_proxy", AnswerServer::shared().url().c_str(), 1);
  for (const auto* name : {"no_proxy", "NO_PROXY"}) unsetenv(name);
  return ZLVLinuxPlatform::platformWithOptions(
             {.applicationVersion = "1", .maximumAnswerSize = maximumAnswerSize})
      .makeURLSession();
}

bool leavesCookies(std::string_view text) {
  constexpr std::string_view name = "set-cookie";
  return std::search(text.begin(), text.end(), name.begin(), name.end(),
                     [](unsigned char c, char wanted) { return std::tolower(c) == wanted; }) !=
         text.end();
}

void check(const ZLVURLAnswer& answer) {
  const auto& error = answer.error;
  const auto told = error ? error->debugDescription() : std::to_string(answer.statusCode);
  promise(answer.data.size() <= maximumAnswerSize, "An answer is not too large.", told);
  promise(error ? answer.data.empty() && answer.statusCode == 0
                : answer.statusCode >= 100 && answer.statusCode <= 999,
          "There is an answer with a status, or an error.", told);
  if (!error) return;
  promise(error->domain() == NSURLErrorDomain && error->code() < 0 &&
              error->userInfo().contains(NSLocalizedDescriptionKey) &&
              error->userInfo().contains(NSURLErrorFailingURLStringErrorKey),
          "An error says what failed.", told);
  promise(error->code() != NSURLErrorTimedOut && error->code() != NSURLErrorCancelled,
          "A call ends when its connection does.", told);
}

}  // namespace

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

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  constexpr std::size_t methodBit = 0x80;
  const auto text = textOf(data + 1, size - 1);
  const std::size_t pieceSize = *data & ~methodBit;
  auto& server = AnswerServer::shared();
  server.prepare(linesOf(text, 1, '\f'),  // in not too many pieces
                 pieceSize == 0 ? std::string::npos : std::max(pieceSize, text.size() / 64));

  // One session for all inputs, as long as the process, but for those that leave something in it:
  // what an input does must not depend on the ones before.
  static auto& session = *new auto(makeSession());
  ZLVURLRequest request;
  request.URL = ZLVURL::URLWithString(server.url() + "/v2/charge");
  request.timeoutInterval = 20;
  request.HTTPMethod = (*data & methodBit) != 0 ? "POST" : "GET";
  std::promise<ZLVURLAnswer> answered;
  auto answer = answered.get_future();
  // A second answer, or none, ends the process by an exception.
  session->dataTask(std::move(request),
                    [answered = std::move(answered)](ZLVURLAnswer value) mutable {
                      answered.set_value(std::move(value));
                    });
  check(answer.get());
  server.finish();
  if (leavesCookies(text)) session = makeSession();
  return 0;
}
