#pragma once

#include <chrono>
#include <vector>

#include <curl/curl.h>

/// The sockets of a session's connections, which libcurl opens and closes through this. Used on the
/// session's thread.
class ZLVCurlSockets {
 public:
  /// How a transfer connects. libcurl would spend half of its time on the first of a host's
  /// addresses; in haste, an attempt that takes too long fails, and libcurl goes on to the next.
  struct Manner {
    bool isHasty = true;
    bool hasGivenUp = false;  ///< An attempt.
  };

  /// A socket for a connection to be made; CURL_SOCKET_BAD and errno when there is none to be had.
  /// `manner` must live until `settle` or until libcurl has closed the socket.
  curl_socket_t open(const curl_sockaddr& address, Manner& manner);

  /// For CURLOPT_CLOSESOCKETFUNCTION.
  static int close(void* self, curl_socket_t socket);

  /// The connection is made.
  void settle(const Manner& manner);

  /// Gives up attempts that take too long. True while there are any attempts: libcurl wants to be
  /// driven often then, without saying so.
  bool checkAttempts();

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
    Manner* manner = nullptr;          // until it is settled
    long localPort = 0, peerPort = 0;  // once it is kept
  };

  std::vector<Socket> sockets_;
};
