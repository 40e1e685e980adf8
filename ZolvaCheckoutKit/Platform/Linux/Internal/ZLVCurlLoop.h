#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

#include <curl/curl.h>

#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVCertificateBundle.h>
#include <ZolvaCheckoutKit/Platform/Linux/Internal/ZLVCurlTransfer.h>

/// A thread that runs transfers with one libcurl multi handle.
class ZLVCurlLoop {
 public:
  /// How the thread ends.
  enum class End {
    None,
    Cancel,   ///< Calls under way are answered with `NSURLErrorCancelled`.
    Abandon,  ///< Everything stays as it is: the process exits.
  };

  ZLVCurlLoop(ZLVCurlConfiguration configuration, std::optional<std::string> CAFile);

  /// Starts the thread. Once.
  void start();

  /// Hands over a transfer; before `start` and after `end` it stays where it is. Any thread.
  void add(std::unique_ptr<ZLVCurlTransfer> transfer);

  /// Ends the thread and, unless called on it, waits for it. Must be called before destruction of a
  /// loop that was started.
  void end(End how);

 private:
  using Clock = ZLVCurlTransfer::Clock;

  void run();
  void setUp();
  void tearDown();
  /// Begins what other threads have added and tells how the loop is to end.
  End takeAdded();
  void begin(std::unique_ptr<ZLVCurlTransfer> transfer);
  /// Keeps the transfer and sends what it has prepared.
  void take(std::unique_ptr<ZLVCurlTransfer> transfer);
  /// Gives the transfer to libcurl, at once or when the server that it waits for is reached.
  void send(CURL* handle);
  void sendWaiting();
  void takeDone();
  void failIdle();
  void fail(CURL* handle, NSURLError code);
  /// Until there is something to do.
  void sleep();
  [[nodiscard]] int pollMilliseconds() const;

  // The thread's own.
  ZLVCurlConfiguration configuration_;
  std::optional<std::string> CAFile_;
  std::optional<ZLVCertificateBundle> bundle_;
  std::unordered_map<CURL*, std::unique_ptr<ZLVCurlTransfer>> transfers_;
  /// No call's deadline is earlier. Deadlines only move to later moments, so that the calls need
  /// not be looked at before.
  Clock::time_point nextDeadline_ = Clock::time_point::max();
  /// The first of the calls to a server, and those that wait because they may share its connection.
  /// libcurl itself (CURLOPT_PIPEWAIT) would let them hold up the calls to other servers.
  struct Waiting {
    CURL* first;
    std::vector<CURL*> others;
  };
  std::unordered_map<std::string, Waiting> waiting_;

  // Shared; the multi handle is null while the thread does not run.
  std::mutex mutex_;
  CURLM* multi_ = nullptr;
  std::vector<std::unique_ptr<ZLVCurlTransfer>> added_;
  bool isAsleep_ = false;  // and has not been woken; waking it costs more than all else in `add`
  End end_ = End::None;

  std::thread thread_;
};
