#pragma once

#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <unordered_map>
#include <utility>
#include <vector>

#include <curl/curl.h>

#include <ZolvaCheckoutKit/Platform/Curl/Internal/ZLVCertificateBundle.h>
#include <ZolvaCheckoutKit/Platform/Curl/Internal/ZLVCurlSockets.h>
#include <ZolvaCheckoutKit/Platform/Curl/Internal/ZLVCurlTransfer.h>

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
  ZLVCurlLoop(const ZLVCurlLoop&) = delete;
  ZLVCurlLoop& operator=(const ZLVCurlLoop&) = delete;
  ~ZLVCurlLoop();

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
  using Clock = ZLVCurlTransfer::Clock;
  /// The calls to one server.
  struct Server {
    /// Until then the calls after the first wait, because they may share its connection. libcurl
    /// itself (CURLOPT_PIPEWAIT) would let them hold up the calls to other servers.
    bool isReached;
    CURL* first = nullptr;  // valid until then
    std::size_t underWay = 0;
    /// In the order of their coming; under libcurl's own limits some wait far longer than others.
    std::list<CURL*> waiting = {};
  };
  struct Call {
    std::unique_ptr<ZLVCurlTransfer> transfer;
    Server* server;
    bool isWaiting = true;
  };

  void run();
  void setUp();
  void tearDown();
  /// Until it has succeeded.
  void readAuthorities();
  /// Begins what other threads have added and tells how the loop is to end.
  End takeAdded();
  void begin(std::unique_ptr<ZLVCurlTransfer> transfer);
  /// Keeps the transfer and sends what it has prepared, at once or when it is its turn.
  void take(std::unique_ptr<ZLVCurlTransfer> transfer);
  /// Gives the transfers to libcurl whose turn it is.
  void sendWaiting(Server& server);
  void sendWaiting();
  /// Takes the transfer back from libcurl.
  std::unique_ptr<ZLVCurlTransfer> release(CURL* handle);
  void takeDone();
  void failIdle();
  void fail(CURL* handle, NSURLError code);
  /// Until there is something to do.
  void sleep();
  [[nodiscard]] int pollMilliseconds();

  // The thread's own.
  ZLVCurlConfiguration configuration_;
  std::optional<std::string> CAFile_;
  std::optional<ZLVCertificateBundle> bundle_;
  CURLM* multi_ = nullptr;
  ZLVCurlSockets sockets_;
  std::unordered_map<CURL*, Call> calls_;
  /// By scheme, host and port.
  std::unordered_map<std::string, Server> servers_;
  /// No call's deadline is earlier. Deadlines only move to later moments, so that the calls need
  /// not be looked at before.
  Clock::time_point nextDeadline_ = Clock::time_point::max();

  // Shared.
  std::mutex mutex_;
  /// An eventfd that ends the thread's sleep; -1 while there is no descriptor to be had for it.
  /// libcurl's own way of waking says nothing when it lacks its descriptors, and never gets them.
  int wake_ = -1;
  std::vector<std::unique_ptr<ZLVCurlTransfer>> added_;
  bool isAsleep_ = false;  // and has not been woken; waking it costs more than all else in `add`
  End end_ = End::None;

  std::thread thread_;
};
