#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <unordered_map>
#include <utility>
#include <vector>

#include <curl/curl.h>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlSystem.h>

/// The sockets of a session's connections, which libcurl opens and closes through this. Used on the
/// session's thread.
class ZLVCurlSockets {
 public:
  using Clock = std::chrono::steady_clock;

  /// A request's attempt to connect. libcurl would spend half of its time on the first of a host's
  /// addresses; in haste, an address that takes too long is given up, and libcurl goes on to the
  /// next.
  struct Attempt {
    CURL* transfer = nullptr;
    bool isHasty = true;
    bool isGivenUp = false;                   ///< For one address at least.
    std::vector<curl_socket_t> sockets = {};  ///< That it has open, until it is settled.
  };

  /// `readiness` outlives this, and watches sockets no longer than they are open.
  explicit ZLVCurlSockets(ZLVReadiness& readiness) : readiness_(readiness) {}

  /// A socket for a connection to be made; CURL_SOCKET_BAD and errno when there is none to be had.
  /// `attempt` must live until libcurl has closed the socket, or until `settle`.
  curl_socket_t open(const curl_sockaddr& address, Attempt& attempt);

  /// For CURLOPT_CLOSESOCKETFUNCTION.
  static int close(void* self, curl_socket_t socket);

  /// Whether it was opened here.
  [[nodiscard]] bool has(curl_socket_t socket) const {
    const auto index = static_cast<std::size_t>(socket);
    return index < sockets_.size() && sockets_[index].isOpen;
  }

  /// The connection between these ports is there.
  void settle(Attempt& attempt, int localPort, int peerPort);

  /// When `lookAtAttempts` has something to look at.
  [[nodiscard]] Clock::time_point nextLook() const;

  /// Makes those addresses fail that take too long, and returns a socket that libcurl has to look
  /// at: it goes on to the next address without saying when. CURL_SOCKET_BAD once there is none.
  curl_socket_t lookAtAttempts();

  /// The attempts that lost their sockets since the last call, and may have ended. Where they have
  /// not, libcurl goes on to the next address once it is made to.
  std::vector<CURL*> takeStranded() { return std::exchange(stranded_, {}); }

  /// Notes the connection of a transfer that is done with and still libcurl's, for `isSpoilt`.
  void keep(CURL* transfer);

  /// Notes one on which nothing has been sent yet.
  void keepUnused(CURL* transfer);

  /// Whether the kept connection between these ports has anything to read, be it its end: nothing
  /// that comes before a request is its answer. Not asked of HTTP/2, where answers are numbered.
  /// Over TLS only the end counts as long as nothing was sent: the server says something of its own
  /// then.
  [[nodiscard]] bool isSpoilt(int localPort, int peerPort) const;

 private:
  enum class Rule { None, OnlyItsEnd, NothingToRead };
  using Looks = std::multimap<Clock::time_point, curl_socket_t>;
  struct Socket {
    bool isOpen = false;
    Attempt* attempt = nullptr;  // until it is settled
    Looks::iterator look = {};
    int localPort = 0, peerPort = 0;  // once it is
    Rule rule = Rule::None;
  };

  [[nodiscard]] const Socket& at(curl_socket_t socket) const {
    return sockets_[static_cast<std::size_t>(socket)];
  }
  [[nodiscard]] Socket& at(curl_socket_t socket) {
    return sockets_[static_cast<std::size_t>(socket)];
  }
  void setRule(CURL* transfer, Rule rule);

  ZLVReadiness& readiness_;
  std::vector<Socket> sockets_;                          // by descriptor
  std::unordered_multimap<int, curl_socket_t> settled_;  // by local port
  Looks looks_;                                          // at those that connect
  std::vector<CURL*> stranded_;
  int unused_ = 0;  // connections
};
