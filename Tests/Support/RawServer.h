#pragma once

// A server on 127.0.0.1 that answers byte for byte what a test says, and can be as rude as it likes
// about the connection.

#include <atomic>
#include <chrono>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <openssl/ssl.h>

/// A port of 127.0.0.1 that the system chooses. Connections to it succeed, and nothing ever answers
/// them.
class SilentListener {
 public:
  SilentListener();
  SilentListener(const SilentListener&) = delete;
  SilentListener& operator=(const SilentListener&) = delete;
  ~SilentListener();

  [[nodiscard]] int socket() const { return socket_; }
  [[nodiscard]] int port() const { return port_; }

 private:
  int socket_;
  int port_ = 0;
};

class RawServer {
 public:
  /// What happens to the connection after an answer.
  enum class Then {
    Keep,   ///< The next request is read.
    Close,  ///< It is closed in order (FIN).
    Reset,  ///< It is reset (RST).
    Stall,  ///< It stays open, and nothing is read or written any more.
  };
  struct Reply {
    std::string bytes;
    Then then = Then::Keep;
    /// Follows again and again, with a pause after each time, until the client hangs up.
    std::string repeated = {};
    std::chrono::milliseconds pause{0};
    /// Waits for the moment when `late` is to follow and `then` to happen.
    std::function<void()> gate = {};
    std::string late = {};
  };
  /// Answers one request, given as its head and body, or the first bytes of a TLS client that this
  /// server does not understand; runs on the connection's thread.
  using Script = std::function<Reply(const std::string& request)>;

  /// Speaks TLS when `context` is given.
  explicit RawServer(Script script, std::shared_ptr<SSL_CTX> context = nullptr);
  RawServer(const RawServer&) = delete;
  RawServer& operator=(const RawServer&) = delete;
  ~RawServer();

  [[nodiscard]] int port() const { return listener_.port(); }
  /// "http://127.0.0.1:PORT" and the path, or https.
  [[nodiscard]] std::string url(const std::string& path = "/") const;

  /// All requests, in the order in which they were read.
  [[nodiscard]] std::vector<std::string> requests() const;
  [[nodiscard]] int connections() const { return connections_; }
  /// The sockets of this process's connections to the server.
  [[nodiscard]] std::vector<int> clients() const;

  /// Further connections are refused; those there are stay.
  void stopListening();

  /// A whole answer with a Content-Length; `headers` are lines with their ends.
  static std::string response(const std::string& body, const std::string& status = "200 OK",
                              const std::string& headers = "");
  static std::string redirect(int status, const std::string& location);

 private:
  struct Connection;

  void accept();
  void serve(Connection& connection);

  Script script_;
  std::shared_ptr<SSL_CTX> context_;
  SilentListener listener_;
  std::atomic<int> connections_ = 0;
  mutable std::mutex mutex_;
  std::vector<std::string> requests_;
  std::list<Connection> open_;
  std::thread acceptor_;
};
