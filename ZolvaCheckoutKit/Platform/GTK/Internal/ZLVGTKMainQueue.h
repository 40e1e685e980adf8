#pragma once

#include <chrono>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>

#include <ZolvaCheckoutKit/Platform/ZLVMainQueue.h>

/// The main loop of GLib's default context as the main queue.
///
/// What a block throws cannot leave through the loop, which is C and would stay locked. It goes to
/// the given handler, after which the queue goes on, or, without one, ends the process.
class ZLVGTKMainQueue final : public ZLVMainQueue {
 public:
  using UncaughtException = std::function<void(std::exception_ptr exception)>;

  explicit ZLVGTKMainQueue(UncaughtException uncaughtException = {});
  ~ZLVGTKMainQueue() override;

  void dispatch(ZLVOnce<void()> block) override;

  /// Runs the main loop as `ZLVActivity::runUntilIdle` says. Main thread.
  static bool runUntilIdle(std::chrono::milliseconds limit);

 private:
  struct Blocks {
    std::mutex mutex;
    std::deque<ZLVOnce<void()>> waiting;
    UncaughtException uncaughtException;
  };
  static void runNext(Blocks& blocks) noexcept;

  std::shared_ptr<Blocks> blocks_;
};
