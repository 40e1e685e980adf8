#pragma once

#include <map>
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

/// A thread that runs transfers with one libcurl multi handle. What happens costs as much with ten
/// thousand of them as with one: nothing here looks at all of them, and libcurl is only told of the
/// sockets that are ready.
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
  using Queues = std::unordered_map<std::string, ZLVServerQueue>;  // by the server's origin
  using Deadlines = std::multimap<Clock::time_point, CURL*>;
  struct Call {
    std::unique_ptr<ZLVCurlTransfer> transfer;
    Queues::pointer queue;
    Deadlines::iterator deadline;
    ZLVServerQueue::Place place;  // while it waits
    bool isWaiting = true;
  };
  /// What libcurl calls while it works on the multi handle.
  struct Callbacks;

  void run();
  void setUp();
  void tearDown();
  /// Reads the certificate authorities, where that has not succeeded before.
  void readTrust();
  /// As many as calls are under way, and some for those to come.
  void keepConnections();
  /// Starts what other threads have added and tells how the loop is to end.
  End takeAdded();
  void begin(std::unique_ptr<ZLVCurlTransfer> transfer);
  /// Keeps the transfer until its turn, or completes it.
  void goOn(std::unique_ptr<ZLVCurlTransfer> transfer);
  /// Gives the transfers to libcurl whose turn it is. The queue goes when it has no more.
  void sendWaiting(Queues::pointer queue);
  /// Takes the transfer back from libcurl.
  Call release(CURL* handle);
  /// Tells libcurl that a socket is ready, or CURL_SOCKET_TIMEOUT.
  void drive(curl_socket_t socket, unsigned events = 0);
  /// Takes in which requests libcurl has sent.
  void noteSent();
  void takeDone();
  /// What is due by the clock.
  void runDue();
  void failIdle();
  void fail(CURL* handle, NSURLError code);
  /// Until there is something to do.
  void sleep();
  [[nodiscard]] std::chrono::milliseconds timeToSleep() const;

  // The thread's own.
  ZLVCurlContext context_;
  CURLM* multi_ = nullptr;
  Clock::time_point timer_ = Clock::time_point::max();  // libcurl's
  std::unordered_map<CURL*, Call> calls_;
  Queues queues_;
  /// Each call's deadline, or an earlier moment: deadlines only move to later ones, and are looked
  /// at when the moment has come.
  Deadlines deadlines_;
  long underWay_ = 0;
  long keptConnections_ = 0;
  std::vector<std::unique_ptr<ZLVCurlTransfer>> taken_;

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
