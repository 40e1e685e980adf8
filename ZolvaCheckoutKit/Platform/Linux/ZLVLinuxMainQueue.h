#pragma once

#include <chrono>
#include <deque>
#include <memory>
#include <mutex>

#include <ZolvaCheckoutKit/Platform/ZLVMainQueue.h>
#include <ZolvaCheckoutKit/ZLVExport.h>

/// A main queue for a thread without one: the host runs it (`run`, `runUntilIdle`), or drains it
/// from the loop it has (`fileDescriptor` and `drain`).
///
/// What a block throws leaves through `run` or `drain`; that block counts as run, those behind it
/// stay queued, and the queue can be run again.
class ZLV_EXPORT ZLVLinuxMainQueue final : public ZLVMainQueue {
 public:
  /// The queue of this process, made on first use and never destroyed. The thread that runs it is
  /// the main thread. Any thread.
  [[nodiscard]] static const std::shared_ptr<ZLVLinuxMainQueue>& mainQueue();

  /// Throws `std::system_error` when the process has no file descriptor left.
  ZLVLinuxMainQueue();
  ZLVLinuxMainQueue(const ZLVLinuxMainQueue&) = delete;
  ZLVLinuxMainQueue& operator=(const ZLVLinuxMainQueue&) = delete;
  ~ZLVLinuxMainQueue() override;

  void dispatch(ZLVOnce<void()> block) override;

  /// Runs blocks, waiting for more when there are none, until `stop`. Main thread; may be called
  /// from inside a block, where `stop` then ends the innermost call.
  void run();

  /// Makes `run` return once the blocks queued before this call have run; when `run` is not under
  /// way, its next call does. Any thread.
  void stop();

  /// Runs blocks until nothing of the library's is under way: every call has completed, the page
  /// that it showed is gone, and every usage event was sent or has failed. What a completion starts
  /// is waited for too. Returns false when something is still under way after `limit`. Call it
  /// before you end the process, or the last events are lost. Main thread, also inside a block; it
  /// takes no notice of `stop`. For the queue of the installed platform.
  bool runUntilIdle(std::chrono::milliseconds limit);

  /// Runs the blocks that are queued now, but none that they queue in turn. Never waits. Main
  /// thread.
  void drain();

  /// Readable (`POLLIN`) while a block is queued, and now and then when `drain` finds none; for the
  /// host to watch only, never to read or close. Valid as long as the queue. Any thread.
  [[nodiscard]] int fileDescriptor() const noexcept { return fileDescriptor_; }

 private:
  /// Runs the first block; false when there is none.
  bool runNext();
  /// The descriptor is not readable until the next signal. Under the lock, for an empty queue.
  void takeSignalBack() const;
  /// Waits for a block; for ever with a negative limit.
  void wait(int milliseconds) const;

  const int fileDescriptor_;
  std::mutex mutex_;
  std::deque<ZLVOnce<void()>> blocks_;
  bool isStopped_ = false;  // main thread only
};
