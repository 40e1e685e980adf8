#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <utility>

/// How long a call may make no progress, and how long it has made none.
class ZLVIdleLimit {
 public:
  using Clock = std::chrono::steady_clock;

  explicit ZLVIdleLimit(double seconds) : interval_(interval(seconds)) {}

  void noteProgress() { lastProgress_ = Clock::now(); }

  /// Notes progress where `bytes`, sent and received so far, are not as many as before.
  void noteBytes(std::int64_t bytes) {
    if (std::exchange(bytes_, bytes) != bytes) noteProgress();
  }

  [[nodiscard]] Clock::duration interval() const { return interval_; }
  [[nodiscard]] Clock::time_point deadline() const { return lastProgress_ + interval_; }

 private:
  static Clock::duration interval(double seconds) {
    // Within what the clock can count; a value that is no number becomes the least.
    const std::chrono::duration<double> bounded(std::min(std::max(0.001, seconds), 1e8));
    return std::chrono::duration_cast<Clock::duration>(bounded);
  }

  Clock::duration interval_;
  Clock::time_point lastProgress_ = Clock::now();
  std::int64_t bytes_ = 0;
};
