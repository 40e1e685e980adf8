#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "Tests/Support/RawServer.h"

/// A server on 127.0.0.1 that reads a request of any kind without a body, writes an answer, and
/// closes. It is the whole network of its process: a connection to any other address is refused,
/// and no name is looked up.
class AnswerServer {
 public:
  /// The one server, made on the first call and kept until the process ends.
  static AnswerServer& shared();

  [[nodiscard]] int port() const { return listener_.port(); }

  /// What the next connections get, one after the other; the last answer also serves those behind
  /// it. An answer is written in pieces of that many bytes, at once when there are none.
  void prepare(std::vector<std::string> answers, std::size_t pieceSize);

  /// Waits until every connection made has been closed.
  void finish();

  /// Notes that somebody has begun to connect.
  void expectConnection();

 private:
  AnswerServer();

  void serve(int socket);

  SilentListener listener_;
  std::mutex mutex_;
  std::condition_variable isIdle_;
  std::vector<std::string> answers_;
  std::size_t pieceSize_ = 0;
  std::size_t next_ = 0;
  std::size_t expected_ = 0;
  std::thread thread_;
};
