#pragma once

#include <chrono>
#include <vector>

#include <curl/curl.h>

/// The sockets of a session's connections, which libcurl opens and closes through this. Used on the
/// session's thread.
class ZLVCurlSockets {
 public:
  /// A request's attempt to connect. libcurl would spend half of its time on the first of a host's
  /// addresses; in haste, an address that takes too long is given up, and libcurl goes on to the
  /// next.
  struct Attempt {
    bool isHasty = true;
    bool isGivenUp = false;  ///< For one address at least.
  };

  /// A socket for a connection to be made; CURL_SOCKET_BAD and errno when there is none to be had.
  /// `attempt` must live until `settle` or until libcurl has closed the socket.
  curl_socket_t open(const curl_sockaddr& address, Attempt& attempt);

  /// For CURLOPT_CLOSESOCKETFUNCTION.
  static int close(void* self, curl_socket_t socket);

  /// The connection is made.
  void settle(const Attempt& attempt);

  /// Whether anything connects: libcurl wants to be driven often then, without saying so.
  [[nodiscard]] bool hasAttempts() const;

  /// Makes those addresses fail that take too long.
  void giveUpSlow();

  /// Notes the connection of a transfer that is done with and still libcurl's, for `isReadable`.
  void keep(CURL* transfer);

  /// Whether the kept connection between these ports has anything to read, be it its end: nothing
  /// that comes before a request is its answer. Not asked of HTTP/2, where answers are numbered.
  [[nodiscard]] bool isReadable(int localPort, int peerPort) const;

 private:
  using Clock = std::chrono::steady_clock;
  struct Socket {
    curl_socket_t socket = CURL_SOCKET_BAD;
    Clock::time_point start = {};
    Attempt* attempt = nullptr;        // until it is settled
    long localPort = 0, peerPort = 0;  // once it is kept
  };

  std::vector<Socket> sockets_;
};
