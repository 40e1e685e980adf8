#pragma once

#include <cstddef>
#include <list>

#include <curl/curl.h>

/// The calls to one server, by their handles: some are under way, the others wait in the order of
/// their coming. Under libcurl's own limits some would wait far longer than others.
class ZLVServerQueue {
 public:
  /// So that the host keeps descriptors for itself. Calls that share a connection count as well.
  static constexpr std::size_t maximumUnderWay = 64;

  /// Where calls may share the connection of the first one, they wait until that has reached the
  /// server. libcurl itself (CURLOPT_PIPEWAIT) would let them hold up the calls to other servers.
  explicit ZLVServerQueue(bool mayShareConnections) : isReached_(!mayShareConnections) {}

  void add(CURL* handle) { waiting_.push_back(handle); }

  /// Whether it is a call's turn.
  [[nodiscard]] bool hasNext() const {
    return !waiting_.empty() && underWay_ < (isReached_ ? maximumUnderWay : 1);
  }

  /// The call whose turn it is, under way from now on.
  CURL* takeNext() {
    latest_ = waiting_.front();
    waiting_.pop_front();
    ++underWay_;
    return latest_;
  }

  void removeWaiting(CURL* handle) { waiting_.remove(handle); }
  void removeUnderWay() {
    --underWay_;
    isReached_ = true;  // or never will be
  }

  [[nodiscard]] bool isReached() const { return isReached_; }
  void noteReached() { isReached_ = true; }

  /// While the server is not reached, the only call under way.
  [[nodiscard]] CURL* first() const { return latest_; }

  [[nodiscard]] bool isIdle() const { return underWay_ == 0; }

 private:
  bool isReached_;
  CURL* latest_ = nullptr;
  std::size_t underWay_ = 0;
  std::list<CURL*> waiting_;
};
