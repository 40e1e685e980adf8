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

  /// A call's place among those that wait.
  using Place = std::list<CURL*>::iterator;

  /// Where calls may share the connection of the first one, they wait until that has reached the
  /// server. libcurl itself (CURLOPT_PIPEWAIT) would let them hold up the calls to other servers.
  explicit ZLVServerQueue(bool mayShareConnections) : isReached_(!mayShareConnections) {}

  Place add(CURL* handle) { return waiting_.insert(waiting_.end(), handle); }

  /// Whether it is a call's turn.
  [[nodiscard]] bool hasNext() const {
    return !waiting_.empty() && underWay_ < (isReached_ ? maximumUnderWay : 1);
  }

  /// The call whose turn it is, under way from now on.
  CURL* takeNext() {
    CURL* next = waiting_.front();
    waiting_.pop_front();
    ++underWay_;
    return next;
  }

  void removeWaiting(Place place) { waiting_.erase(place); }
  void removeUnderWay() {
    --underWay_;
    isReached_ = true;  // or never will be
  }

  [[nodiscard]] bool isReached() const { return isReached_; }
  void noteReached() { isReached_ = true; }

  [[nodiscard]] bool isIdle() const { return underWay_ == 0 && waiting_.empty(); }

 private:
  bool isReached_;
  std::size_t underWay_ = 0;
  std::list<CURL*> waiting_;
};
