#pragma once

// The other side of every measurement, in a process of its own so that what it costs is not counted
// with the client's.

#include <functional>
#include <string>
#include <string_view>

#include <sys/types.h>

using TellPort = std::function<void(int port)>;

/// A process that runs a function which tells its port and then serves until it is killed.
class ForkedServer {
 public:
  /// Must be made before this process has threads.
  explicit ForkedServer(const std::function<void(const TellPort&)>& serve);
  ForkedServer(const ForkedServer&) = delete;
  ForkedServer& operator=(const ForkedServer&) = delete;
  ~ForkedServer();

  [[nodiscard]] int port() const { return port_; }

 private:
  pid_t process_ = -1;
  int port_ = 0;
};

/// An answer as it goes over the wire.
struct Answer {
  enum class Then {
    Keep,   ///< The next request is read.
    Close,  ///< The connection is closed in order.
    Reset,  ///< It is reset.
  };
  std::string_view bytes;
  Then then = Then::Keep;
};

/// Gives the answer to each request; the bytes must live on.
using Answers = std::function<Answer()>;

/// A small, fast HTTP/1.1 server on 127.0.0.1: one thread, epoll, connections kept alive, no
/// pipelining. Never returns. With more than one host it has the same port of 127.0.0.2 and so on.
void serveHTTP(const Answers& answers, const TellPort& tellPort, int hosts = 1);

/// A whole answer of status 200.
std::string response(std::string_view body);
