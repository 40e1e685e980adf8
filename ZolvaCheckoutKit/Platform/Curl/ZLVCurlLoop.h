#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

#include <curl/curl.h>

#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlContext.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlSystem.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVCurlTransfer.h>
#include <ZolvaCheckoutKit/Platform/Curl/ZLVServerQueue.h>

/// A thread that runs transfers with one libcurl multi handle.
class ZLVCurlLoop {
 public:
  /// How the thread ends.
  enum class End {
    None,
    Cancel,   ///< Calls under way are answered with `NSURLErrorCancelled`.
    Abandon,  ///< Everything stays as it is: the process exits.
  };

  explicit ZLVCurlLoop(ZLVCurlOptions options);

  /// Starts the thread. Once; throws `std::system_error` when there is none to be had.
  void start();

  /// Whether this is the thread.
  [[nodiscard]] bool isCurrent() const { return thread_.get_id() == std::this_thread::get_id(); }

  /// Hands over a transfer; before `start` and after `end` it stays where it is. Any thread.
  void add(std::unique_ptr<ZLVCurlTransfer> transfer);

  /// Ends the thread and, unless called on it, waits for it. Must be called before destruction of a
  /// loop that was started.
  void end(End how);

 private:
  using Clock = ZLVIdleLimit::Clock;
  struct Call {
    std::unique_ptr<ZLVCurlTransfer> transfer;
    ZLVServerQueue* queue;
    bool isWaiting = true;
  };

  void run();
  void setUp();
  void tearDown();
  /// Starts what other threads have added and tells how the loop is to end.
  End takeAdded();
  /// Keeps the transfer until its turn, or completes it.
  void goOn(std::unique_ptr<ZLVCurlTransfer> transfer);
  /// Gives the transfers to libcurl whose turn it is.
  void sendWaiting(ZLVServerQueue& queue);
  void sendWaiting();
  /// Takes the transfer back from libcurl.
  std::unique_ptr<ZLVCurlTransfer> release(CURL* handle);
  void takeDone();
  void failIdle();
  void fail(CURL* handle, NSURLError code);
  /// Until there is something to do.
  void sleep();
  [[nodiscard]] Clock::duration timeToSleep() const;

  // The thread's own.
  ZLVCurlContext context_;
  CURLM* multi_ = nullptr;
  std::unordered_map<CURL*, Call> calls_;
  std::unordered_map<std::string, ZLVServerQueue> queues_;  // by the server's origin
  /// No call's deadline is earlier. Deadlines only move to later moments, so that the calls need
  /// not be looked at before.
  Clock::time_point nextDeadline_ = Clock::time_point::max();

  // Shared.
  std::mutex mutex_;
  /// Open as soon as there are descriptors for it. libcurl's own way of waking says nothing when it
  /// lacks its descriptors, and never gets them.
  ZLVWakeSignal wake_;
  std::vector<std::unique_ptr<ZLVCurlTransfer>> added_;
  bool isAsleep_ = false;  // and has not been woken; waking it costs more than all else in `add`
  End end_ = End::None;

  std::thread thread_;
};
