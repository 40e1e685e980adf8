#pragma once

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <utility>

#include <ZolvaCheckoutKit/Platform/ZLVActivity.h>
#include <ZolvaCheckoutKit/Platform/ZLVMainQueue.h>

/// The main queue for a host that comes round again and again, such as a game. What a block throws
/// leaves through `drain`; that block counts as run, and those behind it stay queued.
class ZLVFrameMainQueue final : public ZLVMainQueue {
 public:
  ~ZLVFrameMainQueue() override { clear(); }

  void dispatch(ZLVOnce<void()> block) override {
    const std::lock_guard lock(mutex_);
    blocks_.push_back(std::move(block));
    queued_.notify_one();
  }

  /// Runs what is queued now, without waiting; whether there was any. Main thread, once a frame.
  bool drain() {
    std::unique_lock lock(mutex_);
    const bool isAny = !blocks_.empty();
    for (auto count = blocks_.size(); count > 0 && !blocks_.empty(); --count, lock.lock()) {
      auto block = std::move(blocks_.front());
      blocks_.pop_front();
      lock.unlock();
      std::move(block)();
    }
    return isAny;
  }

  /// `ZLVActivity::runUntilIdle`. A host that draws meanwhile calls that, a frame being a turn.
  bool runUntilIdle(std::chrono::milliseconds limit) {
    return ZLVActivity::runUntilIdle(limit, [this](std::chrono::milliseconds left) {
      if (drain()) return;
      std::unique_lock lock(mutex_);
      left = std::min<std::chrono::milliseconds>(left, std::chrono::hours(1));
      if (blocks_.empty()) queued_.wait_for(lock, left);
    });
  }

  /// Destroys what is queued, and what that queues meanwhile. Main thread.
  void clear() noexcept {
    for (std::unique_lock lock(mutex_); !blocks_.empty(); lock.lock()) {
      const auto blocks = std::exchange(blocks_, {});
      lock.unlock();
    }
  }

 private:
  std::mutex mutex_;
  std::condition_variable queued_;
  std::deque<ZLVOnce<void()>> blocks_;
};
